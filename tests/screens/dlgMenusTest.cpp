// The two submenus and where their buttons and the tiles lead.

#include "screens/UsersFixture.h"
#include "screens/touch/Navigation.h"

#include <QScopeGuard>

namespace {

const QString Parameters = "dlgMenuParams";
const QString System = "dlgMenuSystem";
const QString Users = "dlgDefPwds";

} // namespace

class MenusTest : public UsersTest {
protected:
    MenusTest() {
        Forms::Load("wPolling");
        Global::Get().userLevel = 3;
        Forms::Show(FormNames::wMain);
    }

    /// Puts a screen of that name into the program.
    void AddScreen(const QString& name, ScreenForm::Kind kind = ScreenForm::Kind::Screen) {
        Forms::Register(name, [name, kind] { return new ScreenForm(name, kind); });
        added += name;
    }
    static void TapTile(int tile) { Tap(FormNames::wMain, "imgMenu", tile); }
    /// Answers the next submenu.
    void Choose(const QString& dialog, int button) {
        script.On(dialog, [dialog, button] { Tap(dialog, "cmdButtons", button); });
    }
    void BackToMenu() {
        RemoveUnloaded();
        Forms::Show(FormNames::wMain);
    }

    QStringList added;
    QScopeGuard<std::function<void()>> removal{[this] {
        for (const QString& name : added)
            Forms::Register(name, nullptr);
    }};
};

TEST_F(MenusTest, EveryTileAndButtonLeadsToItsScreenOrTellsThatThereIsNone) {
    const QList<std::tuple<int, QString, int, const char*>> ways{
        {0, {}, 0, "wBusModules"},
        {4, {}, 0, "wTechnician"},
        {1, Parameters, 1, "wParamConsignes"},
        {1, Parameters, 2, "wParamBiblio"},
        {1, Parameters, 3, "wParamEcran"},
        {1, Parameters, 4, "wParamPrinter"},
        {2, System, 1, "wSysComm"},
        {2, System, 2, "wSysConfSon"},
        {2, System, 5, "wBackup"}};
    for (const auto& [tile, dialog, button, screen] : ways) {
        const QString name = screen;
        SCOPED_TRACE(screen);
        Forms::Register(name, nullptr);
        for (const bool there : {false, true}) {
            if (there)
                AddScreen(name);
            if (!dialog.isEmpty())
                Choose(dialog, button);
            TapTile(tile);
            EXPECT_EQ(NbInstances(dialog), 0);
            EXPECT_EQ(NbInstances(FormNames::wMain), there ? 0 : 1);
            EXPECT_EQ(NbInstances(name), there ? 1 : 0);
        }
        EXPECT_TRUE(Screen(name)->Visible());
        BackToMenu();
    }
    EXPECT_EQ(boxes, QStringList(ways.size(), GetText(612001)));
    EXPECT_EQ(styles, QList<int>(ways.size(), 64));
}

TEST_F(MenusTest, TilesAskForTheirLevelUntilItIsReached) {
    for (const auto& [tile, code] :
         {std::pair(0, "SAME"), std::pair(1, "abc"), std::pair(2, "SAME")}) {
        Global::Get().userLevel = 1;
        GiveUp();
        TapTile(tile);
        EXPECT_TRUE(boxes.isEmpty());
        EXPECT_EQ(NbInstances(Parameters) + NbInstances(System), 0);
        Enter("OP-1");
        Enter(code);
        if (tile != 0)
            Choose(tile == 1 ? Parameters : System, 0);
        TapTile(tile);
        EXPECT_EQ(Global::Get().userLevel, 2);
        EXPECT_EQ(boxes.size(), tile == 0 ? 1 : 0);
        boxes.clear();
    }
    // The level that stays is the one that is shown, whatever the entry was good for.
    for (const auto& [code, stays] :
         {std::pair("", "0"), std::pair("OP-1", "1"), std::pair("SAME", "2")}) {
        Enter(code);
        GiveUp();
        TapTile(4);
        EXPECT_EQ(TextOf(FormNames::wMain, "lblLogin_0"), stays);
    }
    EXPECT_TRUE(boxes.isEmpty()) << "level 2 is no technician";
    // A site without an operator is open.
    Global::Get().userLevel = 0;
    Site().setUserLevel(1, 2);
    TapTile(4);
    TapTile(0);
    Choose(Parameters, 0);
    TapTile(1);
    EXPECT_EQ(boxes.size(), 2);
}

TEST_F(MenusTest, AScreenAndTheTimeDialogLeaveForTheirSubmenuAndAMenuThatIsLeftDoesNothing) {
    const QString time = "dlgSysTime";
    AddScreen(time, ScreenForm::Kind::Dialog);
    Choose(System, 3);
    script.On(time, [time] { ReturnToMenu(*Screen(time), 2); });
    script.On(System, [] { QTest::keyClick(Screen(System), Qt::Key_Escape); });
    TapTile(2);
    EXPECT_EQ(NbInstances(time) + NbInstances(System), 0);
    EXPECT_TRUE(Screen(FormNames::wMain)->Visible());

    const QString library = "wParamBiblio";
    AddScreen(library);
    Choose(Parameters, 2);
    TapTile(1);
    ASSERT_EQ(NbInstances(FormNames::wMain), 0);
    Choose(Parameters, 0);
    ReturnToMenu(*Screen(library), 1);
    EXPECT_EQ(NbInstances(library) + NbInstances(Parameters), 0);
    EXPECT_TRUE(Screen(FormNames::wMain)->Visible());
    TapTile(5);
    EXPECT_TRUE(boxes.isEmpty());
}

TEST_F(MenusTest, UsersAreSavedWithTheCurrentSiteBeforeTheSubmenuComesBack) {
    Site().setModified(false);
    Choose(System, 4);
    script.On(Users, [] { Tap(Users, "cmdBoutons_0"); });
    Choose(System, 4);
    script.On(Users, [] {
        EXPECT_FALSE(QFile::exists(CurrentConfigFile())) << "nothing was changed";
        Tap(Users, "imgControl_2");
        Tap(Users, "cmdBoutons_1");
    });
    script.On(System, [] {
        EXPECT_TRUE(QFile::exists(CurrentConfigFile()));
        EXPECT_EQ(Site().UserCount(), 3);
        Tap(System, "cmdButtons_0");
    });
    TapTile(2);
    EXPECT_EQ(NbInstances(Users) + NbInstances(System), 0);
    EXPECT_TRUE(Child(FormNames::wMain, "lblModified")->isVisible());
}

TEST_F(MenusTest, NobodyThereEndsWhateverTheMenuAsks) {
    const auto leaves = [this](int tile, const QString& dialog) {
        Global::Get().userLevel = 2;
        script.On(dialog, [this] { NobodyIsThere(); });
        TapTile(tile);
        EXPECT_EQ(NbInstances(FormNames::wMain) + NbInstances(dialog) + NbInstances(System), 0);
        EXPECT_TRUE(Screen("wRunAlarms")->Visible());
        EXPECT_EQ(TextOf("wRunAlarms", "lblLogin_0"), "0");
        BackToMenu();
    };
    leaves(4, Codes());
    leaves(2, System);
    leaves(1, Parameters);
    Choose(System, 4);
    leaves(2, Users);
    Choose(System, 4);
    script.On(Users, [] { Tap(Users, "imgControl_0"); });
    leaves(2, Codes());
    EXPECT_EQ(NbInstances(Users), 0);
    EXPECT_EQ(Site().UserCount(), 4);
    EXPECT_TRUE(boxes.isEmpty());
}
