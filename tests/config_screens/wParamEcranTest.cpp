#include "support/ConfigScreensFixture.h"

namespace {

class ParamEcranTest : public ConfigScreensTest {
protected:
    ParamEcranTest()
        : ConfigScreensTest(FormNames::wParamEcran) {
        SetOptions(0b00001, 0b11111, 0b00000, 0b00100);
        Site().setInactivityTime(7);
        Forms::Show(Form);
    }

    /// The columns, each from its first kind of event on.
    QString Columns() {
        QStringList columns;
        for (const char* cells : {"lblAffich", "lblHisto", "lblPrint", "lblKlaxon"}) {
            columns += QString();
            for (int kind = 0; kind < 5; ++kind)
                columns.last() += TextOf(Form, Part(cells, kind)).leftJustified(1, u'-');
        }
        return columns.join(u' ');
    }
};

} // namespace

TEST_F(ParamEcranTest, ACellIsABitOfItsRoad) {
    EXPECT_EQ(Columns(), "X---- XXXXX ----- --X--");
    Tap(Form, "lblPrint_4");
    Tap(Form, "lblKlaxon_2");
    EXPECT_FALSE(Site().OptionPrinter(4)) << "nothing is taken before the answer";
    Leave(Messages::Yes);
    EXPECT_TRUE(Site().OptionPrinter(4) && Site().OptionHisto(3));
    EXPECT_FALSE(Site().OptionKlaxon(2));
    EXPECT_NE(Screen(FormNames::wMain), nullptr);
}

TEST_F(ParamEcranTest, InactivityOfZeroTurnsTheWatchOff) {
    engine->SetupUserSleep();
    for (const auto& [minutes, watched] : {std::pair{"0", false}, {"60", true}}) {
        Forms::Show(Form);
        Choose(Form, "imgControl_0", QString::fromLatin1(minutes));
        Leave(Messages::Yes);
        EXPECT_EQ(Site().InactivityTime(), QByteArray(minutes).toInt());
        EXPECT_EQ(engine->UserSleep().Enabled(), watched);
    }
}

TEST_F(ParamEcranTest, WhatAnAlarmInterruptsStandsThereAgain) {
    Tap(Form, "lblPrint_0");
    AlarmComes();
    EXPECT_FALSE(Site().OptionPrinter(0));
    Forms::Show(Form);
    EXPECT_EQ(Columns(), "X---- XXXXX X---- --X--");
    EXPECT_TRUE(TellsOfKept());
    Leave(Messages::No);
    Forms::Show(Form);
    EXPECT_EQ(Columns(), "X---- XXXXX ----- --X--");
}
