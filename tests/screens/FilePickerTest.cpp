#include "screens/dialogs/FilePicker.h"
#include "core/FormNames.h"
#include "platform/Volumes.h"
#include "support/ScreensFixture.h"

#include <QLineEdit>
#include <QListWidget>
#include <QPointer>
#include <unistd.h>

namespace {

const QString KeyboardName = QStringLiteral("dlgKeyboard");
const QString Filter = QStringLiteral("Site (*.kv2)|*.kv2");

} // namespace

class FilePickerTest : public ScreensTest {
protected:
    enum Image { Cancel, Confirm };

    FilePickerTest() {
        QDir program(Path(QString()));
        program.mkpath(QStringLiteral("sites/old"));
        program.mkpath(QStringLiteral("stick/plant"));
        for (const auto* name : {"sites/b.kv2", "sites/A.KV2", "sites/note.txt", "sites/plain",
                                 "stick/s.kv2", "stick/plant/p.kv2"})
            Touch(QString::fromLatin1(name));
        platform::OverrideVolumes(
            QList<platform::Volume>{{QStringLiteral("STICK"), Path(QStringLiteral("stick"))}});
    }
    ~FilePickerTest() override { platform::OverrideVolumes({}); }
    FilePickerTest(const FilePickerTest&) = delete;
    FilePickerTest& operator=(const FilePickerTest&) = delete;

    void Touch(const QString& name) const {
        QFile file(Path(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    }
    QString Sites() const { return Path(QStringLiteral("sites")); }

    static QListWidget* List() {
        return qobject_cast<QListWidget*>(
            Child(FormNames::dlgFilePicker, QStringLiteral("lstFiles")));
    }
    static QStringList Rows() {
        QStringList rows;
        for (int i = 0; i < List()->count(); ++i)
            rows += List()->item(i)->text();
        return rows;
    }
    static void TapRow(const QString& text) {
        const auto found = List()->findItems(text, Qt::MatchExactly);
        ASSERT_EQ(found.size(), 1) << text.toStdString();
        List()->scrollToItem(found[0]);
        QTest::mouseClick(List()->viewport(), Qt::LeftButton, {},
                          List()->visualItemRect(found[0]).center());
        QCoreApplication::processEvents();
    }
    static void TapImage(int index) {
        Tap(FormNames::dlgFilePicker, QStringLiteral("imgControl_%1").arg(index));
    }
    static void TapControl(const char* name) {
        Tap(FormNames::dlgFilePicker, QString::fromLatin1(name));
    }
    /// Answers the keyboard that the next tap brings up.
    static void Typing(const QString& text) {
        QTimer::singleShot(0, [text] {
            auto* box = qobject_cast<QLineEdit*>(Child(KeyboardName, QStringLiteral("txtValue_0")));
            ASSERT_NE(box, nullptr);
            box->setText(text);
            Tap(KeyboardName, QStringLiteral("imgControl_1"));
        });
    }

    QString Run(const std::function<QString()>& pick, const std::function<void()>& act) {
        bool acted = false;
        QTimer::singleShot(0, [&] {
            acted = true;
            act();
            if (ScreenForm* left = Screen(FormNames::dlgFilePicker);
                left != nullptr && left->Visible())
                left->Hide();
        });
        QString path = pick();
        EXPECT_TRUE(acted);
        EXPECT_EQ(NbInstances(FormNames::dlgFilePicker), 0);
        RemoveUnloaded();
        return path;
    }
    QString Open(const std::function<void()>& act, const QString& folder, const QString& name = {},
                 const QString& filter = Filter) {
        return Run([&] { return FilePicker::Open(folder, name, filter); }, act);
    }
    QString Save(const QString& typed, const QString& folder, const QString& name = {}) {
        return Run([&] { return FilePicker::SaveAs(folder, name, Filter); },
                   [&] {
                       if (!typed.isEmpty()) {
                           Typing(typed);
                           TapControl("imgName");
                       }
                       TapImage(Confirm);
                   });
    }
    QString Choose(const std::function<void()>& act, const QString& folder) {
        return Run([&] { return FilePicker::ChooseFolder(folder, QStringLiteral("Where?")); }, act);
    }
};

TEST(FilePickerPaths, ASettingWithoutAPathIsNoName) {
    // Without a base each text is its number.
    EXPECT_EQ(FilePicker::SiteName(QStringLiteral("C:\\sites\\North.kv2")),
              QStringLiteral("North"));
    EXPECT_EQ(FilePicker::SiteName(QStringLiteral("/North.v2.kv2")), QStringLiteral("North.v2"));
    for (const char* none : {"", "Unbenannt"})
        EXPECT_EQ(FilePicker::SiteName(QString::fromLatin1(none)), GetText(50010));
}

TEST_F(FilePickerTest, ListsMediaThenFoldersThenTheFilesOfThePattern) {
    const QString computer = GetText(611006);
    Open(
        [&] {
            EXPECT_EQ(Rows(), (QStringList{QStringLiteral("STICK"), computer, QStringLiteral("old"),
                                           QStringLiteral("A.KV2"), QStringLiteral("b.kv2")}));
            EXPECT_GE(List()->visualItemRect(List()->item(0)).height(), 48);
            TapRow(QStringLiteral("STICK"));
            EXPECT_EQ(Rows(),
                      (QStringList{computer, QStringLiteral("plant"), QStringLiteral("s.kv2")}));
            TapRow(computer);
            EXPECT_FALSE(Rows().contains(computer));
            TapRow(QStringLiteral("sites"));
            TapRow(QStringLiteral("old"));
            TapControl("imgFolderUp");
            EXPECT_TRUE(Rows().contains(QStringLiteral("b.kv2")));
        },
        Sites());
}

TEST_F(FilePickerTest, GivesTheFileThatIsTappedAndConfirmed) {
    EXPECT_EQ(Open(
                  [&] {
                      TapImage(Confirm);
                      EXPECT_TRUE(Screen(FormNames::dlgFilePicker)->Visible())
                          << "nothing is chosen yet";
                      TapRow(QStringLiteral("b.kv2"));
                      TapImage(Confirm);
                  },
                  Sites()),
              Sites() + QStringLiteral("/b.kv2"));
    EXPECT_EQ(Open([&] { TapImage(Confirm); }, Sites(), QStringLiteral("A.KV2")),
              Sites() + QStringLiteral("/A.KV2"))
        << "the start name is chosen already";
    EXPECT_EQ(Open(
                  [&] {
                      TapRow(QStringLiteral("b.kv2"));
                      TapImage(Cancel);
                  },
                  Sites()),
              QString());
    EXPECT_EQ(Open(
                  [&] {
                      TapRow(QStringLiteral("STICK"));
                      TapImage(Confirm);
                      EXPECT_TRUE(Screen(FormNames::dlgFilePicker)->Visible())
                          << "the name was of another folder";
                  },
                  Sites(), QStringLiteral("A.KV2")),
              QString());
}

TEST_F(FilePickerTest, FiltersAreChangedByATap) {
    const QString filters = QStringLiteral("Text|*.txt;*.kv2|All (*.*)|*.*");
    Open(
        [&] {
            EXPECT_TRUE(Rows().contains(QStringLiteral("note.txt")));
            EXPECT_TRUE(Rows().contains(QStringLiteral("b.kv2")));
            EXPECT_FALSE(Rows().contains(QStringLiteral("plain")));
            TapControl("cmdFilter");
            EXPECT_TRUE(Rows().contains(QStringLiteral("plain")));
            TapControl("cmdFilter");
            EXPECT_FALSE(Rows().contains(QStringLiteral("plain")));
        },
        Sites(), {}, filters);
    Open(
        [&] {
            EXPECT_FALSE(Child(FormNames::dlgFilePicker, QStringLiteral("cmdFilter"))->isEnabled());
        },
        Sites());
}

TEST_F(FilePickerTest, SavingAddsTheExtensionAndAsksAheadOfReplacing) {
    const QString site = Sites() + QStringLiteral("/plant.2.kv2");
    EXPECT_EQ(Save(QStringLiteral(" plant.2 "), Sites()), site);
    EXPECT_EQ(Save(QString(), Sites(), QStringLiteral("plant.2.kv2")), site);
    EXPECT_EQ(Save(QStringLiteral("X.KV2"), Sites()), Sites() + QStringLiteral("/X.KV2"));
    EXPECT_TRUE(boxes.isEmpty());
    EXPECT_EQ(Save(QStringLiteral("b"), Sites()), Sites() + QStringLiteral("/b.kv2"));
    ASSERT_EQ(styles, QList<int>{49});
    EXPECT_TRUE(boxes[0].contains(QStringLiteral("b.kv2")));
    for (const int refusal : {Messages::Cancel, Messages::Closed}) {
        answer = refusal;
        EXPECT_EQ(Save(QStringLiteral("b"), Sites()), QString());
    }
}

TEST_F(FilePickerTest, NamesThatNoFileCanHaveAreRefused) {
    QDir(Sites()).mkdir(QStringLiteral("dir.kv2"));
    const QStringList wrong{QStringLiteral("a/b"),  QStringLiteral("a\\b"), QStringLiteral("a:b"),
                            QStringLiteral(".."),   QStringLiteral("dir"),  QStringLiteral("a*"),
                            QString(255, u'\u00E9')};
    for (const QString& name : wrong)
        EXPECT_EQ(Save(name, Sites()), QString()) << name.toStdString();
    EXPECT_EQ(Save(QString(), Sites()), QString());
    EXPECT_EQ(styles, QList<int>(wrong.size() + 1, Messages::Critical));
    EXPECT_EQ(Save(QString::fromUtf8("Ωmega"), Sites()), QString());
    EXPECT_EQ(boxes.last(), GetText(714062)) << "the settings couldn't keep it";
}

TEST_F(FilePickerTest, AStartFolderThatIsGoneBecomesTheProgramsFolder) {
    for (const QString& folder : {QStringLiteral("/nowhere/at/all"), QString()}) {
        Open(
            [&] {
                EXPECT_TRUE(Rows().contains(QStringLiteral("sites")));
                EXPECT_TRUE(boxes.isEmpty());
            },
            folder, QStringLiteral("Unnamed"));
    }
}

TEST_F(FilePickerTest, AMediumTakenOutIsToldAndLeft) {
    const auto takeOut = [this] { QDir(Path(QStringLiteral("stick"))).removeRecursively(); };
    const QString stick = Path(QStringLiteral("stick"));
    EXPECT_EQ(Open(
                  [&] {
                      takeOut();
                      TapImage(Confirm);
                      EXPECT_EQ(boxes, QStringList{GetText(611008)});
                      EXPECT_TRUE(Rows().contains(QStringLiteral("sites")));
                      TapRow(QStringLiteral("STICK"));
                      EXPECT_EQ(boxes.last(), GetText(611007));
                      EXPECT_TRUE(Rows().contains(QStringLiteral("sites")));
                  },
                  stick, QStringLiteral("s.kv2")),
              QString());
    QDir().mkpath(stick);
    EXPECT_EQ(Run([&] { return FilePicker::SaveAs(stick, QStringLiteral("n"), Filter); },
                  [&] {
                      takeOut();
                      TapImage(Confirm);
                      EXPECT_EQ(boxes.last(), GetText(611009));
                      EXPECT_TRUE(Rows().contains(QStringLiteral("sites")));
                  }),
              QString());
    QDir().mkpath(stick);
    EXPECT_EQ(Choose(
                  [&] {
                      takeOut();
                      TapImage(Confirm);
                      EXPECT_EQ(boxes.last(), GetText(611007));
                  },
                  stick),
              QString());
}

TEST_F(FilePickerTest, AFolderWithoutRightsIsToldWithoutHarm) {
    if (geteuid() == 0)
        GTEST_SKIP() << "rights don't hold for the superuser";
    QFile::setPermissions(Sites(), QFile::ReadOwner | QFile::ExeOwner);
    EXPECT_EQ(Save(QStringLiteral("new"), Sites()), QString());
    EXPECT_EQ(boxes, QStringList{GetText(611009)});
    QFile::setPermissions(Sites(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

TEST_F(FilePickerTest, ChoosesAFolderAndMakesOne) {
    EXPECT_EQ(Choose(
                  [&] {
                      EXPECT_EQ(TextOf(FormNames::dlgFilePicker, QStringLiteral("lblTitle")),
                                QStringLiteral("Where?"));
                      EXPECT_FALSE(Rows().contains(QStringLiteral("b.kv2")));
                      TapRow(QStringLiteral("old"));
                      TapImage(Confirm);
                  },
                  Sites() + u'/'),
              Sites() + QStringLiteral("/old"));
    EXPECT_EQ(Choose(
                  [&] {
                      Typing(QStringLiteral("new one"));
                      TapControl("imgNewFolder");
                      TapImage(Confirm);
                  },
                  Sites()),
              Sites() + QStringLiteral("/new one"));
    EXPECT_TRUE(QDir(Sites() + QStringLiteral("/new one")).exists());
    Choose(
        [&] {
            // A file stands where the folder should go.
            Typing(QStringLiteral("plain"));
            TapControl("imgNewFolder");
            EXPECT_EQ(boxes, QStringList{GetText(611012)});
        },
        Sites());
}

TEST_F(FilePickerTest, ALongFolderScrollsAndFastTapsStayInOneFolder) {
    for (int i = 0; i < 2000; ++i)
        Touch(QStringLiteral("sites/old/site %1.kv2").arg(i, 4, 10, QLatin1Char('0')));
    QDir(Sites()).mkpath(QStringLiteral("old/0/1"));
    EXPECT_EQ(Open(
                  [&] {
                      const QPoint at = List()
                                            ->visualItemRect(List()->findItems(
                                                QStringLiteral("old"), Qt::MatchExactly)[0])
                                            .center();
                      TapRow(QStringLiteral("old"));
                      QTest::mouseDClick(List()->viewport(), Qt::LeftButton, {}, at);
                      QTest::mouseRelease(List()->viewport(), Qt::LeftButton, {}, at);
                      QCoreApplication::processEvents();
                      EXPECT_EQ(List()->count(), 2003) << "went on into the folder below";
                      TapRow(QStringLiteral("site 1999.kv2"));
                      TapImage(Confirm);
                  },
                  Sites()),
              Sites() + QStringLiteral("/old/site 1999.kv2"));
}

TEST_F(FilePickerTest, AnAlarmMayUnloadItWithTheKeyboardOnTop) {
    EXPECT_EQ(Run([&] { return FilePicker::SaveAs(Sites(), QStringLiteral("n"), Filter); },
                  [&] {
                      QTimer::singleShot(0, [] {
                          EXPECT_NE(Screen(KeyboardName), nullptr);
                          Forms::UnloadAllBut({});
                          RemoveUnloaded();
                      });
                      TapControl("imgName");
                  }),
              QString());
    Messages::Install([](const QString&, int, bool) {
        Forms::UnloadAllBut({});
        RemoveUnloaded();
        return int(Messages::Ok);
    });
    EXPECT_EQ(Save(QStringLiteral("b"), Sites()), QString());
}

TEST_F(FilePickerTest, SplitsPathsOfEitherSystem) {
    EXPECT_EQ(FilePicker::Folder(QStringLiteral("C:\\Sites\\a.b.kv2")), QStringLiteral("C:/Sites"));
    EXPECT_EQ(FilePicker::FileName(QStringLiteral("C:\\Sites\\a.b.kv2")),
              QStringLiteral("a.b.kv2"));
    EXPECT_EQ(FilePicker::BaseName(QStringLiteral("/sites/a.b.kv2")), QStringLiteral("a.b"));
    EXPECT_EQ(FilePicker::Folder(QStringLiteral("/a.kv2")), QStringLiteral("/"));
    EXPECT_EQ(FilePicker::Folder(QStringLiteral("Unnamed")), QString());
    EXPECT_EQ(FilePicker::NormalPath(QStringLiteral("/media//usb\\Trace/")),
              QStringLiteral("/media/usb/Trace"));
    EXPECT_EQ(FilePicker::NormalPath(QString()), QString());
}
