// A dialog that somebody is at when an alarm comes, and a prompt that is given up.

#include "screens/UsersFixture.h"
#include "screens/dialogs/dlgConsigne.h"
#include "screens/dialogs/dlgKeyboard.h"
#include "screens/dialogs/dlgListInput.h"
#include "screens/dialogs/dlgMessage.h"
#include "screens/touch/RowGrid.h"
#include "screens/touch/TouchGuard.h"

#include <QSignalSpy>

namespace {

const QString Notice = "dlgMessage";
const QString Keyboard = "dlgKeyboard";

class PromptTest : public UsersTest {
protected:
    PromptTest() {
        SetOptions(255, 0, 0, 0);
        PanelClass& panel = AddPanel(1, 1);
        for (const int channel : {3, 4})
            panel.Channel(channel).setScrAlm(true);
        Forms::Load("wPolling");
        link->setPortOpen(true);
        engine->setRun(true);
        // Polled tomorrow: no silent line becomes an alarm of its own.
        panel.setNextPoll(DateTimes::Now() + 24 * 3600 * platform::OneSecond);
        Forms::Show(FormNames::wRunAlarms);
    }

    void Alarm(int channel) {
        EventClass event(1, qint16(channel), 1, 3);
        engine->SendEvent(event);
    }
    /// Through the window, where the touch of a blocked form is thrown away.
    static void Touch(const QString& form, const QWidget* control) {
        const QPoint at = control->mapTo(control->window(), control->rect().center());
        QTest::mouseClick(Screen(form)->windowHandle(), Qt::LeftButton, Qt::NoModifier, at);
    }
};

} // namespace

TEST_F(PromptTest, NobodyIsAskedOnAnOpenSite) {
    Site().setUserLevel(1, 2);
    for (const bool runs : {false, true}) {
        Tap(FormNames::wRunAlarms, "imgStopRun");
        EXPECT_EQ(engine->Run(), runs);
        EXPECT_EQ(Find<QAbstractButton>(FormNames::wRunAlarms, "imgStopRun")->text(),
                  runs ? "Bus running" : "Bus stopped");
    }
    GiveUp();
    Tap(FormNames::wRunAlarms, "lblLogin_0"); // which always asks
}

TEST_F(PromptTest, APromptThatIsGivenUpDoesNothing) {
    const QList<std::function<void()>> ways{
        [] { QTest::keyClick(Box(1), Qt::Key_Escape); },
        [] { Screen(Codes())->findChild<QTimer*>("tmrAutoClose")->setInterval(1); },
        [] { Forms::Unload(Codes()); },
        [] {
            // Meanwhile nobody of level 1 is left.
            Site().setUserLevel(1, 2);
            Cancel();
        }};
    for (const auto& giveUp : ways) {
        for (const char* name : {"imgStopRun", "imgNavig_0"}) {
            script.On(Codes(), giveUp);
            Tap(FormNames::wRunAlarms, name);
            EXPECT_TRUE(engine->Run()) << name;
            EXPECT_NE(Screen(FormNames::wRunAlarms), nullptr) << name;
            Site().setUserLevel(1, 1);
        }
    }
    EXPECT_FALSE(events.contains(SystemEvents::UserChanged));
}

TEST_F(PromptTest, ACodeThatIsNotEnoughIsToldWithTheLevel) {
    const auto told = [] { return TextOf(Codes(), "lblTold"); };
    const QString needed = GetText(714100).replace(u'$', "2");
    script.On(Codes(), [&] {
        EXPECT_EQ(told(), needed);
        TapKeys("WRONG");
        Confirm();
        EXPECT_TRUE(told().startsWith(GetText(714101)) && told().endsWith(needed));
        EXPECT_TRUE(Box(1)->text().isEmpty() && Screen(Codes())->Visible());
        // One code with which the level isn't reached is all that a single try has.
        TapKeys("OP-1");
        Confirm();
    });
    Tap(FormNames::wRunAlarms, "imgStopRun");
    EXPECT_TRUE(engine->Run());
    Enter("SAME");
    Tap(FormNames::wRunAlarms, "imgStopRun");
    EXPECT_FALSE(engine->Run());
    EXPECT_EQ(events.count(SystemEvents::UserChanged), 3);
}

TEST_F(PromptTest, AnAlarmLeavesThePromptOfTheConsoleAndTheListBesideIt) {
    Alarm(3);
    script.On(Codes(), [this] {
        TapKeys("OP");
        Alarm(4);
        ASSERT_EQ(NbInstances(Codes()), 1);
        EXPECT_EQ(Box(1)->text(), "OP");
        QWidget* grid = Child(FormNames::wRunAlarms, "grdAlarms");
        EXPECT_GT(Screen(Codes())->y(), grid->y() + 150);
        QSignalSpy moves(dynamic_cast<RowGrid*>(grid), &RowGrid::RowColChange);
        ScreenForm* console = Screen(FormNames::wRunAlarms);
        console->grab();
        clock.Advance(1000);
        QTest::mouseClick(console->windowHandle(), Qt::LeftButton, Qt::NoModifier,
                          grid->mapTo(console, QPoint(100, 10)));
        EXPECT_EQ(moves.size(), 1) << "the list takes touches";
        TapKeys("-1");
        Confirm();
    });
    Tap(FormNames::wRunAlarms, "imgAcquit");
    EXPECT_EQ(Global::Get().userLevel, 1);
    EXPECT_TRUE(engine->Run());
}

TEST_F(PromptTest, AnAlarmTakesThePromptOfAScreenThatGoes) {
    Forms::Show(FormNames::wMain);
    script.On(Codes(), [this] { Alarm(3); });
    Tap(FormNames::wMain, "imgMenu_0");
    EXPECT_EQ(NbInstances(Codes()) + NbInstances(FormNames::wMain), 0);
}

TEST_F(PromptTest, ABoxThatNobodyCalledLeavesThePromptItsKeyboardAndMakesNobodyDeaf) {
    Boxes::Install(&dlgMessage::PresentUnread);
    script.On(Codes(), [] {
        Boxes::Post("Error Nr 61 : Disk full", Messages::Critical);
        ASSERT_EQ(NbInstances(Notice), 1);
        EXPECT_FALSE(Screen(Notice)->geometry().intersects(Screen(Codes())->geometry()));
        EXPECT_FALSE(Screen(Notice)->isActiveWindow());
        EXPECT_LT(Screen(Notice)->height(), 300);
        Cancel();
    });
    Tap(FormNames::wRunAlarms, "imgStopRun");
    EXPECT_TRUE(engine->Run());
    const auto type = [] {
        Touch(Keyboard, Child(Keyboard, "cmdKey_1"));
        return dynamic_cast<dlgKeyboard*>(Screen(Keyboard))->Text();
    };
    script.On(Keyboard, [&] {
        EXPECT_EQ(type(), "A");
        // A touch anywhere on it reads it.
        Touch(Notice, Child(Notice, "lblTitle"));
        EXPECT_EQ(NbInstances(Notice) + Boxes::Unread(), 0);
        EXPECT_EQ(type(), "AA");
        Tap(Keyboard, "imgControl_1");
    });
    EXPECT_EQ(AskText("Title", QString(), 20), "AA");
}

TEST_F(PromptTest, WhatAnAlarmInterruptedIsOfferedAgainForTheSameQuestion) {
    const auto ask = [this](const char* present, const std::function<void()>& act) {
        script.On(Keyboard, act);
        return AskText("Title", present, 20);
    };
    const auto confirm = [] { Tap(Keyboard, "imgControl_1"); };
    const struct {
        const char* question;
        int hoursLater;
        const char* offered;
    } cases[] = {{"old", 0, "oldA"}, {"other", 0, "other"}, {"old", 1, "old"}};
    for (const auto& [question, hoursLater, offered] : cases) {
        const auto interrupted = ask("old", [this] {
            QTest::mouseClick(Child(Keyboard, "cmdKey_1"), Qt::LeftButton);
            Alarm(3);
        });
        EXPECT_EQ(interrupted, std::nullopt);
        clock.Advance(hoursLater * qint64(3600000));
        EXPECT_EQ(ask(question, confirm), offered);
        EXPECT_EQ(ask(question, confirm), question) << "offered once";
    }

    const QString list = "dlgListInput";
    script.On(list, [&] {
        Tap(list, "imgControl_1");
        Alarm(4);
    });
    EXPECT_EQ(AskValue(nullptr, "*|1|9", "4"), std::nullopt);
    script.On(list, [&] { Tap(list, "imgControl_2"); });
    EXPECT_EQ(AskValue(nullptr, "*|1|9", "4"), "5");
}

TEST_F(PromptTest, AnInstructionThatAnAlarmTookIsOneTouchAway) {
    const QString dialog = "dlgConsigne";
    script.On(dialog, [this] { Alarm(3); });
    dlgConsigne::Present("P01-C03 Pump", "Close the valve.");
    QWidget* back = Child(FormNames::wRunAlarms, "imgReadOn");
    ASSERT_TRUE(back != nullptr && back->isVisible());
    script.On(dialog, [&] {
        EXPECT_EQ(TextOf(dialog, "lblConsigne"), "Close the valve.");
        Tap(dialog, "imgClose");
    });
    Screen(FormNames::wRunAlarms)->grab();
    clock.Advance(TouchGuard::HoldMs);
    QTest::mouseClick(back, Qt::LeftButton);
    RemoveUnloaded();
    EXPECT_EQ(Screen(FormNames::wRunAlarms)->findChild<QWidget*>("imgReadOn"), nullptr);
}
