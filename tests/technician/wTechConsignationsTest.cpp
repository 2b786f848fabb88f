// What is out of service and since when, and the note of it on the console.

#include "technician/wTechConsignations.h"
#include "TechnicianFixture.h"

#include "model/Access.h"
#include "model/OutOfService.h"

namespace {

/// Panel 12 with 24 channels and panel 3 with 12 are in service, panel 40 is not; nobody misses
/// panel 5, which has no model.
class OutOfServiceTest : public TechnicianTest {
protected:
    OutOfServiceTest()
        : TechnicianTest(FormNames::wTechConsignations) {
        Put(12, Models::Q6200XT).setActive(true);
        Put(3, 1).setActive(true);
        Put(40, 1);
        Site().Panel(12).Channel(7).setScreenText("Oil pressure");
        Site().setModified(false);
    }
    /// No entry is kept for the next test.
    void TearDown() override {
        if (Screen(Form) != nullptr)
            Leave(Messages::No);
    }

    static PanelClass& Put(int number, int model) {
        PanelClass& panel = Site().Panel(number);
        panel.setModel(quint8(model));
        panel.setTitle(QStringLiteral("Panel|%1").arg(number));
        return panel;
    }
    void Image(int index, int times = 1) const { Press("imgControl", index, times); }
    /// Rows of a list, the cells of a row between blanks.
    QString New(const char* list = "lvwNew") const {
        const auto* table = Find<TouchTable>(Form, list);
        QStringList rows;
        for (int row = 0; row < table->RowCount(); ++row)
            rows += (table->Cell(row, 0) + u' ' + table->Cell(row, 2)).trimmed();
        return rows.join(u',');
    }
    QString Present() const { return New("lvwPresent"); }
    /// Asks for panel 3 out, channel 12.7 out and panel 40 back.
    void AskForThree() {
        Forms::Show(Form);
        Image(5, 3);
        Image(6);
        Image(5, 9);
        Image(1, 7);
        Image(2);
        Image(5, 28);
        Image(7);
    }
};

} // namespace

TEST_F(OutOfServiceTest, KeysAreReadByPositionInEveryLanguage) {
    Global::Get().language = 1;
    Global::ReadMarks();
    EXPECT_EQ(wTechConsignations::FormatKey(12, 7), "P12V07");
}

TEST_F(OutOfServiceTest, ASecondRequestUndoesAndWhatChangesNothingIsRefused) {
    AskForThree();
    EXPECT_EQ(New(), "P03,P12C07,P40") << "by panel";
    Image(7);
    Image(6);
    EXPECT_EQ(New(), "P03,P12C07") << "back again; out it is already";
    Image(2);
    Image(4, 28);
    EXPECT_FALSE(Child(Form, "imgControl_3")->isEnabled());
    Image(2);
    Image(7);
    EXPECT_EQ(New(), "P03,P40C07");
    Tap(Form, "imgDelete");
    EXPECT_TRUE(boxes.isEmpty()) << "nothing is selected";
    Press("imgNavig", 2, 2);
    EXPECT_FALSE(Child(Form, "imgNavig_2")->isEnabled());
    answer = Messages::Cancel;
    Tap(Form, "imgDelete");
    EXPECT_EQ(Shown("lblModule"), "40") << "what is selected is chosen";
    answer = Messages::Ok;
    Tap(Form, "imgDelete");
    EXPECT_EQ(New(), "P03");
}

TEST_F(OutOfServiceTest, TheSiteChangesWithAYesAlone) {
    AskForThree();
    Leave(Messages::Cancel);
    EXPECT_EQ(New(), "P03,P12C07,P40");
    Leave(Messages::No);
    EXPECT_FALSE(Site().Modified());
    AskForThree();
    Leave(Messages::Yes);
    EXPECT_EQ(Screen(Form), nullptr);
    EXPECT_TRUE(Site().Panel(40).Active() && Site().Panel(12).Active());
    EXPECT_FALSE(Site().Panel(3).Active());
    EXPECT_TRUE(Site().Panel(12).Channel(7).OutOfOrder());
    EXPECT_TRUE(Site().Modified());
}

TEST_F(OutOfServiceTest, TheTimeStandsAsLongAsTheThingIsOut) {
    clock.Set(2025, 11, 25, 2, 43, 10);
    AskForThree();
    Leave(Messages::Yes);
    Site().Panel(40).setActive(false);
    clock.Advance(86'400'000);
    Forms::Show(Form);
    EXPECT_EQ(Present(), "P03 2025-11-25 02:43,P12C07 2025-11-25 02:43,P40");
    Press("imgNavig", 103, 2);
    EXPECT_EQ(Shown("lblTitle_0"), "Panel 12");
    EXPECT_EQ(Shown("lblTitle_1"), "Oil pressure");
    Image(3);
    Leave(Messages::Yes);
    EXPECT_FALSE(Site().Panel(12).Channel(7).OutOfOrder());
    // Back and out again past all screens: nobody knows since when.
    Site().Panel(3).setActive(true);
    OutOfService::NoticeReturns();
    Site().Panel(3).setActive(false);
    Forms::Show(Form);
    EXPECT_EQ(Present(), "P03,P40");
}

TEST_F(OutOfServiceTest, ReasonAndEndGoAlongAndATouchedLineGetsOthers) {
    const QString dialog = FormNames::dlgOutOfService;
    clock.Set(2025, 11, 25, 2, 43, 10);
    Global::Get().userLevel = 3;
    Global::Get().userName = "DUPONT";
    const auto choose = [&](const QStringList& touches) {
        script.On(dialog, [&] {
            for (const QString& touch : touches)
                Tap(dialog, touch);
        });
        Tap(Form, "imgReason");
    };
    AskForThree();
    EXPECT_EQ(Shown("lblReason"), "No reason\nUnlimited");
    Press("imgNavig", 2);
    choose({"imgReason_0", "imgEnd_3", "imgDate_1", "imgControl_1"});
    EXPECT_EQ(Shown("lblDetail"), "Maintenance\nuntil 2025-11-28 02:43");
    choose({"imgReason_4", "imgEnd_2", "imgControl_0"});
    EXPECT_EQ(Shown("lblReason"), "Maintenance\nuntil 2025-11-28 02:43") << "cancelled";
    Press("imgNavig", 2);
    EXPECT_EQ(Shown("lblReason"), "No reason\nUnlimited") << "the next line has its own";
    Leave(Messages::Yes);
    EXPECT_EQ(OutOfService::Find({3, 0})->why, "Maintenance");
    EXPECT_EQ(OutOfService::Find({12, 7})->until, 0);
    Forms::Show(Form);
    Press("imgNavig", 103);
    EXPECT_EQ(Shown("lblDetail"),
              "Since 2025-11-25 02:43, by DUPONT, until 2025-11-28 02:43\nMaintenance");
}

TEST_F(OutOfServiceTest, AnAlarmKeepsTheEntriesAsLongAsTheyFit) {
    AskForThree();
    AlarmComes();
    Forms::Show(Form);
    EXPECT_TRUE(TellsOfKept());
    EXPECT_EQ(New(), "P03,P12C07,P40");
    AlarmComes();
    Site().Panel(3).setActive(false);
    Forms::Show(Form);
    EXPECT_EQ(New(), QString());
}

TEST_F(OutOfServiceTest, TheConsoleTellsAndLeadsToTheListAtItsLevel) {
    const QString console = FormNames::wRunAlarms;
    const QString note = "lblOutOfService";
    Site().setUserCount(1);
    Site().setUserLevel(1, 1);
    Site().setUserPwd(1, "A");
    Forms::Show(console);
    EXPECT_TRUE(TextOf(console, note).startsWith("1 "));
    script.On(FormNames::dlgUserCodes, [] { Tap(FormNames::dlgUserCodes, "imgControl_0"); });
    Tap(console, note);
    EXPECT_EQ(Screen(Form), nullptr);
    Global::Get().userLevel = Levels::Technician;
    script.On(Form, [&] {
        Image(5, 40);
        Image(7);
        Leave(Messages::Yes);
    });
    Tap(console, note);
    EXPECT_TRUE(Site().Panel(40).Active());
    EXPECT_TRUE(Child(console, note)->isHidden());
}
