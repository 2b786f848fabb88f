// The site file under the main menu: saving, opening, a new site, and what leaving does with it.

#include "screens/UsersFixture.h"

#include "bus/OutOfServiceWatch.h"
#include "model/Models.h"

#include <QMessageBox>
#include <QProcess>

namespace {

const QString Picker = "dlgFilePicker";
const QString SaveAs = "imgNavig_8";
const QString OpenFile = "imgNavig_9";
const QString LeaveProgram = "imgNavig_10";
const QString NewSite = "imgNavig_11";

QString FilesKey(const char* key) {
    return IniRead("Files", key, "none");
}

} // namespace

class wMainFilesTest : public UsersTest {
protected:
    wMainFilesTest() {
        QDir(Path(QString())).mkdir("sites");
        IniWrite("Files", "LastUsed", North());
        Forms::Load("wPolling");
        Global::Get().userLevel = 2;
        Site().setInactivityTime(25);
        Site().Panel(7).setTitle("Pumps");
        Site().setModified(false);
        Forms::Show(FormNames::wMain);
    }

    QString InSites(const char* name) const { return Path(QStringLiteral("sites/") + name); }
    QString North() const { return InSites("North.kv2"); }
    /// The site as it is in a file, and another one in its place.
    static void Exchange(const QString& path) {
        EXPECT_EQ(Site().Save(path), -1);
        Global::setConfiguration(nullptr);
        SetUser(1, "OPERATOR", "OP-1", 1);
        Site().setModified(false);
    }
    static void Press(const QString& image) { Tap(FormNames::wMain, image); }
    /// What the settings, the menu and the site say of the file.
    static void ExpectFile(const QString& path, const QString& name, bool modified) {
        EXPECT_EQ(FilesKey("LastUsed"), path);
        EXPECT_EQ(TextOf(FormNames::wMain, "lblFileName"), name);
        EXPECT_EQ(Site().Modified(), modified);
        EXPECT_EQ(Child(FormNames::wMain, "lblModified")->isVisible(), modified);
        EXPECT_TRUE(QFileInfo::exists(CurrentConfigFile()));
    }
    static QString TitleIn(const QString& path, int panel) {
        ConfigClass saved;
        EXPECT_LT(saved.Read(path), 1);
        return saved.Panel(panel).Title();
    }

    /// Takes what the picker starts with.
    void Take() {
        script.On(Picker, [] { Tap(Picker, "imgControl_1"); });
    }
    void TakeNothing() {
        script.On(Picker, [] { Tap(Picker, "imgControl_0"); });
    }
    /// Types another name first.
    void Take(const char* name) {
        script.On(Picker, [this, name] {
            script.Next(FormNames::dlgKeyboard, [name] {
                Find<QLineEdit>(FormNames::dlgKeyboard, "txtValue_0")->setText(name);
                Tap(FormNames::dlgKeyboard, "imgControl_1");
            });
            Tap(Picker, "imgName");
            Tap(Picker, "imgControl_1");
        });
    }
    /// Waits for the plain box of the platform, notes its text and does something.
    void AtPlainBox(const std::function<void(QMessageBox*)>& act) {
        QTimer::singleShot(5, &plainBox, [this, act] {
            auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            if (box == nullptr) {
                AtPlainBox(act);
                return;
            }
            plainTexts += box->text();
            act(box);
        });
    }

    void AcceptPlainBox() {
        AtPlainBox([](QMessageBox* box) {
            EXPECT_EQ(box->icon(), QMessageBox::Critical);
            QTest::mouseClick(box->button(QMessageBox::Ok), Qt::LeftButton);
        });
    }
    void MakeJunk() const { WriteFile("sites/North.kv2", QByteArray(2000, 'x')); }

    QObject plainBox;
    QStringList plainTexts;
};

TEST_F(wMainFilesTest, TheSiteFileIsForTheConfigurationLevelThatALoginGives) {
    Global::Get().userLevel = 1;
    for (const QString& image : {SaveAs, OpenFile, NewSite})
        Press(image);
    EXPECT_EQ(boxes, QStringList(3, GetText(20009)));
    EXPECT_EQ(styles, QList<int>(3, 16));
    EXPECT_EQ(Site().UserCount(), 4);
    for (const auto& [name, code, level] :
         {std::tuple("imgNavig_13", "OP-1", "1"), std::tuple("lblLogin_0", "SAME", "2")}) {
        Enter(code);
        Press(name);
        EXPECT_EQ(TextOf(FormNames::wMain, "lblLogin_0"), level);
    }
    EXPECT_EQ(Global::Get().userName, "MANAGER");
}

TEST_F(wMainFilesTest, SavingStartsAtTheLastNameAndTakesTheNewOne) {
    Site().setModified(true);
    TakeNothing();
    Press(SaveAs);
    EXPECT_FALSE(QFile::exists(CurrentConfigFile()));
    EXPECT_TRUE(Site().Modified());
    Take();
    Press(SaveAs);
    ExpectFile(North(), "North", false);
    Take("South");
    Press(SaveAs);
    ExpectFile(InSites("South.kv2"), "South", false);
    EXPECT_EQ(TitleIn(InSites("South.kv2"), 7), "Pumps");
    EXPECT_TRUE(boxes.isEmpty());
}

TEST_F(wMainFilesTest, ASavingThatFailsIsToldInAPlainBoxAndStopsWhateverWantedIt) {
    // A file on a full disk.
    ASSERT_TRUE(QFile::link("/dev/full", InSites("Full.kv2")));
    for (const QString& image : {SaveAs, OpenFile, NewSite, LeaveProgram}) {
        SCOPED_TRACE(image.toStdString());
        QList<int> answers{Messages::Yes, Messages::Ok};
        if (image == NewSite) // the question for a new site comes first
            answers.prepend(Messages::Ok);
        if (image == SaveAs) // nothing is asked but whether the file is to be replaced
            answers.removeFirst();
        Messages::Install([&](const QString&, int, bool) {
            return answers.isEmpty() ? int(Messages::Cancel) : answers.takeFirst();
        });
        Site().setModified(false);
        Site().Panel(7).Channel(1).setScreenText(image);
        plainTexts.clear();
        Take("Full");
        AcceptPlainBox();
        Press(image);
        EXPECT_EQ(plainTexts, QStringList{GetText(20002)});
        ASSERT_NE(Screen(FormNames::wMain), nullptr);
        ExpectFile(North(), "North", true);
        EXPECT_EQ(Site().Panel(7).Title(), "Pumps");
        EXPECT_EQ(TitleIn(CurrentConfigFile(), 7), "Pumps");
    }
    // The file from which the program starts can't be written, the site's own can.
    QFile::remove(CurrentConfigFile());
    ASSERT_TRUE(QDir().mkpath(CurrentConfigFile()));
    Take("South");
    AcceptPlainBox();
    Press(SaveAs);
    EXPECT_EQ(plainTexts.size(), 2);
    ExpectFile(InSites("South.kv2"), "South", true);
}

TEST_F(wMainFilesTest, AnOpenedSiteIsTheOneThatThePollingGoesOnWith) {
    AddPanel(3, 1);
    IniWrite("Ports", "LPT1", "/dev/null");
    Site().setPrtSettings("LPT1:");
    Exchange(North());
    const auto former = std::make_shared<PanelClass>();
    former->setNumero(3);
    Site().setPanel(3, former);
    AddPanel(3, 1);
    Site().setModified(false);
    engine->setRun(true);
    engine->RunComm();
    EXPECT_GT(former->ErrCptr(0), 0);
    const auto reinits = TraceLines().filter("REINIT").size();
    Take();
    Press(OpenFile);
    const qint16 errors = former->ErrCptr(0);
    EXPECT_EQ(Site().Panel(7).Title(), "Pumps");
    ExpectFile(North(), "North", false);
    EXPECT_TRUE(engine->UserSleep().Enabled());
    EXPECT_EQ(engine->UserSleep().Count(), 250);
    EXPECT_EQ(engine->dpPrinter().Port(), "LPT1");
    EXPECT_TRUE(engine->Run());
    EXPECT_EQ(TraceLines().filter("REINIT").size(), reinits + 1);
    for (int round = 0; round < 6; ++round) {
        clock.Advance(2000);
        engine->RunComm();
    }
    EXPECT_GT(Site().Panel(3).ErrCptr(0), 0) << "polled";
    EXPECT_EQ(former->ErrCptr(0), errors);
    EXPECT_EQ(former.use_count(), 1);
}

TEST_F(wMainFilesTest, AFileThatCantBeReadLeavesTheSiteWithoutAName) {
    MakeJunk();
    const QStringList former = TraceLines().filter("REINIT");
    Take();
    AcceptPlainBox();
    Press(OpenFile);
    EXPECT_EQ(plainTexts, QStringList{GetText(20003)});
    ExpectFile({}, GetText(50010), Site().Modified());
    EXPECT_EQ(Site().Panel(7).Title(), ConfigClass().Panel(7).Title()) << "a new site";
    EXPECT_EQ(TraceLines().filter("REINIT"), former) << "the bus isn't told";
}

TEST_F(wMainFilesTest, WhatIsOutOfServiceGoesAndComesWithItsSite) {
    const auto history = [this] { return LinesOf("Histo202403.his").filter("ervice"); };
    AddPanel(7, Models::Q7100);
    AddPanel(8, Models::Q7100).setActive(false);
    Exchange(North());
    AddPanel(3, Models::Q7100);
    OutOfService::Apply({{{3, 5}, true, "Test"}});
    TellOutOfService();
    answer = Messages::No;
    Take();
    Press(OpenFile);
    ASSERT_EQ(history().size(), 3);
    EXPECT_TRUE(history()[1].contains("P03-C05") && history()[1].contains("Back in service"));
    EXPECT_TRUE(history()[2].contains("P08-Q71") && history()[2].contains("Out of service"));
    EXPECT_EQ(OutOfService::Memory().size(), 1);
}

TEST_F(wMainFilesTest, OpeningAsksWhatBecomesOfTheChanges) {
    Exchange(North());
    Site().Panel(9).setTitle("Changed");
    const auto open = [this](int given, const char* title) {
        answer = given;
        Press(OpenFile);
        EXPECT_EQ(Site().Panel(9).Title(), title);
    };
    open(Messages::Cancel, "Changed");
    open(Messages::Closed, "Changed");
    TakeNothing();
    open(Messages::Yes, "Changed");
    EXPECT_EQ(boxes, QStringList(3, GetText(50003)));
    EXPECT_EQ(styles, QList<int>(3, 51));

    Take("South");
    Take();
    open(Messages::Yes, "Changed");
    EXPECT_EQ(FilesKey("LastUsed"), InSites("South.kv2")) << "the second picker starts at it";
    Site().Panel(9).setTitle("Lost");
    Take();
    open(Messages::No, "Changed");
}

TEST_F(wMainFilesTest, ANewSiteLetsTheChangesBeSavedAndHasTheWordForItsName) {
    QList<int> answers{Messages::Cancel, Messages::Ok, Messages::Yes, Messages::Ok};
    Messages::Install([&](const QString& text, int style, bool) {
        boxes += text;
        styles += style;
        return answers.takeFirst();
    });
    Site().setModified(true);
    Press(NewSite);
    EXPECT_EQ(Site().UserCount(), 4);
    Take();
    Press(NewSite);
    EXPECT_EQ(TitleIn(North(), 7), "Pumps");
    EXPECT_EQ(Site().UserCount(), 2);
    ExpectFile(GetText(50010), GetText(50010), Site().Modified());
    Site().setModified(false);
    Press(NewSite);
    EXPECT_EQ(boxes, (QStringList{GetText(30013), GetText(30013), GetText(50003), GetText(30013)}))
        << "at last nothing to save";
    EXPECT_EQ(styles[0], 1);
    Forms::Unload(FormNames::wMain);
    Forms::Show(FormNames::wMain);
    EXPECT_EQ(TextOf(FormNames::wMain, "lblFileName"), GetText(50010));
}

TEST_F(wMainFilesTest, LeavingSavesUnderANameIfTheOperatorWantsIt) {
    for (const bool named : {false, true}) {
        Site().setInactivityTime(named ? 7 : 8);
        Site().setModified(true);
        answer = Messages::Yes;
        if (named)
            Take();
        else
            TakeNothing();
        Press(LeaveProgram);
        EXPECT_EQ(boxes.last(), GetText(50003));
        EXPECT_EQ(FilesKey("LastConfigModified"), named ? "0" : "1");
        EXPECT_EQ(QFile::exists(North()), named);
        EXPECT_EQ(NbInstances(FormNames::wMain), 0);
        EXPECT_EQ(events.last(), SystemEvents::CommStopped);
        RemoveUnloaded();
        Forms::Load("wPolling");
        Forms::Show(FormNames::wMain);
    }
}

TEST_F(wMainFilesTest, NobodyThereEndsTheQuestionsAndNothingIsSaved) {
    Site().setModified(true);
    for (const QString& image : {SaveAs, OpenFile, NewSite, LeaveProgram}) {
        Global::Get().userLevel = 2;
        // The question for a new site wants another answer.
        answer = image == NewSite ? Messages::Ok : Messages::Yes;
        if (image == NewSite)
            QTimer::singleShot(0, &plainBox, [this] { NobodyIsThere(); });
        else
            script.On(Picker, [this] { NobodyIsThere(); });
        Press(image);
        QCoreApplication::processEvents();
        EXPECT_EQ(NbInstances(FormNames::wMain) + NbInstances(Picker), 0);
        EXPECT_EQ(NbInstances("wPolling"), 1) << "the program goes on";
        RemoveUnloaded();
        Forms::Show(FormNames::wMain);
    }
    EXPECT_FALSE(QFile::exists(North()));
    // The plain box goes as well.
    Global::Get().userLevel = 2;
    IniWrite("Files", "LastUsed", North());
    MakeJunk();
    answer = Messages::No;
    Take();
    AtPlainBox([this](QMessageBox*) { NobodyIsThere(); });
    Press(OpenFile);
    EXPECT_EQ(plainTexts, QStringList{GetText(20003)});
    EXPECT_EQ(NbInstances(FormNames::wMain), 0);
}

TEST_F(wMainFilesTest, TheScreenKeyboardOfThePlatformComesIfThereIsOne) {
    const auto pressF12 = [](const QString& program) {
        IniWrite("General", "ScreenKeyboard", program);
        QTest::keyClick(Screen(FormNames::wMain), Qt::Key_F12);
    };
    pressF12({});
    const QString mark = Path("typed");
    pressF12("/bin/touch " + mark);
    EXPECT_TRUE(Comes([&] { return QFile::exists(mark); }));

    const QString program = Path(QStringLiteral("kb%1").arg(QCoreApplication::applicationPid()));
    ASSERT_TRUE(QFile::copy("/bin/sleep", program));
    IniWrite("General", "ScreenKeyboard", program + " 30");
    QProcess standing;
    standing.start(program, {"30"});
    ASSERT_TRUE(standing.waitForStarted());
    TakeNothing();
    Press(SaveAs);
    EXPECT_TRUE(standing.waitForFinished(60000)) << "it goes with the picker";
}
