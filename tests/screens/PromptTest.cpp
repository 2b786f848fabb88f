// A dialog that somebody is at when an alarm comes, and a prompt that is given up.

#include "core/Boxes.h"
#include "core/FormNames.h"
#include "screens/UsersFixture.h"
#include "screens/dialogs/dlgConsigne.h"
#include "screens/dialogs/dlgKeyboard.h"
#include "screens/dialogs/dlgListInput.h"
#include "screens/dialogs/dlgMessage.h"
#include "screens/touch/RowGrid.h"

namespace {

const QString Notice = QStringLiteral("dlgMessage");

class PromptTest : public UsersTest {
protected:
    PromptTest() {
        SetOptions(255, 0, 0, 0);
        for (const int channel : {3, 4})
            AddPanel(1, 1).Channel(channel).setScrAlm(true);
        Forms::Load(QStringLiteral("wPolling"));
        link->setPortOpen(true);
        engine->setRun(true);
        Forms::Show(FormNames::wRunAlarms);
    }
    ~PromptTest() override { Boxes::Forget(); }
    PromptTest(const PromptTest&) = delete;
    PromptTest& operator=(const PromptTest&) = delete;

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
    int prompts = 0;
    QTimer watch;
    watch.callOnTimeout([&] {
        if (NbInstances(Codes()) > 0) {
            ++prompts;
            Cancel();
        }
    });
    watch.start(1);
    Tap(FormNames::wRunAlarms, QStringLiteral("imgStopRun"));
    EXPECT_EQ(prompts, 0);
    EXPECT_FALSE(engine->Run());
    Tap(FormNames::wRunAlarms, QStringLiteral("lblLogin_0"));
    EXPECT_EQ(prompts, 1) << "the login always asks";
}

TEST_F(PromptTest, APromptThatIsGivenUpDoesNothing) {
    const QList<std::function<void()>> ways{
        [] { Cancel(); }, [] { QTest::keyClick(Box(1), Qt::Key_Escape); },
        [] { Screen(Codes())->findChild<QTimer*>(QStringLiteral("tmrAutoClose"))->setInterval(1); },
        [] { Forms::Unload(Codes()); },
        [] {
            // Meanwhile nobody of level 1 is left.
            Site().setUserLevel(1, 2);
            Cancel();
        }};
    for (const auto& giveUp : ways) {
        for (const char* name : {"imgStopRun", "imgNavig_0"}) {
            script.On(Codes(), giveUp);
            Tap(FormNames::wRunAlarms, QString::fromLatin1(name));
            EXPECT_TRUE(engine->Run()) << name;
            EXPECT_NE(Screen(FormNames::wRunAlarms), nullptr) << name;
            Site().setUserLevel(1, 1);
        }
    }
    EXPECT_TRUE(events.isEmpty() || !events.contains(SystemEvents::UserChanged));
}

TEST_F(PromptTest, ACodeThatIsNotEnoughIsToldWithTheLevel) {
    const auto told = [] { return TextOf(Codes(), QStringLiteral("lblTold")); };
    const QString needed = GetText(714100).replace(u'$', QStringLiteral("2"));
    script.On(Codes(), [&] {
        EXPECT_EQ(told(), needed);
        TapKeys("WRONG");
        Confirm();
        EXPECT_TRUE(told().startsWith(GetText(714101)) && told().endsWith(needed));
        EXPECT_TRUE(Box(1)->text().isEmpty());
        EXPECT_TRUE(Screen(Codes())->Visible());
        TapKeys("SAME");
        Confirm();
    });
    Tap(FormNames::wRunAlarms, QStringLiteral("imgStopRun"));
    EXPECT_FALSE(engine->Run());
    EXPECT_EQ(events.count(SystemEvents::UserChanged), 2);
    // One code with which the level isn't reached is all that a single try has.
    Global::Get().userLevel = 0;
    Enter("OP-1");
    Tap(FormNames::wRunAlarms, QStringLiteral("imgStopRun"));
    EXPECT_FALSE(engine->Run());
}

TEST_F(PromptTest, AnAlarmLeavesThePromptOfTheConsoleAndTheListBesideIt) {
    Alarm(3);
    script.On(Codes(), [this] {
        TapKeys("OP");
        Alarm(4);
        ASSERT_EQ(NbInstances(Codes()), 1);
        EXPECT_TRUE(Screen(Codes())->Visible());
        EXPECT_EQ(Box(1)->text(), QStringLiteral("OP"));
        QWidget* grid = Child(FormNames::wRunAlarms, QStringLiteral("grdAlarms"));
        EXPECT_GT(Screen(Codes())->y(), grid->y() + 150);
        int moves = 0;
        QObject::connect(dynamic_cast<RowGrid*>(grid), &RowGrid::RowColChange, grid,
                         [&moves] { ++moves; });
        Screen(FormNames::wRunAlarms)->grab();
        clock.Advance(1000);
        QTest::mouseClick(Screen(FormNames::wRunAlarms)->windowHandle(), Qt::LeftButton,
                          Qt::NoModifier,
                          grid->mapTo(Screen(FormNames::wRunAlarms), QPoint(100, 10)));
        EXPECT_EQ(moves, 1) << "the list takes touches";
        TapKeys("-1");
        Confirm();
    });
    Tap(FormNames::wRunAlarms, QStringLiteral("imgAcquit"));
    EXPECT_EQ(Global::Get().userLevel, 1);
    EXPECT_TRUE(engine->Run());
}

TEST_F(PromptTest, AnAlarmTakesThePromptOfAScreenThatGoes) {
    Forms::Show(FormNames::wMain);
    script.On(Codes(), [this] { Alarm(3); });
    Tap(FormNames::wMain, QStringLiteral("imgMenu_0"));
    EXPECT_EQ(NbInstances(Codes()) + NbInstances(FormNames::wMain), 0);
    EXPECT_TRUE(Screen(FormNames::wRunAlarms)->Visible());
}

TEST_F(PromptTest, ABoxThatNobodyCalledLeavesThePromptItsKeyboard) {
    Boxes::Install(&dlgMessage::PresentUnread);
    script.On(Codes(), [] {
        Boxes::Post(QStringLiteral("Error Nr 61 : Disk full"), Messages::Critical);
        ASSERT_EQ(NbInstances(Notice), 1);
        EXPECT_FALSE(Screen(Notice)->geometry().intersects(Screen(Codes())->geometry()));
        EXPECT_FALSE(Screen(Notice)->isActiveWindow());
        EXPECT_LT(Screen(Notice)->height(), 300);
        Cancel();
    });
    Tap(FormNames::wRunAlarms, QStringLiteral("imgStopRun"));
    // A touch anywhere on it reads it.
    Touch(Notice, Child(Notice, QStringLiteral("lblTitle")));
    EXPECT_EQ(Boxes::Unread(), 0);
    EXPECT_EQ(NbInstances(Notice), 0);
    EXPECT_TRUE(engine->Run());
}

TEST_F(PromptTest, ABoxAboveADialogThatWaitsMakesNobodyDeaf) {
    const QString keyboard = QStringLiteral("dlgKeyboard");
    Boxes::Install(&dlgMessage::PresentUnread);
    const auto type = [&] { Touch(keyboard, Child(keyboard, QStringLiteral("cmdKey_1"))); };
    script.On(keyboard, [&] {
        Boxes::Post(QStringLiteral("Error"), Messages::Critical);
        type();
        EXPECT_EQ(dynamic_cast<dlgKeyboard*>(Screen(keyboard))->Text(), QStringLiteral("A"));
        Touch(Notice, Child(Notice, QStringLiteral("cmdButton_0")));
        EXPECT_EQ(NbInstances(Notice), 0);
        type();
        EXPECT_EQ(dynamic_cast<dlgKeyboard*>(Screen(keyboard))->Text(), QStringLiteral("AA"));
        Tap(keyboard, QStringLiteral("imgControl_1"));
    });
    EXPECT_EQ(AskText(QStringLiteral("Title"), QString(), 20), QStringLiteral("AA"));
}

TEST_F(PromptTest, WhatAnAlarmInterruptedIsOfferedAgainForTheSameQuestion) {
    const QString keyboard = QStringLiteral("dlgKeyboard");
    const QString list = QStringLiteral("dlgListInput");
    const auto shown = [&] { return dynamic_cast<dlgKeyboard*>(Screen(keyboard))->Text(); };
    const auto ask = [](const char* present) {
        return AskText(QStringLiteral("Title"), QString::fromLatin1(present), 20);
    };
    const auto interrupt = [&] {
        script.On(keyboard, [&] {
            QTest::mouseClick(Child(keyboard, QStringLiteral("cmdKey_1")), Qt::LeftButton);
            Alarm(3);
        });
        EXPECT_EQ(ask("old"), std::nullopt);
    };
    QString offered;
    const auto confirm = [&] {
        script.On(keyboard, [&] {
            offered = shown();
            Tap(keyboard, QStringLiteral("imgControl_1"));
        });
    };
    interrupt();
    confirm();
    EXPECT_EQ(ask("old"), QStringLiteral("oldA"));
    confirm();
    EXPECT_EQ(ask("old"), QStringLiteral("old")) << "offered once";
    interrupt();
    confirm();
    EXPECT_EQ(ask("other"), QStringLiteral("other"));
    interrupt();
    clock.Advance(3600000);
    confirm();
    EXPECT_EQ(ask("old"), QStringLiteral("old"));

    script.On(list, [&] {
        Tap(list, QStringLiteral("imgControl_1"));
        Alarm(4);
    });
    EXPECT_EQ(AskValue(nullptr, QStringLiteral("*|1|9"), QStringLiteral("4")), std::nullopt);
    script.On(list, [&] { Tap(list, QStringLiteral("imgControl_2")); });
    EXPECT_EQ(AskValue(nullptr, QStringLiteral("*|1|9"), QStringLiteral("4")), QStringLiteral("5"));
}

TEST_F(PromptTest, AnInstructionThatAnAlarmTookIsOneTouchAway) {
    const QString dialog = QStringLiteral("dlgConsigne");
    script.On(dialog, [this] { Alarm(3); });
    dlgConsigne::Present(QStringLiteral("P01-C03 Pump"), QStringLiteral("Close the valve."));
    QWidget* back = Child(FormNames::wRunAlarms, QStringLiteral("imgReadOn"));
    ASSERT_TRUE(back != nullptr && back->isVisible());
    script.On(dialog, [&] {
        EXPECT_EQ(TextOf(dialog, QStringLiteral("lblConsigne")),
                  QStringLiteral("Close the valve."));
        Tap(dialog, QStringLiteral("imgClose"));
    });
    QTest::mouseClick(back, Qt::LeftButton);
    RemoveUnloaded();
    EXPECT_EQ(Screen(FormNames::wRunAlarms)->findChild<QWidget*>(QStringLiteral("imgReadOn")),
              nullptr);
}
