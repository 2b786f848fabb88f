// Keys of the history files and sounds of the priorities, on a horn that notes what it plays.

#include "core/ErrorHandling.h"
#include "events/Klaxon.h"
#include "support/ConfigScreensFixture.h"

#include <QAbstractButton>

namespace {

enum SoundImage { Down, Up, Stop, Play, UndoSound, ApplySound, UndoFiles, ApplyFiles };
constexpr int MoreUrgent = 9;

class SysConfSonTest : public ConfigScreensTest {
protected:
    SysConfSonTest()
        : ConfigScreensTest(FormNames::wSysConfSon) {
        Site().setAlarmPrioSound(1, 2);
        Site().setAlarmPrioSound(2, 0);
        Forms::Show(Form);
    }

    void TapImage(int index, int times = 1) { Press("imgControl", index, times); }
    int Sound() { return Shown("lblSoundNum").toInt(); }
    QString Playing() { return Shown("lblPlaying"); }
    static QString Key(const char* key) {
        return IniRead("Files", QString::fromLatin1(key), "none");
    }
};

} // namespace

TEST_F(SysConfSonTest, KeysAreWrittenByTheirButtonAndTheSizeOnLeaving) {
    EXPECT_FALSE(Child(Form, "cmdPeriod")->isEnabled());
    Tap(Form, "optPeriod_1");
    Tap(Form, "chkPeriod");
    Choose(Form, "cmdPeriod", "730");
    TapImage(UndoFiles);
    EXPECT_EQ(Shown("txtPeriod"), "0");
    Tap(Form, "chkPeriod");
    Choose(Form, "cmdPeriod", "6");
    Tap(Form, "chkNoResize");
    EXPECT_EQ(Key("PeriodTime"), "none");
    TapImage(ApplyFiles);
    EXPECT_EQ(boxes.last(), GetText(30009));
    EXPECT_EQ(Key("PeriodTime") + Key("PeriodUnit") + Key("PeriodLimit"), "601");
    EXPECT_EQ(Key("Histo"), platform::ApplicationFolder());
    Leave(Messages::Yes);
    EXPECT_EQ(IniRead("General", "NoResize", QString()), "0");

    Forms::Show(Form);
    Tap(Form, "chkPeriod");
    Leave(Messages::Yes);
    EXPECT_EQ(Key("PeriodTime") + Key("PeriodLimit"), "00") << "the purge goes by the time alone";
    IniWrite("Files", "PeriodTime", "12");
    Forms::Show(Form);
    EXPECT_TRUE(Find<QAbstractButton>(Form, "chkPeriod")->isChecked()) << "and so does the box";
    QFile::remove(Path("korvanelle.ini"));
    ASSERT_TRUE(QDir().mkdir(Path("korvanelle.ini.tmp")));
    boxes.clear();
    for (int touch = 1; touch <= 2; ++touch) {
        TapImage(ApplyFiles);
        EXPECT_EQ(boxes, QStringList(touch, ErrorHandling::ErrorText("SLVfonctions.IniWrite", 75)))
            << "one of four keys, and nothing is said to be applied";
    }
    ASSERT_TRUE(QDir().rmdir(Path("korvanelle.ini.tmp")));
}

TEST_F(SysConfSonTest, ASoundIsAssignedToAPriority) {
    TapImage(Down, 2);
    EXPECT_EQ(Sound(), 1) << "the arrow stops there";
    TapImage(Up, Config::HighestSound() + 2);
    EXPECT_EQ(Sound(), Config::HighestSound());
    TapImage(ApplySound);
    EXPECT_EQ(Site().AlarmPrioSound(1), Config::HighestSound());
    EXPECT_EQ(boxes.last(), GetText(30009));

    QFile::remove(CurrentConfigFile());
    ASSERT_TRUE(QDir().mkpath(CurrentConfigFile()));
    TapImage(ApplySound);
    EXPECT_EQ(boxes.last(), GetText(20002)) << "it will be gone with the next start";

    TapImage(MoreUrgent);
    EXPECT_EQ(Shown("lblSoundPrio"), "2");
    EXPECT_EQ(Sound(), 0);
    const qsizetype told = boxes.size();
    TapImage(ApplySound);
    EXPECT_EQ(boxes.size(), told) << "no sound can't be assigned";
    TapImage(Up);
    EXPECT_EQ(Sound(), 1);
    TapImage(UndoSound);
    EXPECT_EQ(Sound(), 0);
    Choose(Form, "lblSoundPrio", "99");
    EXPECT_EQ(Sound(), Site().AlarmPrioSound(99));
}

TEST_F(SysConfSonTest, ASoundOfTheBaseIsPlayedFromAFileOfItsOwn) {
    TapImage(Play);
    EXPECT_EQ(horn->playing, Path("SoundTest.wav"));
    EXPECT_EQ(BytesOf("SoundTest.wav"), Config::Sound(2).value());
    EXPECT_TRUE(Playing().contains(u'2'));
    TapImage(Stop);
    EXPECT_EQ(horn->playing + Playing(), QString());
    TapImage(Play);
    AlarmComes();
    EXPECT_EQ(horn->playing, QString()) << "whichever way the screen goes";
    EXPECT_FALSE(QFile::exists(Path("SoundTest.wav")));

    WriteFile("AlarmSound2.wav", {});
    Forms::Show(Form);
    TapImage(Play);
    EXPECT_EQ(horn->playing, Path("AlarmSound2.wav")) << "a file of the machine comes first";
    TapImage(Stop);
    Site().setAlarmPrioSound(1, 99);
    TapImage(UndoSound);
    TapImage(Play);
    EXPECT_EQ(boxes.last(), GetText(630029));
}

TEST_F(SysConfSonTest, AnAlarmIsHeardAboveATrial) {
    TapImage(Play);
    Alarme(1);
    EXPECT_EQ(horn->playing, Path("AlarmSound2"));
    EXPECT_EQ(Playing(), QString());
    TapImage(Play);
    EXPECT_EQ(boxes.last(), GetText(630268));
    Leave(Messages::No);
    EXPECT_EQ(horn->playing, Path("AlarmSound2")) << "it goes on";
}

TEST_F(SysConfSonTest, WhatAnAlarmInterruptsStandsThereAgain) {
    TapImage(MoreUrgent);
    TapImage(Up);
    Tap(Form, "optPeriod_1");
    AlarmComes();
    Forms::Show(Form);
    EXPECT_TRUE(TellsOfKept());
    EXPECT_EQ(Shown("lblSoundPrio"), "2");
    EXPECT_EQ(Sound(), 1);
    Leave(Messages::Yes);
    EXPECT_EQ(Site().AlarmPrioSound(2), 1);
    EXPECT_EQ(Key("PeriodUnit"), "1");
}
