#include "core/ErrorHandling.h"
#include "screens/UsersFixture.h"

#include <QTableWidget>

namespace {

const QString Table = "dlgDefPwds";

} // namespace

class DefPwdsTest : public UsersTest {
protected:
    enum Action { Add = 0, Change = 1, Delete = 2, Up = 3, Down = 4 };

    DefPwdsTest() {
        Site().setUserCount(3);
        SetUser(3, "TECHNICIAN", "TECH", 3);
        Site().setModified(false);
    }

    static void Open(int level) {
        Global::Get().userLevel = level;
        Forms::Show(Table);
    }
    static QTableWidget& Grid() { return *Find<QTableWidget>(Table, "grdUsers"); }
    static QStringList Rows() {
        QStringList rows;
        for (int row = 0; row < Grid().rowCount(); ++row)
            rows += QStringLiteral("%1 %2 %3")
                        .arg(Grid().item(row, 0)->text(), Grid().item(row, 1)->text(),
                             Grid().item(row, 2)->text());
        return rows;
    }
    static void Press(Action action) { Tap(Table, "imgControl", action); }
    static bool Offers(Action action) {
        return Child(Table, Part("imgControl", action))->isVisible();
    }
    static void Save() { Tap(Table, "cmdBoutons_1"); }
    static void Choose(int row) { TapRow(&Grid(), row); }
    /// What is typed over the fields of the form that comes next.
    void Fill(const char* name, const char* code) {
        script.On(Codes(), [name, code] {
            Box(0)->setText(name);
            Box(1)->setText(code);
            Confirm();
        });
    }
};

TEST_F(DefPwdsTest, UsersAboveTheOwnLevelAreHiddenAndKept) {
    Open(2);
    EXPECT_EQ(Rows(), (QStringList{"OPERATOR OP-1 1", "MANAGER SAME 2", "TECHNICIAN TECH 3"}));
    EXPECT_TRUE(Grid().isRowHidden(2));
    EXPECT_FALSE(Grid().isRowHidden(1));
    EXPECT_TRUE(Offers(Change) && Offers(Delete));
    Grid().setCurrentCell(2, 0);
    EXPECT_FALSE(Offers(Change) || Offers(Delete));
    Choose(1);
    EXPECT_TRUE(Offers(Change) && Offers(Delete));
    for (const auto& [arrow, row] : {std::pair(Up, 0), std::pair(Down, 1), std::pair(Down, 1)}) {
        Press(arrow);
        EXPECT_EQ(Grid().currentRow(), row) << "what can't be seen can't be reached";
    }
    Press(Delete);
    Save();
    EXPECT_EQ(Site().UserCount(), 2);
    EXPECT_EQ(Site().UserName(2) + Site().UserPwd(2), "TECHNICIANTECH");
    EXPECT_EQ(Site().UserLevel(2), 3);
    EXPECT_TRUE(Site().Modified());
    EXPECT_EQ(NbInstances(Table), 0);

    Site().setUserLevel(1, 2);
    Forms::Show(Table);
    EXPECT_FALSE(Grid().isRowHidden(1)) << "an open site hides nobody";
}

TEST_F(DefPwdsTest, DoublesOfStoredUsersAreRefused) {
    Open(3);
    // Two new ones aren't compared with each other.
    for (const auto& [name, code] : {std::pair("manager", "NEW"), std::pair("NEW", "tech"),
                                     std::pair("NEW", "1234"), std::pair("NEW", "1234")}) {
        Fill(name, code);
        Press(Add);
    }
    EXPECT_EQ(boxes, (QStringList{GetText(640100), GetText(640101)}));
    EXPECT_EQ(styles, (QList<int>{16, 16}));
    EXPECT_EQ(Grid().rowCount(), 5);
    Tap(Table, "cmdBoutons_0");
    EXPECT_EQ(Site().UserCount(), 3) << "not before it is saved";
    EXPECT_FALSE(Site().Modified());
}

TEST_F(DefPwdsTest, AUserMayKeepTheOwnNameAndCode) {
    Open(3);
    Choose(1);
    script.On(Codes(), [] {
        EXPECT_EQ(Box(0)->text(), "MANAGER");
        EXPECT_EQ(Box(1)->text(), "SAME");
        EXPECT_EQ(TextOf(Codes(), "lblPwdLevel"), "2");
        TapImage(3);
        Confirm();
    });
    Press(Change);
    EXPECT_EQ(Rows()[1], "MANAGER SAME 3");
    script.On(Codes(), [] {
        TapKeys("X");
        Cancel();
    });
    Press(Change);
    EXPECT_EQ(Rows()[1], "MANAGER SAME 3");
    // The row above goes: the user is still the second one of the site.
    Choose(0);
    Press(Delete);
    Choose(0);
    Fill("MANAGER", "OP-1");
    Press(Change);
    EXPECT_EQ(boxes.last(), GetText(640101)) << "the deleted user is in the site until it is saved";
    Fill("MANAGER", "SAME2");
    Press(Change);
    EXPECT_EQ(Rows()[0], "MANAGER SAME2 3");
    Save();
    EXPECT_EQ(Site().UserName(1), "MANAGER");
    EXPECT_EQ(Site().UserLevel(1), 3);
}

TEST_F(DefPwdsTest, AnAlarmLosesNoChangeAndShowsItToNobodyOfALowerLevel) {
    Open(3);
    Fill("NEW", "1234");
    Press(Add);
    NobodyIsThere();
    RemoveUnloaded();
    Open(2);
    EXPECT_EQ(Grid().rowCount(), 3);
    EXPECT_FALSE(Child(Table, "lblKept")->isVisible());
    Tap(Table, "cmdBoutons_0");
    Open(3);
    EXPECT_TRUE(Child(Table, "lblKept")->isVisible());
    ASSERT_EQ(Rows().value(3), "NEW 1234 0");
    Choose(0);
    Press(Delete);
    AlarmComes();
    RemoveUnloaded();
    Open(3);
    Save();
    EXPECT_EQ(Site().UserCount(), 3);
    EXPECT_EQ(Site().UserName(3), "NEW");
    Open(3);
    EXPECT_FALSE(Child(Table, "lblKept")->isVisible());
}

TEST_F(DefPwdsTest, AUserWhoWasHalfEnteredStandsThereAgain) {
    const auto interrupt = [this](const char* name, const char* code) {
        script.On(Codes(), [name, code] {
            Box(0)->setText(name);
            Box(1)->setText(code);
            AlarmComes();
        });
    };
    const auto expect = [this](const QString& name, const QString& code, bool told) {
        script.On(Codes(), [=] {
            EXPECT_EQ(Box(0)->text() + u' ' + Box(1)->text(), name + u' ' + code);
            EXPECT_EQ(Child(Codes(), "lblTold")->isVisible(), told);
            Cancel();
        });
    };
    Open(3);
    interrupt("NE", "12");
    Press(Add);
    RemoveUnloaded();
    Open(2);
    EXPECT_FALSE(Child(Table, "lblKept")->isVisible()) << "not for a lower level";
    expect("", "", false);
    Press(Add);
    Tap(Table, "cmdBoutons_0");
    Open(3);
    EXPECT_TRUE(Child(Table, "lblKept")->isVisible());
    Choose(1);
    expect("MANAGER", "SAME", false);
    Press(Change);
    AlarmComes();
    RemoveUnloaded();
    Open(3);
    expect("NE", "12", true);
    Press(Add);
    expect("", "", false);
    Press(Add);
    Choose(1);
    interrupt("MANAGER", "SAM");
    Press(Change);
    RemoveUnloaded();
    Open(3);
    EXPECT_EQ(Grid().currentRow(), 1);
    expect("MANAGER", "SAM", true);
    Press(Change);
    Tap(Table, "cmdBoutons_0");
}

TEST_F(DefPwdsTest, DeletingAsksAndATableOfNobodyCantBeSaved) {
    Open(3);
    answer = Messages::Cancel;
    Press(Delete);
    EXPECT_EQ(styles, QList<int>{1});
    EXPECT_EQ(Grid().rowCount(), 3);
    answer = Messages::Ok;
    for (int i = 0; i < 4; ++i)
        Press(Delete);
    EXPECT_EQ(boxes, QStringList(4, GetText(30007))) << "nobody left: nothing to ask";
    Press(Change);
    EXPECT_EQ(NbInstances(Codes()), 0);
    Save();
    EXPECT_EQ(boxes.last(), ErrorHandling::ErrorText("dlgDefPwds.cmdBoutons_Click", 9));
    EXPECT_EQ(Site().UserCount(), 3);
    EXPECT_EQ(NbInstances(Table), 1);
}
