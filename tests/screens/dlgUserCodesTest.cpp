#include "screens/dialogs/dlgUserCodes.h"
#include "screens/UsersFixture.h"

#include <QAccessible>
#include <QDirIterator>
#include <sqlite3.h>

class UserCodesTest : public UsersTest {
protected:
    static bool Shows(const char* name) { return Child(Codes(), name)->isVisible(); }
    static bool IsActive(int index) {
        return Box(index)->styleSheet().contains(QColor(Qt::yellow).name());
    }
    static void ShowForm() {
        Forms::Load(Codes());
        dynamic_cast<dlgUserCodes*>(Screen(Codes()))->setUserLevel(0);
        Screen(Codes())->Show();
    }
    static void Connected(int level, const char* name) {
        Global::Get().userLevel = level;
        Global::Get().userName = name;
    }
    static void ExpectUser(int level, const QString& name) {
        EXPECT_EQ(Global::Get().userLevel, level);
        EXPECT_EQ(Global::Get().userName, name);
    }
    static QTimer* AutoClose() { return Screen(Codes())->findChild<QTimer*>("tmrAutoClose"); }
    static QString Level() { return TextOf(Codes(), "lblPwdLevel"); }
    QStringList UserLines() const { return TraceLines().filter("USER :"); }
    static QString UserLine(const QString& name, const char* level) {
        return ("2024-03-15 12:00:00 USER : " + name + u' ').leftJustified(58, u'*') + level;
    }
    /// The base with a service code, for the time of `test`.
    void WithServiceCode(const QString& code, const std::function<void()>& test) {
        const QString path = Path("korvanelle.cfg");
        ASSERT_TRUE(QFile::copy(QStringLiteral(KORVANELLE_BUILD_DIR "/korvanelle.cfg"), path));
        sqlite3* base = nullptr;
        ASSERT_EQ(sqlite3_open(path.toUtf8().constData(), &base), SQLITE_OK);
        const QString change =
            QStringLiteral("PRAGMA key = '9C42'; PRAGMA cipher_page_size = 1024;"
                           "PRAGMA kdf_iter = 64000; PRAGMA cipher_hmac_algorithm = HMAC_SHA1;"
                           "PRAGMA cipher_kdf_algorithm = PBKDF2_HMAC_SHA1;"
                           "UPDATE T_Config SET Value = '%1' WHERE ID = 100000;")
                .arg(code);
        EXPECT_EQ(sqlite3_exec(base, change.toUtf8().constData(), nullptr, nullptr, nullptr), 0)
            << sqlite3_errmsg(base);
        sqlite3_close(base);
        EXPECT_TRUE(Config::OpenConfigBase());
        test();
        QFile::remove(path);
        ASSERT_TRUE(QFile::copy(QStringLiteral(KORVANELLE_BUILD_DIR "/korvanelle.cfg"), path));
        EXPECT_TRUE(Config::OpenConfigBase());
    }
};

TEST_F(UserCodesTest, KeysWriteIntoTheActiveBoxAndNowhereWithoutOne) {
    Forms::Load(Codes());
    Find<QPushButton>(Codes(), "cmdChar_65")->click();
    Screen(Codes())->Show();
    EXPECT_TRUE(IsActive(0));
    TapKeys("AZ-09<");
    QTest::mouseClick(Box(1), Qt::LeftButton);
    EXPECT_TRUE(IsActive(1) && !IsActive(0));
    TapKeys("<K<<ABCDEFGHIJKLMNOPQ");
    EXPECT_EQ(Box(1)->text(), "ABCDEFGHIJKLMNOP") << "sixteen characters";
    EXPECT_EQ(Box(0)->text(), "AZ-0");
    // Wherever the cursor stands, the keys work at the end.
    Box(1)->setCursorPosition(0);
    TapKeys("<<Z");
    EXPECT_EQ(Box(1)->text(), "ABCDEFGHIJKLMNZ");
    Box(1)->clear();
    TypeAbroad(Box(1), "piłé");
    EXPECT_EQ(Box(1)->text(), "pié") << "no file keeps the third letter";
}

TEST_F(UserCodesTest, LevelsEndAtThreeAndOnAGuardedSiteAtTheOwnOne) {
    Global::Get().userLevel = 2;
    ShowForm();
    const std::pair<int, const char*> steps[] = {{2, "0"}, {3, "1"}, {3, "2"}, {3, "2"}, {2, "1"}};
    for (const auto& [image, level] : steps) {
        TapImage(image);
        EXPECT_EQ(Level(), level);
    }
    Forms::Unload(Codes());
    // Nobody of level 1: the site is open.
    Global::Get().userLevel = 0;
    Site().setUserLevel(1, 2);
    ShowForm();
    for (const char* level : {"1", "2", "3", "3"}) {
        TapImage(3);
        EXPECT_EQ(Level(), level);
    }
}

TEST_F(UserCodesTest, ThePromptHasTheCodeAloneBehindStars) {
    ShowForm();
    EXPECT_FALSE(AutoClose()->isActive()) << "the form for a user stays";
    Forms::Unload(Codes());
    script.On(Codes(), [] {
        EXPECT_EQ(AutoClose()->interval() * AutoClose()->isActive(), 60000);
        for (const char* name : {"lblPwdLevel", "lblLabels_0", "lblLabels_2", "imgControl_2",
                                 "imgControl_3", "txtPwd_0"})
            EXPECT_FALSE(Shows(name)) << name;
        for (const char* name : {"lblLabels_1", "lblLabels_3", "imgControl_0", "imgControl_1"})
            EXPECT_TRUE(Shows(name)) << name;
        EXPECT_TRUE(IsActive(1));
        TapKeys("OP-1");
        EXPECT_EQ(Box(1)->displayText(), "****");
        QAccessibleInterface* told = QAccessible::queryAccessibleInterface(Box(1));
        EXPECT_FALSE(told->text(QAccessible::Value).contains("OP-1"));
        EXPECT_TRUE(Box(1)->toolTip().isEmpty());
        const QRect form = Screen(Codes())->rect();
        for (const QWidget* child :
             Screen(Codes())->findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly))
            EXPECT_TRUE(child->isHidden() || form.contains(child->geometry()));
        Cancel();
    });
    EXPECT_FALSE(AskPassword());
    EXPECT_EQ(NbInstances(Codes()), 0);
}

TEST_F(UserCodesTest, TheCodeConnectsItsUserAndTheTraceTellsIt) {
    Enter("OP-1");
    EXPECT_TRUE(AskPassword());
    ExpectUser(1, "OPERATOR");
    EXPECT_EQ(events, QList<int>{SystemEvents::UserChanged});
    EXPECT_EQ(UserLines(), QStringList(UserLine("OPERATOR", " LEVEL1")));
    const QString longName(70, u'N');
    Site().setUserName(1, longName);
    Enter("OP-1");
    EXPECT_TRUE(AskPassword());
    EXPECT_EQ(UserLines().last(), UserLine(longName, "").left(80));

    // No file of the program holds what was typed.
    QDirIterator files(Path(QString()), QDir::Files, QDirIterator::Subdirectories);
    EXPECT_TRUE(files.hasNext());
    while (files.hasNext())
        EXPECT_FALSE(BytesOf(files.next()).contains("OP-1")) << files.filePath().toStdString();
}

TEST_F(UserCodesTest, AWrongCodeAndCancelLeaveTheUserAndAnEmptyCodeDisconnects) {
    Connected(2, "MANAGER");
    GiveUp();
    EXPECT_FALSE(AskPassword());
    EXPECT_TRUE(events.isEmpty());
    // Capitals count.
    for (const char* code : {"op-1", "ABC", "WRONG"}) {
        Enter(code);
        GiveUp();
        EXPECT_FALSE(AskPassword()) << code;
    }
    ExpectUser(2, "MANAGER");
    EXPECT_TRUE(UserLines().isEmpty());
    EXPECT_TRUE(boxes.isEmpty());
    for (const auto& [code, level, name] :
         {std::tuple("abc", 2, "Keyboard"), std::tuple("", 0, "")}) {
        Enter(code);
        EXPECT_TRUE(AskPassword());
        ExpectUser(level, name);
    }
    EXPECT_EQ(events, QList<int>(5, SystemEvents::UserChanged));
    EXPECT_EQ(UserLines().last(), UserLine("DISCONNECT", " LEVEL0"));
}

TEST_F(UserCodesTest, TheFirstUserOfACodeWinsAndTheServiceCodeComesBeforeAll) {
    Enter("SAME");
    AskPassword();
    ExpectUser(2, "MANAGER");
    WithServiceCode("SAME", [this] {
        Enter("SAME");
        EXPECT_TRUE(AskPassword());
        ExpectUser(4, "D.R.V.");
    });
    EXPECT_EQ(events, QList<int>(2, SystemEvents::UserChanged));
    EXPECT_EQ(UserLines().size(), 1) << "no record of level 4";
}
