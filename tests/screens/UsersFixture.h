#pragma once

#include "screens/dialogs/AskPassword.h"
#include "support/ScreensFixture.h"
#include "support/Script.h"

#include <QLineEdit>
#include <QPushButton>

/// A guarded site of four users, a script for the dialogs, and the system events that are sent.
class UsersTest : public ScreensTest {
protected:
    UsersTest() {
        Site().setUserCount(4);
        SetUser(1, "OPERATOR", "OP-1", 1);
        SetUser(2, "MANAGER", "SAME", 2);
        SetUser(3, "TECHNICIAN", "SAME", 3);
        SetUser(4, "Keyboard", "abc", 2);
        QObject::connect(engine.get(), &wPolling::BusEvent, engine.get(),
                         [this](const EventClass& event) {
                             if (event.Chnl() == Family::System)
                                 events += event.Aff();
                         });
    }
    ~UsersTest() override { Forms::UnloadAllBut({}); }
    UsersTest(const UsersTest&) = delete;
    UsersTest& operator=(const UsersTest&) = delete;

    static void SetUser(int number, const char* name, const char* code, int level) {
        Site().setUserName(number, name);
        Site().setUserPwd(number, code);
        Site().setUserLevel(number, level);
    }

    static QString Codes() { return "dlgUserCodes"; }
    static QLineEdit* Box(int index) { return Find<QLineEdit>(Codes(), Part("txtPwd", index)); }
    static void TapImage(int index) { Tap(Codes(), "imgControl", index); }
    static void Cancel() { TapImage(0); }
    static void Confirm() { TapImage(1); }
    /// The keys of the form, "<" for backspace.
    static void TapKeys(const char* keys) {
        for (const char* key = keys; *key != '\0'; ++key)
            Tap(Codes(), "cmdChar", *key == '<' ? 8 : int(*key));
    }
    /// Answers the next prompt with a code.
    void Enter(const char* code) {
        script.On(Codes(), [code] {
            QTest::keyClicks(Box(1), code);
            QTest::keyClick(Box(1), Qt::Key_Return);
        });
    }
    void GiveUp() {
        script.On(Codes(), [] { Cancel(); });
    }
    /// The detector finds that nobody is there.
    void NobodyIsThere() { Q_EMIT engine->UserSleep().UserIsNotHere(); }

    Script script;
    QList<int> events;
};
