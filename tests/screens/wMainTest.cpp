#include "support/FakeForm.h"
#include "support/ScreensFixture.h"

namespace {

const QString Leave = "imgNavig_10";

QString Setting(const char* section, const char* key) {
    return IniRead(section, key, "none");
}

} // namespace

class wMainTest : public ScreensTest {
protected:
    wMainTest() {
        Site().setModified(false);
        Forms::Load(FormNames::wPolling);
    }

    static QString Text(const char* label) { return TextOf(FormNames::wMain, label); }

    QStringList log;
};

TEST_F(wMainTest, LoadingShowsTheSiteAndLeavesItAloneWithThePollingScreen) {
    const FakeForm other("wOther", log);
    IniWrite("Files", "LastUsed", "C:\\Sites\\North.v2.kor");
    Global::Get().userLevel = 3;
    Forms::Show(FormNames::wPolling);
    Forms::Show(FormNames::wMain);
    EXPECT_TRUE(Screen(FormNames::wMain)->Visible());
    EXPECT_FALSE(Screen(FormNames::wPolling)->Visible());
    EXPECT_EQ(log, QStringList{"unload wOther"});
    EXPECT_EQ(Text("lblFileName"), "North.v2");
    EXPECT_EQ(Text("lblLogin_0") + Text("lblLogin_1"), "33");
    EXPECT_TRUE(Text("lblLabels_2").startsWith("V.2.2.27 - 20"));
    // Run mode.
    Tap(FormNames::wMain, "imgMenu_3");
    EXPECT_EQ(NbInstances(FormNames::wMain), 0);
    EXPECT_EQ(NbInstances(FormNames::wPolling), 1);
    EXPECT_TRUE(Screen(FormNames::wRunAlarms)->Visible());
}

TEST_F(wMainTest, ATapOnTheLanguageTakesTheNextOneAndStartsOver) {
    // The help file is that of the language or of the first one.
    const QString helpFiles[] = {Path("korvanelle-en.chm"), Path("korvanelle-de.chm")};
    for (const QString& name : helpFiles)
        WriteFile(name, {});
    Forms::Show(FormNames::wMain);
    for (const int expected : {1, 2, 3, 0, 1}) {
        Tap(FormNames::wMain, expected % 2 == 0 ? "lblLanguage_0" : "imgLanguage");
        EXPECT_EQ(Global::Get().language, expected);
        EXPECT_EQ(Global::Get().helpFile, helpFiles[expected == 2 ? 1 : 0]);
        EXPECT_EQ(Setting("General", "Language"), QString::number(expected));
        EXPECT_EQ(Text("lblLanguage_0") + Text("lblLanguage_1"), GetLanguage(expected).repeated(2));
        EXPECT_EQ(Text("lblMenu_3") + Text("lblMenu_9"), GetText(610004).repeated(2));
        EXPECT_EQ(Text("lblFileName"), GetText(50010));
        EXPECT_EQ(Global::Get().text10100, GetText(10100));
        EXPECT_EQ(Global::Get().panelMark, GetText(50011).left(1));
        const QRect name = Child(FormNames::wMain, "lblMenu_1")->geometry();
        const QRect tile = Child(FormNames::wMain, "imgMenu_1")->geometry();
        EXPECT_NEAR(name.center().x(), tile.center().x(), 1);
        EXPECT_EQ(Child(FormNames::wMain, "lblMenu_7")->geometry(), name.translated(2, 2));
    }
}

TEST_F(wMainTest, LeavingAsksByTheStateOfTheSiteAndOfThePolling) {
    Forms::Show(FormNames::wMain);
    const auto asks = [this](int text, int style, int kept = Messages::Cancel) {
        answer = kept;
        Tap(FormNames::wMain, Leave);
        EXPECT_EQ(boxes.takeLast(), GetText(text));
        EXPECT_EQ(styles.takeLast(), style);
        EXPECT_EQ(NbInstances(FormNames::wMain), 1);
    };
    asks(50002, 49);
    asks(50002, 49, Messages::Closed);
    Site().setUserCount(1);
    Site().setUserLevel(1, 1);
    engine->setRun(true);
    asks(20009, 16);
    Global::Get().userLevel = 1;
    asks(50003, 51); // the users have changed it
    EXPECT_TRUE(QFile::exists(CurrentConfigFile()));
    EXPECT_EQ(Setting("Files", "LastConfigModified"), "none");
    EXPECT_TRUE(engine->Run());
}

TEST_F(wMainTest, LeavingStopsTheBusTellsItAndUnloadsEverything) {
    engine->setRun(true);
    Forms::Show(FormNames::wMain);
    const FakeForm later("wLater", log);
    QList<int> codes;
    QObject::connect(engine.get(), &wPolling::BusEvent, engine.get(),
                     [&](const EventClass& event) { codes += event.Aff(); });
    Tap(FormNames::wMain, Leave);
    EXPECT_EQ(codes, (QList<int>{SystemEvents::ApplicationStopped, SystemEvents::CommStopped}));
    EXPECT_EQ(Setting("Files", "LastConfigModified"), "0");
    EXPECT_TRUE(engine->IsClosing() && !engine->Run() && !link->PortOpen());
    EXPECT_EQ(log.last(), "unload wLater");
    EXPECT_EQ(NbInstances(FormNames::wMain) + NbInstances(FormNames::wPolling), 0);
}

TEST_F(wMainTest, OnALargerDisplayScreensFillItAndTheMenuKeepsNineTenthsOfItsSize) {
    Global::Get().noResize = false;
    OverrideScreenSize({1600, 1200});
    Forms::Show(FormNames::wMain);
    // 16 pixels twice as large, less the step below the goal, times 0.9.
    EXPECT_EQ(Child(FormNames::wMain, "lblMenu_0")->font().pixelSize(), qRound(31 * 0.9));
    for (const QString& name : {FormNames::wMain, FormNames::wHistoric, FormNames::wTeleCmdes}) {
        Forms::Show(name);
        EXPECT_EQ(Screen(name)->size(), QSize(1600, 1200)) << name.toStdString();
    }
    EXPECT_GT(Child(FormNames::wHistoric, "grdAlarms")->width(), 1580);
}
