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
    static void TapTile(int tile) { Tap(FormNames::wMain, QStringLiteral("imgMenu_%1").arg(tile)); }
    /// Answers the next submenu.
    void Choose(const QString& dialog, int button) {
        script.On(dialog,
                  [dialog, button] { Tap(dialog, QStringLiteral("cmdButtons_%1").arg(button)); });
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
    struct Way {
        int tile;
        QString dialog;
        int button;
        const char* screen;
    };
    const QList<Way> ways{{0, {}, 0, "wBusModules"},
                          {4, {}, 0, "wTechnician"},
                          {1, Parameters, 1, "wParamConsignes"},
                          {1, Parameters, 2, "wParamBiblio"},
                          {1, Parameters, 3, "wParamEcran"},
                          {1, Parameters, 4, "wParamPrinter"},
                          {2, System, 1, "wSysComm"},
                          {2, System, 2, "wSysConfSon"}};
    for (const Way& way : ways) {
        const QString name = way.screen;
        SCOPED_TRACE(way.screen);
        Forms::Register(name, nullptr);
        for (const bool there : {false, true}) {
            if (there)
                AddScreen(name);
            if (!way.dialog.isEmpty())
                Choose(way.dialog, way.button);
            TapTile(way.tile);
            EXPECT_EQ(NbInstances(way.dialog), 0);
            EXPECT_EQ(NbInstances(FormNames::wMain), there ? 0 : 1);
            EXPECT_EQ(NbInstances(name), there ? 1 : 0);
        }
        EXPECT_TRUE(Screen(name)->Visible());
        BackToMenu();
    }
    EXPECT_EQ(boxes, QStringList(ways.size(), GetText(612001)));
    EXPECT_EQ(styles, QList<int>(ways.size(), 64));
}

TEST_F(MenusTest, AMenuThatIsLeftDoesNothing) {
    Choose(Parameters, 0);
    TapTile(1);
    script.On(System, [] { QTest::keyClick(Screen(System), Qt::Key_Escape); });
    TapTile(2);
    TapTile(5);
    EXPECT_EQ(NbInstances(Parameters) + NbInstances(System), 0);
    EXPECT_EQ(NbInstances(FormNames::wMain), 1);
    EXPECT_TRUE(boxes.isEmpty());
}

TEST_F(MenusTest, TilesAskForTheirLevelUntilItIsReached) {
    const auto level = [] { return TextOf(FormNames::wMain, "lblLogin_0"); };
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
        EXPECT_EQ(level(), "2");
        EXPECT_EQ(boxes.size(), tile == 0 ? 1 : 0);
        boxes.clear();
    }
    // The level that stays is the one that is shown, whatever the entry was good for.
    Global::Get().userLevel = 1;
    for (const auto& [code, stays] : {std::pair("", "0"), std::pair("OP-1", "1")}) {
        Enter(code);
        GiveUp();
        TapTile(0);
        EXPECT_EQ(level(), stays);
    }
    Enter("SAME");
    GiveUp();
    TapTile(4);
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

TEST_F(MenusTest, AScreenAndTheTimeDialogLeaveForTheirSubmenu) {
    const QString time = "dlgSysTime";
    AddScreen(time, ScreenForm::Kind::Dialog);
    Choose(System, 3);
    script.On(time, [time] { ReturnToMenu(*Screen(time), 2); });
    Choose(System, 0);
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
