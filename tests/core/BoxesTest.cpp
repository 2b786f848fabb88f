#include "core/Boxes.h"

#include "core/Config.h"
#include "core/ErrorHandling.h"
#include "core/Faults.h"
#include "core/Message.h"
#include "core/Operator.h"
#include "core/SLVfonctions.h"
#include "core/Trace.h"
#include "core/Yield.h"
#include "platform/Folders.h"
#include "platform/RunTimeError.h"
#include "support/PrintText.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTimer>
#include <gtest/gtest.h>

namespace errors = platform::errors;
using Faults::Kind;

namespace {

/// A screen that keeps what nobody has read, and a trace.
class BoxesTest : public ::testing::Test {
protected:
    BoxesTest() {
        platform::OverrideApplication(folder.path(), Text("korvanelle"));
        Trace::OpenToday();
        Messages::Install([this](const QString& text, int, bool noWait) {
            EXPECT_FALSE(noWait);
            waited += text;
            return int(Messages::Ok);
        });
        Boxes::Install([this](const QString& text, int) { shown += text; });
    }
    ~BoxesTest() override {
        Messages::Install({});
        Boxes::Forget();
        Faults::Forget();
        platform::OverrideApplication(QString(), QString());
    }

    int Traced(const QString& words) const {
        QFile file(Trace::FileName(clock.Now()));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return int(QString::fromLatin1(file.readAll()).count(words));
    }
    static void Fail(const char* source) {
        ErrorHandling::Guard(source, [] { throw platform::RunTimeError(errors::DiskFull); });
    }

    QTemporaryDir folder;
    platform::TestClock clock;
    QStringList shown;
    QStringList waited;
};

TEST_F(BoxesTest, OneStandsAndCountsWhatComesMeanwhile) {
    Fail("A.First");
    Fail("A.Second");
    Fail("A.First");
    ASSERT_EQ(shown.size(), 3) << "one box, with another text each time";
    EXPECT_TRUE(shown[0].endsWith(Text("First")));
    EXPECT_TRUE(shown[2].startsWith(shown[0]));
    EXPECT_EQ(Boxes::Unread(), 3);
    EXPECT_EQ(Faults::Standing().value(0).detail, Text("3"));
    Boxes::Read();
    EXPECT_FALSE(Faults::Stands(Kind::BoxUnanswered));
    Boxes::ShowUnread();
    EXPECT_EQ(shown.size(), 3) << "nothing is left to be shown";
    EXPECT_TRUE(waited.isEmpty());
}

TEST_F(BoxesTest, WaitUntilWhatTheyComeFromIsThrough) {
    {
        const Boxes::Held round;
        const Boxes::Held synchronisation;
        Fail("A.First");
        Fail("A.Second");
        EXPECT_TRUE(shown.isEmpty());
        EXPECT_EQ(Boxes::Unread(), 2) << "the band knows of them at once";
    }
    EXPECT_EQ(shown.size(), 1);
}

// Whoever touched the screen is there to answer; what a timer does while that box stands is not
// called by the touch.
TEST_F(BoxesTest, ATouchWaitsForItsAnswerAndATickDoesNot) {
    QTimer::singleShot(0, [] { Fail("A.Tick"); });
    const Operator::Acting acting;
    Fail("A.Touch");
    Yield();
    EXPECT_EQ(waited, QStringList{ErrorHandling::ErrorText(Text("A.Touch"), errors::DiskFull)});
    EXPECT_EQ(shown, QStringList{ErrorHandling::ErrorText(Text("A.Tick"), errors::DiskFull)});
    EXPECT_TRUE(Operator::Acts());
}

TEST_F(BoxesTest, TheTraceHoldsEachErrorOnceWithAPause) {
    for (int i = 0; i < 50; ++i)
        Fail("B.Repeats");
    Fail("B.Other");
    EXPECT_EQ(Traced(Text(" ERROR 61 B.Repeats")), 1);
    EXPECT_EQ(Traced(Text(" ERROR 61 B.Other")), 1);
    clock.Advance(11 * qint64(60) * 1000);
    Fail("B.Repeats");
    EXPECT_EQ(Traced(Text(" ERROR 61 B.Repeats")), 2);
}

TEST_F(BoxesTest, FaultsTellTheirComingAndGoing) {
    int changes = 0;
    const auto watch =
        QObject::connect(&Faults::TheBoard(), &Faults::Board::Changed, [&changes] { ++changes; });
    Faults::Set(Kind::ClockSetBack);
    Faults::Set(Kind::PrinterNotReached, Text("1"));
    Faults::Set(Kind::PrinterNotReached, Text("2"));
    Faults::Set(Kind::PrinterNotReached, Text("2"));
    QObject::disconnect(watch);
    EXPECT_EQ(changes, 3) << "only what is new";
    ASSERT_EQ(Faults::Standing().size(), 2);
    EXPECT_EQ(Faults::Standing()[0].kind, Kind::PrinterNotReached) << "the more serious first";
    Faults::Clear(Kind::PrinterNotReached);
    Faults::Clear(Kind::PrinterNotReached);
    EXPECT_EQ(Traced(Text(" FAULT BEGINS PRINTER NOT REACHED 1")), 1);
    EXPECT_EQ(Traced(Text(" FAULT ENDS   PRINTER NOT REACHED 2")), 1);
}

// A language that the base doesn't have was told for each text, a folder that takes no file for
// each sound.
TEST_F(BoxesTest, WhatFailsAHundredTimesIsToldOnce) {
    ASSERT_TRUE(QFile::copy(Text(KORVANELLE_BUILD_DIR "/korvanelle.cfg"),
                            folder.filePath(Text("korvanelle.cfg"))));
    IniWrite(Text("General"), Text("Language"), Text("4"));
    EXPECT_TRUE(Config::OpenConfigBase());
    EXPECT_EQ(GetText(10004), Text("OK")) << "the first language";
    EXPECT_EQ(shown.size(), 1);
    platform::OverrideApplication(folder.filePath(Text("none")), Text("korvanelle"));
    Config::ExportSounds([](int) { return 1; });
    EXPECT_EQ(shown.size(), 2);
    EXPECT_TRUE(QFile::remove(folder.filePath(Text("korvanelle.cfg"))));
    Config::CloseConfigBase();
}

// The trace itself is what can't be written: told on the band, and no error of the error.
TEST_F(BoxesTest, ATraceThatCantBeWrittenStands) {
    ASSERT_TRUE(QFile::remove(Trace::FileName(clock.Now())));
    ASSERT_TRUE(QDir(folder.path()).mkpath(Trace::FileName(clock.Now())));
    EXPECT_THROW(Trace::OpenToday(), platform::RunTimeError);
    Trace::Note(Text("lost"));
    EXPECT_TRUE(Faults::Stands(Kind::TraceNotWritten));
    EXPECT_TRUE(shown.isEmpty());
    ASSERT_TRUE(QDir().rmdir(Trace::FileName(clock.Now())));
    Trace::Note(Text("written"));
    EXPECT_FALSE(Faults::Stands(Kind::TraceNotWritten));
    EXPECT_EQ(Traced(Text("written")), 1);
}

} // namespace
