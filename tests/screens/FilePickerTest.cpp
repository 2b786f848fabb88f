#include "screens/dialogs/FilePicker.h"
#include "support/ScreensFixture.h"

#include <QLineEdit>
#include <QListWidget>

namespace {

const QString KeyboardName = "dlgKeyboard";
const QString SiteFilter = "Site (*.kv2)|*.kv2";

} // namespace

class FilePickerTest : public ScreensTest {
protected:
    using Act = std::function<void()>;
    inline static const QString Dialog = "dlgFilePicker";

    FilePickerTest() {
        for (const char* folder : {"sites/old/0/1", "stick/plant"})
            QDir().mkpath(Path(folder));
        for (const char* name : {"sites/b.kv2", "sites/A.KV2", "sites/note.txt", "sites/plain",
                                 "stick/s.kv2", "stick/plant/p.kv2"})
            WriteFile(name, {});
        platform::OverrideVolumes(QList<platform::Volume>{{"STICK", stick}});
    }

    static QListWidget* List() { return Find<QListWidget>(Dialog, "lstFiles"); }
    static QStringList Rows() {
        QStringList rows;
        for (int i = 0; i < List()->count(); ++i)
            rows += List()->item(i)->text();
        return rows;
    }
    static void TapRow(const QString& text) {
        const auto row = Rows().indexOf(text);
        ASSERT_GE(row, 0) << text.toStdString();
        List()->scrollToItem(List()->item(int(row)));
        ScreensTest::TapRow(List(), int(row));
        QCoreApplication::processEvents();
    }
    static void TapControl(const char* name) { Tap(Dialog, name); }
    static void Cancel() { TapControl("imgControl_0"); }
    static void Confirm() { TapControl("imgControl_1"); }
    static bool IsUp() { return Screen(Dialog)->Visible(); }
    /// Answers the keyboard that the next tap brings up.
    static void Typing(const QString& text) {
        QTimer::singleShot(0, [text] {
            auto* box = Find<QLineEdit>(KeyboardName, "txtValue_0");
            ASSERT_NE(box, nullptr);
            box->setText(text);
            Tap(KeyboardName, "imgControl_1");
        });
    }

    static QString Open(const QString& folder, const QString& name, const Act& act,
                        const QString& filter = SiteFilter) {
        return AskAt(
            Dialog, [&] { return FilePicker::Open(folder, name, filter); }, act);
    }
    static QString SaveAs(const QString& folder, const QString& name, const Act& act) {
        return AskAt(
            Dialog, [&] { return FilePicker::SaveAs(folder, name, SiteFilter); }, act);
    }
    QString Save(const QString& typed, const QString& name = {}) const {
        return SaveAs(sites, name, [&] {
            if (!typed.isEmpty()) {
                Typing(typed);
                TapControl("imgName");
            }
            Confirm();
        });
    }
    static QString Choose(const QString& folder, const Act& act) {
        return AskAt(
            Dialog, [&] { return FilePicker::ChooseFolder(folder, "Where?"); }, act);
    }

    QString sites = Path("sites");
    QString stick = Path("stick");
};

TEST_F(FilePickerTest, ListsMediaThenFoldersThenTheFilesOfThePattern) {
    const QString computer = GetText(611006);
    Open(sites, {}, [&] {
        EXPECT_EQ(Rows(), (QStringList{"STICK", computer, "old", "A.KV2", "b.kv2"}));
        EXPECT_GE(List()->visualItemRect(List()->item(0)).height(), 48);
        TapRow("STICK");
        EXPECT_EQ(Rows(), (QStringList{computer, "plant", "s.kv2"}));
        TapRow(computer);
        EXPECT_FALSE(Rows().contains(computer));
        TapRow("sites");
        // What a double tap sends doesn't go on into the folder below.
        QWidget* rows = List()->viewport();
        const QPoint at = List()->visualItemRect(List()->item(2)).center();
        TapRow("old");
        QTest::mouseDClick(rows, Qt::LeftButton, {}, at);
        QTest::mouseRelease(rows, Qt::LeftButton, {}, at);
        QCoreApplication::processEvents();
        EXPECT_EQ(Rows(), (QStringList{"STICK", computer, "0"}));
        TapControl("imgFolderUp");
        EXPECT_TRUE(Rows().contains("b.kv2"));
        EXPECT_FALSE(Child(Dialog, "cmdFilter")->isEnabled());
    });
    const auto filters = [&] {
        for (const bool all : {false, true, false}) {
            EXPECT_TRUE(Rows().contains("note.txt") && Rows().contains("b.kv2"));
            EXPECT_EQ(Rows().contains("plain"), all);
            TapControl("cmdFilter");
        }
    };
    Open(sites, {}, filters, "Text|*.txt;*.kv2|All (*.*)|*.*");
}

TEST_F(FilePickerTest, GivesTheFileThatIsTappedAndConfirmed) {
    const QString tapped = Open(sites, {}, [] {
        Confirm();
        EXPECT_TRUE(IsUp()) << "nothing is chosen yet";
        TapRow("b.kv2");
        Confirm();
    });
    EXPECT_EQ(tapped, sites + "/b.kv2");
    EXPECT_EQ(Open(sites, "A.KV2", [] { Confirm(); }), sites + "/A.KV2")
        << "the start name is chosen already";
    EXPECT_EQ(Open(sites, "A.KV2", [] { Cancel(); }), QString());
    Open(sites, "A.KV2", [] {
        TapRow("STICK");
        Confirm();
        EXPECT_TRUE(IsUp()) << "the name was of another folder";
    });
    // A folder that is gone becomes the program's.
    for (const char* gone : {"/nowhere/at/all", ""})
        Open(gone, "Unnamed", [] { EXPECT_TRUE(Rows().contains("sites")); });
    EXPECT_EQ(boxes, QStringList());
}

TEST_F(FilePickerTest, SavingAddsTheExtensionAndAsksAheadOfReplacing) {
    const QString site = sites + "/plant.2.kv2";
    EXPECT_EQ(Save(" plant.2 "), site);
    EXPECT_EQ(Save({}, "plant.2.kv2"), site);
    EXPECT_EQ(Save("X.KV2"), sites + "/X.KV2");
    EXPECT_TRUE(boxes.isEmpty());
    EXPECT_EQ(Save("b"), sites + "/b.kv2");
    ASSERT_EQ(styles, QList<int>{49});
    EXPECT_TRUE(boxes[0].contains("b.kv2"));
    for (const int refusal : {Messages::Cancel, Messages::Closed}) {
        answer = refusal;
        EXPECT_EQ(Save("b"), QString());
    }
}

TEST_F(FilePickerTest, NamesThatNoFileCanHaveAreRefused) {
    QDir(sites).mkdir("dir.kv2");
    const QStringList wrong{"", "a/b", "a\\b", "a:b", "..", "dir", "a*", QString(255, u'\u00E9')};
    for (const QString& name : wrong)
        EXPECT_EQ(Save(name), QString()) << name.toStdString();
    EXPECT_EQ(styles, QList<int>(wrong.size(), Messages::Critical));
    QDir(sites).mkdir("Ωmega");
    EXPECT_EQ(SaveAs(sites + "/Ωmega", "n", [] { Confirm(); }), QString());
    EXPECT_EQ(boxes.last(), GetText(714062)) << "the settings couldn't keep it";
}

TEST_F(FilePickerTest, AMediumTakenOutIsToldAndLeft) {
    const auto takenOut = [this](int text) {
        QDir(stick).removeRecursively();
        Confirm();
        EXPECT_EQ(boxes.last(), GetText(text));
        EXPECT_TRUE(Rows().contains("sites"));
        // It still stands among the media.
        TapRow("STICK");
        EXPECT_EQ(boxes.last(), GetText(611007));
        EXPECT_TRUE(Rows().contains("sites"));
        QDir().mkpath(stick);
    };
    EXPECT_EQ(Open(stick, "s.kv2", [&] { takenOut(611008); }), QString());
    EXPECT_EQ(SaveAs(stick, "n", [&] { takenOut(611009); }), QString());
    EXPECT_EQ(Choose(stick, [&] { takenOut(611007); }), QString());
}

TEST_F(FilePickerTest, ABoxWaitsForTheEndOfARoundOfTheBus) {
    Open(sites, {}, [&] {
        QDir(stick).removeRecursively();
        ScreensTest::TapRow(List(), int(Rows().indexOf("STICK")));
        engine->SynchroGeneraleBus();
        EXPECT_TRUE(boxes.isEmpty());
        EXPECT_TRUE(Comes([&] { return boxes == QStringList{GetText(611007)}; }));
    });
}

TEST_F(FilePickerTest, ChoosesAFolderAndMakesOne) {
    const QString old = Choose(sites + u'/', [] {
        EXPECT_EQ(TextOf(Dialog, "lblTitle"), "Where?");
        EXPECT_FALSE(Rows().contains("b.kv2"));
        TapRow("old");
        Confirm();
    });
    EXPECT_EQ(old, sites + "/old");
    const QString made = Choose(sites, [&] {
        // A file stands where the first folder should go.
        for (const char* name : {"plain", "new one"}) {
            Typing(name);
            TapControl("imgNewFolder");
            EXPECT_EQ(boxes, QStringList{GetText(611012)});
        }
        Confirm();
    });
    EXPECT_EQ(made, sites + "/new one");
    EXPECT_TRUE(QDir(made).exists());
}

TEST_F(FilePickerTest, AnAlarmMayUnloadItUnderTheKeyboardAndABox) {
    const QString typing = SaveAs(sites, "n", [&] {
        QTimer::singleShot(0, [] {
            EXPECT_NE(Screen(KeyboardName), nullptr);
            AlarmComes();
        });
        TapControl("imgName");
    });
    EXPECT_EQ(typing, QString());
    Messages::Install([](const QString&, int, bool) {
        AlarmComes();
        return int(Messages::Ok);
    });
    EXPECT_EQ(Save("b"), QString());
}
