// The site file under the main menu: saving, opening, a new site, and what leaving does with it.

#include "core/FormNames.h"
#include "screens/UsersFixture.h"

#include <QMessageBox>
#include <QProcess>

namespace {

const QString Picker = QStringLiteral("dlgFilePicker");
const QString SaveAs = QStringLiteral("imgNavig_8");
const QString OpenFile = QStringLiteral("imgNavig_9");
const QString LeaveProgram = QStringLiteral("imgNavig_10");
const QString NewSite = QStringLiteral("imgNavig_11");

QString FilesKey(const char* key) {
    return IniRead(QStringLiteral("Files"), QString::fromLatin1(key), QStringLiteral("none"));
}

} // namespace

class wMainFilesTest : public UsersTest {
protected:
    wMainFilesTest() {
        QDir(Path(QString())).mkdir(QStringLiteral("sites"));
        setLastUsed(North());
        Forms::Load(QStringLiteral("wPolling"));
        Global::Get().userLevel = 2;
        Site().setInactivityTime(25);
        Site().Panel(7).setTitle(QStringLiteral("Pumps"));
        Site().setModified(false);
        Forms::Show(FormNames::wMain);
    }

    QString InSites(const char* name) const {
        return Path(QStringLiteral("sites/") + QString::fromLatin1(name));
    }
    QString North() const { return InSites("North.kv2"); }
    static void setLastUsed(const QString& path) {
        IniWrite(QStringLiteral("Files"), QStringLiteral("LastUsed"), path);
    }
    /// The site as it is in a file, and another one in its place.
    static void Exchange(const QString& path) {
        EXPECT_EQ(Site().Save(path), -1);
        Global::setConfiguration(nullptr);
        SetUser(1, "OPERATOR", "OP-1", 1);
        Site().setModified(false);
    }
    static QString ShownName() { return TextOf(FormNames::wMain, QStringLiteral("lblFileName")); }
    static bool ShowsModified() {
        return Child(FormNames::wMain, QStringLiteral("lblModified"))->isVisible();
    }

    /// Takes what the picker starts with.
    void Take() {
        script.On(Picker, [] { Tap(Picker, QStringLiteral("imgControl_1")); });
    }
    void TakeNothing() {
        script.On(Picker, [] { Tap(Picker, QStringLiteral("imgControl_0")); });
    }
    /// Types another name first.
    void Take(const char* name) {
        script.On(Picker, [this, name] {
            script.Next(FormNames::dlgKeyboard, [name] {
                auto* box = qobject_cast<QLineEdit*>(
                    Child(FormNames::dlgKeyboard, QStringLiteral("txtValue_0")));
                box->clear();
                QTest::keyClicks(box, QString::fromLatin1(name));
                Tap(FormNames::dlgKeyboard, QStringLiteral("imgControl_1"));
            });
            Tap(Picker, QStringLiteral("imgName"));
            Tap(Picker, QStringLiteral("imgControl_1"));
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

    QObject plainBox;
    QStringList plainTexts;
};

TEST_F(wMainFilesTest, TheSiteFileIsForTheConfigurationLevel) {
    Global::Get().userLevel = 1;
    for (const QString& image : {SaveAs, OpenFile, NewSite})
        Tap(FormNames::wMain, image);
    EXPECT_EQ(boxes, QStringList(3, GetText(20009)));
    EXPECT_EQ(styles, QList<int>(3, 16));
    EXPECT_EQ(Site().UserCount(), 4);
}

TEST_F(wMainFilesTest, LoginAsksFromItsImageAndFromTheLevel) {
    for (const auto& [name, code] :
         {std::pair("imgNavig_13", "OP-1"), std::pair("lblLogin_0", "SAME")}) {
        Enter(code);
        Tap(FormNames::wMain, QString::fromLatin1(name));
    }
    EXPECT_EQ(TextOf(FormNames::wMain, QStringLiteral("lblLogin_0")), QStringLiteral("2"));
    EXPECT_EQ(Global::Get().userName, QStringLiteral("MANAGER"));
}

TEST_F(wMainFilesTest, SavingStartsAtTheLastNameAndTakesTheNewOne) {
    Site().setModified(true);
    script.On(Picker, [] {
        EXPECT_EQ(TextOf(Picker, QStringLiteral("lblName")), QStringLiteral("North.kv2"));
        Tap(Picker, QStringLiteral("imgControl_0"));
    });
    Tap(FormNames::wMain, SaveAs);
    EXPECT_FALSE(QFile::exists(CurrentConfigFile()));
    EXPECT_TRUE(Site().Modified());
    Take("South");
    Tap(FormNames::wMain, SaveAs);
    ConfigClass saved;
    EXPECT_EQ(saved.Read(InSites("South.kv2")), 0);
    EXPECT_EQ(saved.Panel(7).Title(), QStringLiteral("Pumps"));
    EXPECT_EQ(FilesKey("LastUsed"), InSites("South.kv2"));
    EXPECT_EQ(ShownName(), QStringLiteral("South"));
    EXPECT_FALSE(Site().Modified());
    EXPECT_FALSE(ShowsModified());
    EXPECT_TRUE(QFile::exists(CurrentConfigFile()));
    EXPECT_TRUE(boxes.isEmpty());
}

TEST_F(wMainFilesTest, ASavingThatFailsIsToldInAPlainBoxAndKeepsTheName) {
    // A file on a full disk.
    ASSERT_TRUE(QFile::link(QStringLiteral("/dev/full"), InSites("Full.kv2")));
    Site().setModified(true);
    Take("Full");
    AtPlainBox([](QMessageBox* box) {
        EXPECT_EQ(box->icon(), QMessageBox::Critical);
        QTest::mouseClick(box->button(QMessageBox::Ok), Qt::LeftButton);
    });
    Tap(FormNames::wMain, SaveAs);
    EXPECT_EQ(plainTexts, QStringList{GetText(20002)});
    EXPECT_EQ(FilesKey("LastUsed"), North());
    EXPECT_EQ(ShownName(), QStringLiteral("North"));
    EXPECT_TRUE(Site().Modified());
    EXPECT_TRUE(ShowsModified());
    EXPECT_TRUE(QFile::exists(CurrentConfigFile()));
}

TEST_F(wMainFilesTest, ASavingThatFailsStopsWhateverWantedIt) {
    ASSERT_TRUE(QFile::link(QStringLiteral("/dev/full"), InSites("Full.kv2")));
    for (const QString& image : {OpenFile, NewSite, LeaveProgram}) {
        QList<int> answers{Messages::Yes, Messages::Ok};
        if (image == NewSite) // the question for a new site comes first
            answers.prepend(Messages::Ok);
        Messages::Install([&](const QString&, int, bool) {
            return answers.isEmpty() ? int(Messages::Cancel) : answers.takeFirst();
        });
        Site().setModified(true);
        Take("Full");
        AtPlainBox([](QMessageBox* box) { box->accept(); });
        Tap(FormNames::wMain, image);
        ASSERT_NE(Screen(FormNames::wMain), nullptr) << image.toStdString();
        EXPECT_EQ(Site().Panel(7).Title(), QStringLiteral("Pumps")) << image.toStdString();
        EXPECT_TRUE(Site().Modified());
        EXPECT_EQ(FilesKey("LastUsed"), North());
        ConfigClass kept;
        EXPECT_LT(kept.Read(CurrentConfigFile()), 1);
        EXPECT_EQ(kept.Panel(7).Title(), QStringLiteral("Pumps"));
    }
}

// The file from which the program starts can't be written, the site's own can.
TEST_F(wMainFilesTest, AStartFileThatFailsIsToldAndLeavesTheSiteModified) {
    ASSERT_TRUE(QDir().mkpath(CurrentConfigFile()));
    Site().setModified(true);
    Take("South");
    AtPlainBox([](QMessageBox* box) { box->accept(); });
    Tap(FormNames::wMain, SaveAs);
    EXPECT_EQ(plainTexts.size(), 1);
    EXPECT_TRUE(QFile::exists(InSites("South.kv2")));
    EXPECT_TRUE(Site().Modified());
    EXPECT_TRUE(ShowsModified());
}

TEST_F(wMainFilesTest, AnOpenedSiteIsTheOneThatThePollingGoesOnWith) {
    AddPanel(3, 1);
    IniWrite(QStringLiteral("Ports"), QStringLiteral("LPT1"), QStringLiteral("/dev/null"));
    Site().setPrtSettings(QStringLiteral("LPT1:"));
    Exchange(North());
    const auto former = std::make_shared<PanelClass>();
    former->setNumero(3);
    Site().setPanel(3, former);
    AddPanel(3, 1);
    AddPanel(5, 1);
    Site().setModified(false);
    engine->setRun(true);
    engine->RunComm();
    EXPECT_GT(former->ErrCptr(0), 0);
    const QList<qint16> errors{former->ErrCptr(0), former->ErrCptr(1), former->ErrCptr(2)};
    const DateTime next = former->NextPoll();
    const auto reinits = TraceLines().filter(QStringLiteral("REINIT")).size();
    Take();
    Tap(FormNames::wMain, OpenFile);
    EXPECT_EQ(Site().Panel(7).Title(), QStringLiteral("Pumps"));
    EXPECT_EQ(FilesKey("LastUsed"), North());
    EXPECT_EQ(ShownName(), QStringLiteral("North"));
    EXPECT_FALSE(Site().Modified());
    EXPECT_FALSE(ShowsModified());
    EXPECT_TRUE(QFile::exists(CurrentConfigFile()));
    EXPECT_TRUE(engine->UserSleep().Enabled());
    EXPECT_EQ(engine->UserSleep().Count(), 250);
    EXPECT_EQ(engine->dpPrinter().Port(), QStringLiteral("LPT1"));
    EXPECT_TRUE(engine->Run());
    EXPECT_EQ(TraceLines().filter(QStringLiteral("REINIT")).size(), reinits + 1);
    for (int round = 0; round < 6; ++round) {
        clock.Advance(2000);
        engine->RunComm();
    }
    EXPECT_GT(Site().Panel(3).ErrCptr(0), 0) << "polled";
    EXPECT_EQ((QList<qint16>{former->ErrCptr(0), former->ErrCptr(1), former->ErrCptr(2)}), errors);
    EXPECT_EQ(former->NextPoll(), next);
    EXPECT_EQ(former.use_count(), 1);
}

TEST_F(wMainFilesTest, AFileThatCantBeReadLeavesTheSiteWithoutAName) {
    QFile junk(North());
    ASSERT_TRUE(junk.open(QIODevice::WriteOnly));
    junk.write(QByteArray(2000, 'x'));
    junk.close();
    const QStringList former = TraceLines().filter(QStringLiteral("REINIT"));
    Take();
    AtPlainBox([](QMessageBox* box) { box->accept(); });
    Tap(FormNames::wMain, OpenFile);
    EXPECT_EQ(plainTexts, QStringList{GetText(20003)});
    EXPECT_EQ(FilesKey("LastUsed"), QString());
    EXPECT_EQ(ShownName(), GetText(50010));
    EXPECT_EQ(Site().Panel(7).Title(), ConfigClass().Panel(7).Title()) << "a new site";
    EXPECT_TRUE(QFile::exists(CurrentConfigFile()));
    EXPECT_EQ(TraceLines().filter(QStringLiteral("REINIT")), former) << "the bus isn't told";
}

TEST_F(wMainFilesTest, OpeningAsksWhatBecomesOfTheChanges) {
    Exchange(North());
    Site().Panel(9).setTitle(QStringLiteral("Changed"));
    for (const int kept : {int(Messages::Cancel), int(Messages::Closed)}) {
        answer = kept;
        Tap(FormNames::wMain, OpenFile);
    }
    answer = Messages::Yes;
    TakeNothing();
    Tap(FormNames::wMain, OpenFile);
    EXPECT_EQ(boxes, QStringList(3, GetText(50003)));
    EXPECT_EQ(styles, QList<int>(3, 51));
    EXPECT_EQ(Site().Panel(9).Title(), QStringLiteral("Changed"));

    Take("South");
    Take();
    Tap(FormNames::wMain, OpenFile);
    EXPECT_EQ(FilesKey("LastUsed"), InSites("South.kv2")) << "the second picker starts at it";
    EXPECT_EQ(Site().Panel(9).Title(), QStringLiteral("Changed"));

    Site().Panel(9).setTitle(QStringLiteral("Lost"));
    answer = Messages::No;
    Take();
    Tap(FormNames::wMain, OpenFile);
    EXPECT_EQ(Site().Panel(9).Title(), QStringLiteral("Changed"));
}

TEST_F(wMainFilesTest, ANewSiteIsEmptyAndHasTheWordForItsName) {
    answer = Messages::Cancel;
    Tap(FormNames::wMain, NewSite);
    EXPECT_EQ(boxes, QStringList{GetText(30013)});
    EXPECT_EQ(styles, QList<int>{1});
    EXPECT_EQ(Site().UserCount(), 4);
    answer = Messages::Ok;
    Tap(FormNames::wMain, NewSite);
    EXPECT_EQ(boxes.size(), 2) << "nothing to save";
    EXPECT_EQ(Site().UserCount(), 2);
    EXPECT_EQ(FilesKey("LastUsed"), GetText(50010));
    EXPECT_EQ(ShownName(), GetText(50010));
    EXPECT_TRUE(QFile::exists(CurrentConfigFile()));
    Forms::Unload(FormNames::wMain);
    Forms::Show(FormNames::wMain);
    EXPECT_EQ(ShownName(), GetText(50010));
}

TEST_F(wMainFilesTest, ANewSiteLetsTheChangesBeSaved) {
    QList<int> answers{Messages::Ok,  Messages::Cancel, Messages::Ok,
                       Messages::Yes, Messages::Ok,     Messages::Yes};
    Messages::Install([&](const QString& text, int, bool) {
        boxes += text;
        return answers.takeFirst();
    });
    Site().Panel(9).setTitle(QStringLiteral("Changed"));
    Tap(FormNames::wMain, NewSite);
    TakeNothing();
    Tap(FormNames::wMain, NewSite);
    EXPECT_EQ(Site().Panel(9).Title(), QStringLiteral("Changed"));
    Take();
    Tap(FormNames::wMain, NewSite);
    EXPECT_TRUE(answers.isEmpty());
    EXPECT_EQ(boxes.filter(GetText(50003)).size(), 3);
    EXPECT_NE(Site().Panel(9).Title(), QStringLiteral("Changed"));
    ConfigClass saved;
    EXPECT_EQ(saved.Read(North()), 0);
    EXPECT_EQ(saved.Panel(9).Title(), QStringLiteral("Changed"));
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
        Tap(FormNames::wMain, LeaveProgram);
        EXPECT_EQ(boxes.last(), GetText(50003));
        EXPECT_EQ(FilesKey("LastConfigModified"),
                  named ? QStringLiteral("0") : QStringLiteral("1"));
        EXPECT_EQ(QFile::exists(North()), named);
        EXPECT_EQ(NbInstances(FormNames::wMain), 0);
        EXPECT_EQ(events.last(), SystemEvents::CommStopped);
        RemoveUnloaded();
        Forms::Load(QStringLiteral("wPolling"));
        Forms::Show(FormNames::wMain);
    }
}

TEST_F(wMainFilesTest, NobodyThereEndsTheQuestionsAndNothingIsSaved) {
    Site().setModified(true);
    answer = Messages::Yes;
    for (const QString& image : {SaveAs, OpenFile, NewSite, LeaveProgram}) {
        Global::Get().userLevel = 2;
        if (image == NewSite) // the question for a new site wants another answer
            answer = Messages::Ok;
        if (image != NewSite)
            script.On(Picker, [this] { NobodyIsThere(); });
        else
            QTimer::singleShot(0, &plainBox, [this] { NobodyIsThere(); });
        Tap(FormNames::wMain, image);
        QCoreApplication::processEvents();
        EXPECT_EQ(NbInstances(FormNames::wMain) + NbInstances(Picker), 0);
        EXPECT_EQ(NbInstances(QStringLiteral("wPolling")), 1) << "the program goes on";
        RemoveUnloaded();
        answer = Messages::Yes;
        Forms::Show(FormNames::wMain);
    }
    EXPECT_FALSE(QFile::exists(North()));
    // The plain box goes as well.
    Global::Get().userLevel = 2;
    setLastUsed(InSites("Junk.kv2"));
    QFile junk(InSites("Junk.kv2"));
    ASSERT_TRUE(junk.open(QIODevice::WriteOnly));
    junk.write(QByteArray(2000, 'x'));
    junk.close();
    answer = Messages::No;
    Take();
    AtPlainBox([this](QMessageBox*) { NobodyIsThere(); });
    Tap(FormNames::wMain, OpenFile);
    EXPECT_EQ(plainTexts, QStringList{GetText(20003)});
    EXPECT_EQ(NbInstances(FormNames::wMain), 0);
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
}

TEST_F(wMainFilesTest, TheScreenKeyboardOfThePlatformComesIfThereIsOne) {
    QTest::keyClick(Screen(FormNames::wMain), Qt::Key_F12);
    const QString general = QStringLiteral("General");
    const QString key = QStringLiteral("ScreenKeyboard");
    const QString mark = Path(QStringLiteral("typed"));
    IniWrite(general, key, QStringLiteral("/bin/touch ") + mark);
    QTest::keyClick(Screen(FormNames::wMain), Qt::Key_F12);
    EXPECT_TRUE(Comes([&] { return QFile::exists(mark); }));

    const QString program = Path(QStringLiteral("kb%1").arg(QCoreApplication::applicationPid()));
    ASSERT_TRUE(QFile::copy(QStringLiteral("/bin/sleep"), program));
    IniWrite(general, key, program + QStringLiteral(" 30"));
    QProcess standing;
    standing.start(program, {QStringLiteral("30")});
    ASSERT_TRUE(standing.waitForStarted());
    TakeNothing();
    Tap(FormNames::wMain, SaveAs);
    EXPECT_TRUE(standing.waitForFinished(60000)) << "it goes with the picker";
}
