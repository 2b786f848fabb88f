// The two submenus and where their buttons and the tiles lead.

#include "core/FormNames.h"
#include "screens/UsersFixture.h"
#include "screens/menu/wMain.h"
#include "screens/touch/Navigation.h"
#include "support/FakeForm.h"

namespace {

const QString Parameters = QStringLiteral("dlgMenuParams");
const QString System = QStringLiteral("dlgMenuSystem");
const QString Users = QStringLiteral("dlgDefPwds");

class EmptyScreen : public ScreenForm {
public:
    explicit EmptyScreen(const QString& name, Kind kind = Kind::Screen)
        : ScreenForm(name, kind) {
        resize(200, 100);
        Prepare();
    }
};

} // namespace

class MenusTest : public UsersTest {
protected:
    MenusTest() {
        Forms::Load(QStringLiteral("wPolling"));
        Global::Get().userLevel = 3;
        Forms::Show(FormNames::wMain);
    }
    ~MenusTest() override {
        for (const QString& name : added)
            Forms::Register(name, nullptr);
    }
    MenusTest(const MenusTest&) = delete;
    MenusTest& operator=(const MenusTest&) = delete;

    /// Puts a screen of that name into the program.
    void AddScreen(const QString& name, ScreenForm::Kind kind = ScreenForm::Kind::Screen) {
        Forms::Register(name, [name, kind] { return new EmptyScreen(name, kind); });
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
};

TEST_F(MenusTest, EveryTileAndButtonLeadsToItsScreenOrTellsThatThereIsNone) {
    struct Way {
        int tile;
        QString dialog;
        int button;
        const char* screen;
    };
    const QList<Way> ways{
        {0, QString(), 0, "wBusModules"},
        {4, QString(), 0, "wTechnician"},
        {1, Parameters, 1, "wParamConsignes"},
        {1, Parameters, 2, "wParamBiblio"},
        {1, Parameters, 3, "wParamEcran"},
        {1, Parameters, 4, "wParamPrinter"},
        {2, System, 1, "wSysComm"},
        {2, System, 2, "wSysConfSon"},
    };
    for (const Way& way : ways) {
        const QString name = QString::fromLatin1(way.screen);
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
    EXPECT_EQ(NbInstances(Parameters) + NbInstances(System), 0);
    EXPECT_EQ(NbInstances(FormNames::wMain), 1);
    EXPECT_TRUE(boxes.isEmpty());
    TapTile(5);
    EXPECT_EQ(NbInstances(FormNames::wMain), 1);
    EXPECT_TRUE(boxes.isEmpty());
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
        if (tile == 1)
            Choose(Parameters, 0);
        if (tile == 2)
            Choose(System, 0);
        TapTile(tile);
        EXPECT_EQ(Global::Get().userLevel, 2);
        EXPECT_EQ(TextOf(FormNames::wMain, QStringLiteral("lblLogin_0")), QStringLiteral("2"));
        EXPECT_EQ(boxes.size(), tile == 0 ? 1 : 0);
        boxes.clear();
    }
    // The level that stays is the one that is shown, whatever the entry was good for.
    Global::Get().userLevel = 1;
    Enter("");
    GiveUp();
    TapTile(0);
    EXPECT_EQ(TextOf(FormNames::wMain, QStringLiteral("lblLogin_0")), QStringLiteral("0"));
    Enter("OP-1");
    GiveUp();
    TapTile(0);
    EXPECT_EQ(TextOf(FormNames::wMain, QStringLiteral("lblLogin_0")), QStringLiteral("1"));
    Enter("SAME");
    Enter("SAME");
    GiveUp();
    TapTile(4);
    EXPECT_TRUE(boxes.isEmpty()) << "level 2 is no technician";
}

TEST_F(MenusTest, ASiteWithoutOperatorIsOpen) {
    Global::Get().userLevel = 0;
    Site().setUserLevel(1, 2);
    TapTile(4);
    TapTile(0);
    Choose(Parameters, 0);
    TapTile(1);
    EXPECT_EQ(boxes.size(), 2);
}

TEST_F(MenusTest, TheTimeDialogLeavesTheMenuAndComesBackToItsSubmenu) {
    const QString time = QStringLiteral("dlgSysTime");
    AddScreen(time, ScreenForm::Kind::Dialog);
    Choose(System, 3);
    script.On(time, [time] { ReturnToMenu(*Screen(time), 2); });
    Choose(System, 0);
    TapTile(2);
    EXPECT_EQ(NbInstances(time) + NbInstances(System), 0);
    EXPECT_TRUE(Screen(FormNames::wMain)->Visible());
}

TEST_F(MenusTest, UsersAreSavedWithTheCurrentSiteBeforeTheSubmenuComesBack) {
    Site().setModified(false);
    Choose(System, 4);
    script.On(Users, [] { Tap(Users, QStringLiteral("cmdBoutons_0")); });
    Choose(System, 4);
    script.On(Users, [] {
        EXPECT_FALSE(QFile::exists(CurrentConfigFile())) << "nothing was changed";
        Tap(Users, QStringLiteral("imgControl_2"));
        Tap(Users, QStringLiteral("cmdBoutons_1"));
    });
    script.On(System, [] {
        EXPECT_TRUE(QFile::exists(CurrentConfigFile()));
        EXPECT_EQ(Site().UserCount(), 3);
        Tap(System, QStringLiteral("cmdButtons_0"));
    });
    TapTile(2);
    EXPECT_EQ(NbInstances(Users) + NbInstances(System), 0);
    EXPECT_TRUE(Child(FormNames::wMain, QStringLiteral("lblModified"))->isVisible());
}

TEST_F(MenusTest, AScreenLeavesForTheSubmenuThatItBelongsTo) {
    const QString name = QStringLiteral("wParamBiblio");
    AddScreen(name);
    Choose(Parameters, 2);
    TapTile(1);
    ASSERT_EQ(NbInstances(FormNames::wMain), 0);
    Choose(Parameters, 0);
    ReturnToMenu(*Screen(name), 1);
    EXPECT_EQ(NbInstances(name), 0);
    EXPECT_EQ(NbInstances(Parameters), 0);
    EXPECT_TRUE(Screen(FormNames::wMain)->Visible());
}

TEST_F(MenusTest, NobodyThereEndsWhateverTheMenuAsks) {
    const auto leave = [this] { NobodyIsThere(); };
    Global::Get().userLevel = 2;
    script.On(Codes(), leave);
    TapTile(4);
    EXPECT_EQ(NbInstances(FormNames::wMain) + NbInstances(Codes()), 0);
    for (const QString& dialog : {System, Parameters}) {
        BackToMenu();
        Global::Get().userLevel = 2;
        script.On(dialog, leave);
        TapTile(dialog == System ? 2 : 1);
        EXPECT_EQ(NbInstances(FormNames::wMain) + NbInstances(dialog), 0);
    }
    BackToMenu();
    Global::Get().userLevel = 2;
    Choose(System, 4);
    script.On(Users, leave);
    TapTile(2);
    EXPECT_EQ(NbInstances(FormNames::wMain) + NbInstances(Users) + NbInstances(System), 0);
    EXPECT_TRUE(Screen(QStringLiteral("wRunAlarms"))->Visible());
    EXPECT_TRUE(boxes.isEmpty());
}
