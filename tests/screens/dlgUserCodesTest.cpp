#include "screens/dialogs/dlgUserCodes.h"
#include "bus/AlarmConsole.h"
#include "core/FormNames.h"
#include "screens/UsersFixture.h"

#include <QAccessible>
#include <QDirIterator>
#include <sqlite3.h>

namespace {} // namespace

class UserCodesTest : public UsersTest {
protected:
    static bool Shows(const char* name) {
        return Child(Codes(), QString::fromLatin1(name))->isVisible();
    }
    static bool IsActive(int index) {
        return Box(index)->styleSheet().contains(QColor(Qt::yellow).name());
    }
    static void ShowForm(int level = 0) {
        Forms::Load(Codes());
        dynamic_cast<dlgUserCodes*>(Screen(Codes()))->setUserLevel(level);
        Screen(Codes())->Show();
    }
    /// The base with a service code, for the time of `test`.
    void WithServiceCode(const QString& code, const std::function<void()>& test) {
        const QString path = Path(QStringLiteral("korvanelle.cfg"));
        ASSERT_TRUE(QFile::copy(QStringLiteral(KORVANELLE_BUILD_DIR "/korvanelle.cfg"), path));
        sqlite3* base = nullptr;
        ASSERT_EQ(sqlite3_open(path.toUtf8().constData(), &base), SQLITE_OK);
        const QString change =
            QStringLiteral("PRAGMA key = '9C42'; PRAGMA cipher_page_size = 1024;"
                           "PRAGMA kdf_iter = 64000; PRAGMA cipher_hmac_algorithm = HMAC_SHA1;"
                           "PRAGMA cipher_kdf_algorithm = PBKDF2_HMAC_SHA1;"
                           "UPDATE T_Config SET Value = '%1' WHERE ID = 100000;")
                .arg(code);
        EXPECT_EQ(sqlite3_exec(base, change.toUtf8().constData(), nullptr, nullptr, nullptr),
                  SQLITE_OK)
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
    qobject_cast<QPushButton*>(Child(Codes(), QStringLiteral("cmdChar_65")))->click();
    EXPECT_TRUE(Box(0)->text().isEmpty() && Box(1)->text().isEmpty());
    Screen(Codes())->Show();
    EXPECT_TRUE(IsActive(0));
    TapKeys("AZ-09<");
    EXPECT_EQ(Box(0)->text(), QStringLiteral("AZ-0"));
    QTest::mouseClick(Box(1), Qt::LeftButton);
    EXPECT_TRUE(IsActive(1));
    EXPECT_FALSE(IsActive(0));
    TapKeys("<K<<ABCDEFGHIJKLMNOPQ");
    EXPECT_EQ(Box(1)->text(), QStringLiteral("ABCDEFGHIJKLMNOP")) << "sixteen characters";
    EXPECT_EQ(Box(0)->text(), QStringLiteral("AZ-0"));
    // Wherever the cursor stands, the keys work at the end.
    Box(1)->setCursorPosition(0);
    TapKeys("<<Z");
    EXPECT_EQ(Box(1)->text(), QStringLiteral("ABCDEFGHIJKLMNZ"));
}

TEST_F(UserCodesTest, EnterAndEscapeOfARealKeyboardConfirmAndCancel) {
    for (const auto& [key, ok] : {std::pair(Qt::Key_Return, true), std::pair(Qt::Key_Enter, true),
                                  std::pair(Qt::Key_Escape, false)}) {
        ShowForm();
        QTest::keyClicks(Box(0), QStringLiteral("Zoe"));
        QTest::keyClick(Box(0), key);
        const auto* form = dynamic_cast<dlgUserCodes*>(Screen(Codes()));
        EXPECT_FALSE(form->Visible());
        EXPECT_EQ(form->Ok(), ok);
        EXPECT_EQ(form->UserName(), QStringLiteral("Zoe"));
        Forms::Unload(Codes());
    }
}

TEST_F(UserCodesTest, LevelsEndAtThreeAndOnAGuardedSiteAtTheOwnOne) {
    const auto climb = [](int times) {
        for (int i = 0; i < times; ++i)
            TapImage(3);
        return TextOf(Codes(), QStringLiteral("lblPwdLevel"));
    };
    Global::Get().userLevel = 2;
    ShowForm();
    TapImage(2);
    EXPECT_EQ(TextOf(Codes(), QStringLiteral("lblPwdLevel")), QStringLiteral("0"));
    EXPECT_EQ(climb(5), QStringLiteral("2"));
    TapImage(2);
    EXPECT_EQ(TextOf(Codes(), QStringLiteral("lblPwdLevel")), QStringLiteral("1"));
    Forms::Unload(Codes());

    Global::Get().userLevel = 0;
    Site().setUserLevel(1, 2);
    ShowForm();
    EXPECT_EQ(climb(5), QStringLiteral("3")) << "nobody of level 1: the site is open";
}

TEST_F(UserCodesTest, ThePromptHasTheCodeAloneBehindStars) {
    script.On(Codes(), [] {
        for (const char* name : {"lblPwdLevel", "lblLabels_0", "lblLabels_2", "imgControl_2",
                                 "imgControl_3", "txtPwd_0"})
            EXPECT_FALSE(Shows(name)) << name;
        for (const char* name : {"lblLabels_1", "lblLabels_3", "imgControl_0", "imgControl_1"})
            EXPECT_TRUE(Shows(name)) << name;
        EXPECT_TRUE(IsActive(1));
        TapKeys("OP-1");
        EXPECT_EQ(Box(1)->displayText(), QStringLiteral("****"));
        QAccessibleInterface* told = QAccessible::queryAccessibleInterface(Box(1));
        EXPECT_FALSE(told->text(QAccessible::Value).contains(QStringLiteral("OP-1")));
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
    EXPECT_EQ(Global::Get().userLevel, 1);
    EXPECT_EQ(Global::Get().userName, QStringLiteral("OPERATOR"));
    EXPECT_EQ(events, QList<int>{SystemEvents::UserChanged});
    const QString head = QStringLiteral("2024-03-15 12:00:00 USER : OPERATOR ");
    const QString line = head + QString(58 - head.size(), u'*') + QStringLiteral(" LEVEL1");
    EXPECT_EQ(TraceLines().filter(QStringLiteral("USER :")), QStringList{line});
    Site().setUserName(1, QString(70, u'N'));
    Enter("OP-1");
    EXPECT_TRUE(AskPassword());
    const QString longName = QStringLiteral("2024-03-15 12:00:00 USER : ") + QString(70, u'N');
    EXPECT_EQ(TraceLines().filter(QStringLiteral("USER :")).last(), longName.left(80));

    // No file of the program holds what was typed.
    QDirIterator files(Path(QString()), QDir::Files, QDirIterator::Subdirectories);
    int searched = 0;
    while (files.hasNext()) {
        QFile file(files.next());
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        EXPECT_FALSE(file.readAll().contains("OP-1")) << file.fileName().toStdString();
        ++searched;
    }
    EXPECT_GT(searched, 0);
}

TEST_F(UserCodesTest, AnEmptyCodeDisconnectsAndCancelLeavesAllAsItWas) {
    Global::Get().userLevel = 2;
    Global::Get().userName = QStringLiteral("MANAGER");
    GiveUp();
    EXPECT_FALSE(AskPassword());
    EXPECT_EQ(Global::Get().userLevel, 2);
    EXPECT_TRUE(events.isEmpty());
    Enter("");
    EXPECT_TRUE(AskPassword());
    EXPECT_EQ(Global::Get().userLevel, 0);
    EXPECT_TRUE(Global::Get().userName.isEmpty());
    EXPECT_EQ(events, QList<int>{SystemEvents::UserChanged});
    const QString head = QStringLiteral("2024-03-15 12:00:00 USER : DISCONNECT ");
    EXPECT_EQ(TraceLines().filter(QStringLiteral("USER :")),
              QStringList{head + QString(58 - head.size(), u'*') + QStringLiteral(" LEVEL0")});
}

TEST_F(UserCodesTest, AWrongCodeLeavesTheUserAndIsTold) {
    Global::Get().userLevel = 2;
    Global::Get().userName = QStringLiteral("MANAGER");
    // Capitals count.
    for (const char* code : {"op-1", "ABC", "WRONG"}) {
        Enter(code);
        GiveUp();
        EXPECT_FALSE(AskPassword()) << code;
        EXPECT_EQ(Global::Get().userLevel, 2);
    }
    EXPECT_EQ(Global::Get().userName, QStringLiteral("MANAGER"));
    EXPECT_EQ(events, QList<int>(3, SystemEvents::UserChanged));
    EXPECT_TRUE(TraceLines().filter(QStringLiteral("USER :")).isEmpty());
    EXPECT_TRUE(boxes.isEmpty());
    Enter("abc");
    EXPECT_TRUE(AskPassword());
    EXPECT_EQ(Global::Get().userName, QStringLiteral("Keyboard"));
}

TEST_F(UserCodesTest, TheFirstUserOfACodeWinsAndTheServiceCodeComesBeforeAll) {
    Enter("SAME");
    AskPassword();
    EXPECT_EQ(Global::Get().userName, QStringLiteral("MANAGER"));
    WithServiceCode(QStringLiteral("SAME"), [this] {
        Enter("SAME");
        EXPECT_TRUE(AskPassword());
        EXPECT_EQ(Global::Get().userLevel, 4);
        EXPECT_EQ(Global::Get().userName, QStringLiteral("D.R.V."));
    });
    EXPECT_EQ(events, QList<int>(2, SystemEvents::UserChanged));
    EXPECT_EQ(TraceLines().filter(QStringLiteral("USER :")).size(), 1) << "no record of level 4";
}

TEST_F(UserCodesTest, AnUnattendedPromptGoesAwayAndTheEditFormStays) {
    ShowForm();
    const auto* timer = Screen(Codes())->findChild<QTimer*>(QStringLiteral("tmrAutoClose"));
    EXPECT_EQ(timer->interval(), 60000);
    EXPECT_FALSE(timer->isActive());
    Forms::Unload(Codes());
    Global::Get().userLevel = 1;
    script.On(Codes(), [] {
        TapKeys("SAME");
        auto* running = Screen(Codes())->findChild<QTimer*>(QStringLiteral("tmrAutoClose"));
        EXPECT_TRUE(running->isActive());
        running->setInterval(1);
    });
    EXPECT_FALSE(AskPassword());
    EXPECT_EQ(Global::Get().userLevel, 1);
    EXPECT_TRUE(events.isEmpty());
}

TEST_F(UserCodesTest, NobodyThereTakesThePromptAwayAndBringsTheConsole) {
    Forms::Load(QStringLiteral("wPolling"));
    for (const int level : {2, 4}) {
        Global::Get().userLevel = level;
        Global::Get().userName = QStringLiteral("MANAGER");
        script.On(Codes(), [this] {
            TapKeys("OP-1");
            NobodyIsThere();
        });
        EXPECT_FALSE(AskPassword());
        EXPECT_EQ(Global::Get().userLevel, 0);
        EXPECT_EQ(Global::Get().userName, QStringLiteral("MANAGER")) << "kept";
        EXPECT_EQ(NbInstances(Codes()), 0);
        EXPECT_TRUE(Screen(FormNames::wRunAlarms)->Visible());
        EXPECT_EQ(TextOf(FormNames::wRunAlarms, QStringLiteral("lblLogin_0")), QStringLiteral("0"));
    }
    EXPECT_TRUE(events.isEmpty());
    EXPECT_TRUE(TraceLines().filter(QStringLiteral("USER :")).isEmpty());
    // An operator may always acknowledge.
    Global::Get().userLevel = 1;
    script.On(Codes(), [this] {
        NobodyIsThere();
        EXPECT_EQ(NbInstances(Codes()), 1);
        Cancel();
    });
    EXPECT_FALSE(AskPassword());
    EXPECT_EQ(Global::Get().userLevel, 1);
}

TEST_F(UserCodesTest, TheConsoleInsistsUntilTheLevelIsReachedOrGivenUp) {
    SetOptions(255, 0, 0, 0);
    AddPanel(1, 1).Channel(3).setScrAlm(true);
    Forms::Show(FormNames::wRunAlarms);
    EventClass alarm(1, 3, 0, 1);
    alarm.setGDH(clock.Now());
    AlarmConsole::Loaded()->TakeEvent(alarm);
    ASSERT_EQ(AlarmConsole::Loaded()->RowCount(), 1);
    Enter("WRONG");
    GiveUp();
    Tap(FormNames::wRunAlarms, QStringLiteral("imgAcquit"));
    EXPECT_EQ(AlarmConsole::Loaded()->RowCount(), 1);
    Enter("WRONG");
    Enter("");
    Enter("OP-1");
    Tap(FormNames::wRunAlarms, QStringLiteral("imgAcquit"));
    EXPECT_EQ(AlarmConsole::Loaded()->RowCount(), 0);
    EXPECT_EQ(TextOf(FormNames::wRunAlarms, QStringLiteral("lblLogin_0")), QStringLiteral("1"));
}
