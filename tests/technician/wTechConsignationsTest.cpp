// What is out of service and since when, and the note of it on the console.

#include "technician/wTechConsignations.h"
#include "TechnicianFixture.h"

#include "model/Access.h"
#include "model/Models.h"
#include "model/OutOfService.h"
#include "screens/touch/TouchTable.h"

namespace {

/// Panel 12 with 24 channels and panel 3 with 12 are in service, panel 40 is not; nobody misses
/// panel 5, which has no model.
class OutOfServiceTest : public TechnicianTest {
protected:
    OutOfServiceTest() {
        Put(12, Models::Q6200XT).setActive(true);
        Put(3, 1).setActive(true);
        Put(40, 1);
        Site().Panel(12).Channel(7).setScreenText("Oil pressure");
        Site().setModified(false);
    }
    /// No entry is kept for the next test.
    ~OutOfServiceTest() override {
        if (Screen(Form) != nullptr)
            Close(Messages::No);
    }
    OutOfServiceTest(const OutOfServiceTest&) = delete;
    OutOfServiceTest& operator=(const OutOfServiceTest&) = delete;

    static PanelClass& Put(int number, int model) {
        PanelClass& panel = Site().Panel(number);
        panel.setModel(quint8(model));
        panel.setTitle(QStringLiteral("Panel %1").arg(number));
        return panel;
    }
    void Press(const QString& name, int times = 1) {
        for (; times > 0; --times)
            Tap(Form, name);
    }
    void Image(int index, int times = 1) {
        Press(QStringLiteral("imgControl_%1").arg(index), times);
    }
    /// Rows of a list, the cells of a row between blanks.
    static QString Rows(const char* list) {
        const auto* table = Find<TouchTable>(Form, list);
        QStringList rows;
        for (int row = 0; row < table->RowCount(); ++row)
            rows += (table->Cell(row, 0) + u' ' + table->Cell(row, 2)).trimmed();
        return rows.join(u',');
    }
    static QString New() { return Rows("lvwNew"); }
    static QString Present() { return Rows("lvwPresent"); }
    void Close(int reply) {
        answer = reply;
        Press("imgNavig_5");
        RemoveUnloaded();
    }
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
    static inline const QString Form = FormNames::wTechConsignations;
};

} // namespace

TEST_F(OutOfServiceTest, KeysAreReadByPositionInEveryLanguage) {
    EXPECT_EQ(wTechConsignations::FormatKey(12, 7), "P12C07");
    EXPECT_EQ(wTechConsignations::FormatKey(3, 0), "P03");
    Global::Get().language = 1;
    Global::ReadMarks();
    const QString key = wTechConsignations::FormatKey(12, 7);
    EXPECT_EQ(key, "P12V07");
    EXPECT_EQ(key.mid(4, 2).toInt(), 7);
}

TEST_F(OutOfServiceTest, ASecondRequestUndoesAndWhatChangesNothingIsRefused) {
    AskForThree();
    EXPECT_EQ(New(), "P03,P12C07,P40") << "by panel";
    EXPECT_EQ(TextOf(Form, "lblChannel"), "7");
    Image(7);
    Image(6);
    EXPECT_EQ(New(), "P03,P12C07") << "back again; out it is already";
    Image(2);
    EXPECT_EQ(New(), "P03,P12C07,P40C07");
    Image(4, 28);
    EXPECT_FALSE(Child(Form, "imgControl_3")->isEnabled());
    Image(2);
    Image(7);
    EXPECT_EQ(New(), "P03,P40C07");
    Press("imgDelete");
    EXPECT_TRUE(boxes.isEmpty()) << "nothing is selected";
    Press("imgNavig_2", 2);
    EXPECT_FALSE(Child(Form, "imgNavig_2")->isEnabled());
    answer = Messages::Cancel;
    Press("imgDelete");
    EXPECT_EQ(styles.last(), 33);
    EXPECT_EQ(TextOf(Form, "lblModule"), "40") << "what is selected is chosen";
    answer = Messages::Ok;
    Press("imgDelete");
    EXPECT_EQ(New(), "P03");
}

TEST_F(OutOfServiceTest, TheSiteChangesWithAYesAlone) {
    AskForThree();
    Close(Messages::Cancel);
    ASSERT_NE(Screen(Form), nullptr);
    EXPECT_EQ(styles.last(), 35);
    EXPECT_EQ(New(), "P03,P12C07,P40");
    Close(Messages::No);
    EXPECT_EQ(Screen(Form), nullptr);
    EXPECT_FALSE(Site().Modified());
    AskForThree();
    Close(Messages::Yes);
    EXPECT_EQ(Screen(Form), nullptr);
    EXPECT_FALSE(Site().Panel(3).Active());
    EXPECT_TRUE(Site().Panel(40).Active());
    EXPECT_TRUE(Site().Panel(12).Active());
    EXPECT_TRUE(Site().Panel(12).Channel(7).OutOfOrder());
    EXPECT_TRUE(Site().Modified());
}

TEST_F(OutOfServiceTest, TheTimeStandsAsLongAsTheThingIsOut) {
    clock.Set(2025, 11, 25, 2, 43, 10);
    AskForThree();
    Close(Messages::Yes);
    Site().Panel(40).setActive(false);
    clock.Advance(86'400'000);
    Forms::Show(Form);
    EXPECT_EQ(Present(), "P03 2025-11-25 02:43,P12C07 2025-11-25 02:43,P40");
    Press("imgNavig_103", 2);
    EXPECT_EQ(TextOf(Form, "lblTitle_1"), "Oil pressure");
    Image(3);
    Close(Messages::Yes);
    EXPECT_FALSE(Site().Panel(12).Channel(7).OutOfOrder());
    // Back and out again elsewhere: nobody knows since when.
    Site().Panel(3).setActive(true);
    OutOfService::DropPast();
    Site().Panel(3).setActive(false);
    Forms::Show(Form);
    EXPECT_EQ(Present(), "P03,P40");
}

TEST_F(OutOfServiceTest, AnAlarmKeepsTheEntriesAsLongAsTheyFit) {
    const auto alarm = [] {
        Forms::Show(FormNames::wRunAlarms);
        Forms::GiveWayTo({FormNames::wPolling, FormNames::wRunAlarms});
        RemoveUnloaded();
    };
    AskForThree();
    alarm();
    Forms::Show(Form);
    EXPECT_EQ(New(), "P03,P12C07,P40");
    EXPECT_FALSE(Child(Form, "lblKept")->isHidden());
    alarm();
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
    Script script;
    script.On(FormNames::dlgUserCodes, [] { Tap(FormNames::dlgUserCodes, "imgControl_0"); });
    Tap(console, note);
    EXPECT_EQ(Screen(Form), nullptr);
    Global::Get().userLevel = Levels::Technician;
    script.On(Form, [&] {
        Image(5, 40);
        Image(7);
        Close(Messages::Yes);
    });
    Tap(console, note);
    EXPECT_TRUE(Site().Panel(40).Active());
    EXPECT_TRUE(Child(console, note)->isHidden());
}
