#include "screens/menu/wMain.h"
#include "core/FormNames.h"
#include "support/FakeForm.h"
#include "support/ScreensFixture.h"

#include <QAbstractButton>
#include <QFile>

namespace {

const QString PollingForm = QStringLiteral("wPolling");
const QString Files = QStringLiteral("Files");
const QString Leave = QStringLiteral("imgNavig_10");

void SetOperator() {
    Global::Configuration().setUserCount(1);
    Global::Configuration().setUserName(1, QStringLiteral("OPERATOR"));
    Global::Configuration().setUserLevel(1, 1);
}

QString Setting(const QString& section, const QString& key) {
    return IniRead(section, key, QStringLiteral("none"));
}

} // namespace

class wMainTest : public ScreensTest {
protected:
    wMainTest() {
        Site().setModified(false);
        Forms::Load(PollingForm);
    }
    ~wMainTest() override { Forms::UnloadAllBut({}); }
    wMainTest(const wMainTest&) = delete;
    wMainTest& operator=(const wMainTest&) = delete;

    QStringList log;
};

TEST_F(wMainTest, LoadingShowsTheSiteAndLeavesItAloneWithThePollingScreen) {
    const FakeForm other(QStringLiteral("wOther"), log);
    IniWrite(Files, QStringLiteral("LastUsed"), QStringLiteral("C:\\Sites\\North.v2.kor"));
    Global::Get().userLevel = 3;
    Forms::Show(PollingForm);
    Forms::Show(FormNames::wMain);
    EXPECT_TRUE(Screen(FormNames::wMain)->Visible());
    EXPECT_FALSE(Screen(PollingForm)->Visible());
    EXPECT_EQ(log, QStringList{QStringLiteral("unload wOther")});
    EXPECT_EQ(TextOf(FormNames::wMain, QStringLiteral("lblFileName")), QStringLiteral("North.v2"));
    EXPECT_EQ(TextOf(FormNames::wMain, QStringLiteral("lblLogin_0")), QStringLiteral("3"));
    EXPECT_EQ(TextOf(FormNames::wMain, QStringLiteral("lblLogin_1")), QStringLiteral("3"));
    EXPECT_TRUE(TextOf(FormNames::wMain, QStringLiteral("lblLabels_2"))
                    .startsWith(QStringLiteral("V.2.2.27 - 20")));
    EXPECT_FALSE(Child(FormNames::wMain, QStringLiteral("lblModified"))->isVisible());
    Site().setModified(true);
    Forms::BringToFront(FormNames::wMain);
    EXPECT_TRUE(Child(FormNames::wMain, QStringLiteral("lblModified"))->isVisible());
}

TEST_F(wMainTest, ATapOnTheLanguageTakesTheNextOneAndStartsOver) {
    Forms::Show(FormNames::wMain);
    for (const int expected : {1, 2, 3, 0, 1}) {
        Tap(FormNames::wMain,
            expected % 2 == 0 ? QStringLiteral("lblLanguage_0") : QStringLiteral("imgLanguage"));
        EXPECT_EQ(Global::Get().language, expected);
        EXPECT_EQ(Setting(QStringLiteral("General"), QStringLiteral("Language")),
                  QString::number(expected));
        EXPECT_EQ(TextOf(FormNames::wMain, QStringLiteral("lblLanguage_0")), GetLanguage(expected));
        EXPECT_EQ(TextOf(FormNames::wMain, QStringLiteral("lblLanguage_1")), GetLanguage(expected));
        EXPECT_EQ(TextOf(FormNames::wMain, QStringLiteral("lblMenu_3")), GetText(610004));
        EXPECT_EQ(TextOf(FormNames::wMain, QStringLiteral("lblMenu_9")), GetText(610004));
        EXPECT_EQ(TextOf(FormNames::wMain, QStringLiteral("lblFileName")), GetText(50010));
        EXPECT_EQ(Global::Get().text10100, GetText(10100));
        EXPECT_EQ(Global::Get().panelMark, GetText(50011).left(1));
        const QRect name = Child(FormNames::wMain, QStringLiteral("lblMenu_1"))->geometry();
        const QRect tile = Child(FormNames::wMain, QStringLiteral("imgMenu_1"))->geometry();
        EXPECT_NEAR(name.center().x(), tile.center().x(), 1);
        EXPECT_EQ(Child(FormNames::wMain, QStringLiteral("lblMenu_7"))->geometry(),
                  name.translated(2, 2));
    }
}

TEST_F(wMainTest, TheHelpFileIsThatOfTheLanguageOrOfTheFirstOne) {
    const auto make = [this](const QString& name) {
        QFile file(Path(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        return file.fileName();
    };
    Forms::Show(FormNames::wMain);
    EXPECT_TRUE(Global::Get().helpFile.isEmpty());
    const QString first = make(QStringLiteral("korvanelle-en.chm"));
    Tap(FormNames::wMain, QStringLiteral("imgLanguage"));
    EXPECT_EQ(Global::Get().helpFile, first);
    const QString third = make(QStringLiteral("korvanelle-de.chm"));
    Tap(FormNames::wMain, QStringLiteral("imgLanguage"));
    EXPECT_EQ(Global::Get().helpFile, third);
}

TEST_F(wMainTest, RunModeBringsTheConsoleAndTakesTheMenuAway) {
    Forms::Show(FormNames::wMain);
    Tap(FormNames::wMain, QStringLiteral("imgMenu_3"));
    EXPECT_EQ(NbInstances(FormNames::wMain), 0);
    EXPECT_EQ(NbInstances(PollingForm), 1);
    ASSERT_EQ(NbInstances(FormNames::wRunAlarms), 1);
    EXPECT_TRUE(Screen(FormNames::wRunAlarms)->Visible());
}

TEST_F(wMainTest, FactoryModeDoesNothingAtAnyLevel) {
    Forms::Show(FormNames::wMain);
    for (const int level : {0, 4}) {
        Global::Get().userLevel = level;
        Tap(FormNames::wMain, QStringLiteral("imgMenu_5"));
        dynamic_cast<wMain*>(Screen(FormNames::wMain))->imgMenu_Click(5);
    }
    EXPECT_EQ(NbInstances(FormNames::wMain), 1);
    EXPECT_TRUE(boxes.isEmpty());
}

TEST_F(wMainTest, LeavingWhilePollingRunsNeedsAnOperator) {
    SetOperator();
    engine->setRun(true);
    Forms::Show(FormNames::wMain);
    Tap(FormNames::wMain, Leave);
    EXPECT_EQ(boxes, QStringList{GetText(20009)});
    EXPECT_EQ(styles, QList<int>{16});
    EXPECT_EQ(NbInstances(FormNames::wMain), 1);
    EXPECT_TRUE(engine->Run());

    Global::Get().userLevel = 1;
    answer = Messages::Cancel;
    Tap(FormNames::wMain, Leave);
    EXPECT_EQ(boxes.size(), 2);
    EXPECT_TRUE(engine->Run());
}

TEST_F(wMainTest, LeavingAsksByTheStateOfTheSite) {
    Site().setModified(false);
    Forms::Show(FormNames::wMain);
    for (const int kept : {int(Messages::Cancel), int(Messages::Closed)}) {
        answer = kept;
        Tap(FormNames::wMain, Leave);
        EXPECT_EQ(boxes.takeLast(), GetText(50002));
        EXPECT_EQ(styles.takeLast(), 49);
        EXPECT_EQ(NbInstances(FormNames::wMain), 1);
    }
    Site().setModified(true);
    answer = Messages::Cancel;
    Tap(FormNames::wMain, Leave);
    EXPECT_TRUE(QFile::exists(CurrentConfigFile()));
    EXPECT_EQ(boxes.last(), GetText(Site().Modified() ? 50003 : 50002));
    EXPECT_EQ(styles.last(), Site().Modified() ? 51 : 49);
    EXPECT_EQ(Setting(Files, QStringLiteral("LastConfigModified")), QStringLiteral("none"));
}

TEST_F(wMainTest, LeavingStopsTheBusTellsItAndUnloadsEverything) {
    engine->setRun(true);
    Forms::Show(FormNames::wMain);
    const FakeForm later(QStringLiteral("wLater"), log);
    QList<int> codes;
    QObject::connect(engine.get(), &wPolling::BusEvent, engine.get(),
                     [&](const EventClass& event) { codes += event.Aff(); });
    Tap(FormNames::wMain, Leave);
    EXPECT_EQ(codes, (QList<int>{SystemEvents::ApplicationStopped, SystemEvents::CommStopped}));
    EXPECT_EQ(Setting(Files, QStringLiteral("LastConfigModified")), QStringLiteral("0"));
    EXPECT_FALSE(engine->Run());
    EXPECT_TRUE(engine->IsClosing());
    EXPECT_FALSE(link->PortOpen());
    EXPECT_EQ(log.last(), QStringLiteral("unload wLater"));
    for (const QString& name : {FormNames::wMain, PollingForm, QStringLiteral("wLater")})
        EXPECT_EQ(NbInstances(name), 0) << name.toStdString();
}

TEST_F(wMainTest, ScaledLabelsKeepNineTenthsOfTheirSize) {
    Global::Get().noResize = false;
    OverrideScreenSize({1600, 1200});
    Forms::Show(FormNames::wMain);
    // 16 pixels twice as large, less the step below the goal, times 0.9.
    EXPECT_EQ(Child(FormNames::wMain, QStringLiteral("lblMenu_0"))->font().pixelSize(),
              qRound(31 * 0.9));
    EXPECT_EQ(Screen(FormNames::wMain)->size(), QSize(1600, 1200));
}
