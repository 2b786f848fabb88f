#include "screens/dialogs/dlgMessage.h"
#include "core/Boxes.h"
#include "core/Operator.h"
#include "support/ScreensFixture.h"

#include <QPushButton>
#include <QTextEdit>
#include <QtTest/qtestspontaneevent.h>

namespace {

const QString Box = QStringLiteral("dlgMessage");

QPushButton* ButtonOf(ScreenForm* box, int index) {
    return box->findChild<QPushButton*>(QStringLiteral("cmdButton_%1").arg(index));
}

} // namespace

class dlgMessageTest : public ScreensTest {
protected:
    dlgMessageTest() { Messages::Install(&dlgMessage::Present); }

    /// Shows a box that waits for whoever touched the screen and does something with it once it is
    /// up.
    int Ask(int style, const std::function<void(ScreenForm*)>& act,
            const QString& text = QStringLiteral("Question?")) {
        bool acted = false;
        QTimer::singleShot(0, [&] {
            acted = true;
            if (ScreenForm* box = Screen(Box))
                act(box);
        });
        const Operator::Acting acting;
        const int result = Message(text, style);
        EXPECT_TRUE(acted) << "timers stand still while a box waits";
        EXPECT_EQ(NbInstances(Box), 0);
        return result;
    }
    int Press(int style, int index) {
        return Ask(style, [index](ScreenForm* box) {
            QTest::mouseClick(ButtonOf(box, index), Qt::LeftButton);
        });
    }
    int Key(int style, Qt::Key key) {
        return Ask(style, [key](ScreenForm* box) {
            QWidget* focus = box->focusWidget();
            QTest::keyClick(focus ? focus : box, key);
            box->Hide();
        });
    }
};

TEST_F(dlgMessageTest, EveryButtonOfEverySetHasItsNumberAndWord) {
    const QList<QList<QPair<int, int>>> sets{
        {{Messages::Ok, 10004}},
        {{Messages::Ok, 10004}, {Messages::Cancel, 10005}},
        {{Messages::Abort, 10006}, {Messages::Retry, 10007}, {Messages::Ignore, 10003}},
        {{Messages::Yes, 10002}, {Messages::No, 10001}, {Messages::Cancel, 10005}},
        {{Messages::Yes, 10002}, {Messages::No, 10001}},
    };
    for (int set = 0; set < sets.size(); ++set) {
        for (int index = 0; index < sets[set].size(); ++index) {
            SCOPED_TRACE(testing::Message() << "set " << set << " button " << index);
            EXPECT_EQ(Press(set, index), sets[set][index].first);
            Ask(set, [&](ScreenForm* box) {
                EXPECT_EQ(ButtonOf(box, index)->text(), u'&' + GetText(sets[set][index].second));
                for (int other = 0; other < 3; ++other)
                    EXPECT_EQ(ButtonOf(box, other)->isVisible(), other < sets[set].size());
                box->Hide();
            });
        }
    }
}

TEST_F(dlgMessageTest, KeysPressTheDefaultAndTheCancelButton) {
    EXPECT_EQ(Key(0, Qt::Key_Return), Messages::Ok);
    EXPECT_EQ(Key(51, Qt::Key_Enter), Messages::Yes);
    EXPECT_EQ(Key(51 + 256, Qt::Key_Return), Messages::No);
    EXPECT_EQ(Key(51 + 512, Qt::Key_Return), Messages::Cancel);
    EXPECT_EQ(Key(0, Qt::Key_Escape), Messages::Closed);
    EXPECT_EQ(Key(1, Qt::Key_Escape), Messages::Cancel);
    EXPECT_EQ(Key(2, Qt::Key_Escape), Messages::Abort);
    EXPECT_EQ(Key(3, Qt::Key_Escape), Messages::Cancel);
    EXPECT_EQ(Key(4, Qt::Key_Escape), Messages::No);
}

TEST_F(dlgMessageTest, ButtonsStandInTheirPlacesWithThePictureOfTheStyle) {
    const QList<QList<double>> edges{{-0.5}, {-1.25, 0.25}, {-1.75, -0.5, 0.75}};
    const QList<int> byCount{16, 33, 51};
    for (int count = 1; count <= 3; ++count) {
        Ask(byCount[count - 1], [&](ScreenForm* box) {
            for (int i = 0; i < count; ++i) {
                const double left =
                    box->width() / 2.0 + edges[count - 1][i] * ButtonOf(box, i)->width();
                EXPECT_NEAR(ButtonOf(box, i)->x(), left, 1);
                EXPECT_TRUE(box->rect().contains(ButtonOf(box, i)->geometry()));
            }
            for (int picture = 0; picture < 5; ++picture) {
                const auto* icon =
                    box->findChild<QWidget*>(QStringLiteral("imgIcons_%1").arg(picture));
                EXPECT_EQ(icon->isVisible(), picture == count) << "picture " << picture;
            }
            box->Hide();
        });
    }
}

TEST_F(dlgMessageTest, GrowsWithItsTextAndStaysOnTheDisplay) {
    int shortHeight = 0;
    int longHeight = 0;
    Ask(16, [&](ScreenForm* box) {
        shortHeight = box->height();
        box->Hide();
    });
    const QString text = QStringLiteral("A text of many lines. ").repeated(30);
    Ask(
        16,
        [&](ScreenForm* box) {
            longHeight = box->height();
            const auto* shown = box->findChild<QTextEdit*>(QStringLiteral("txtMsg"));
            EXPECT_GE(shown->height(), shown->document()->size().height());
            EXPECT_LE(shown->geometry().bottom(), ButtonOf(box, 0)->y());
            EXPECT_LE(ButtonOf(box, 0)->geometry().bottom(), box->height());
            box->Hide();
        },
        text);
    EXPECT_GT(longHeight, shortHeight + 100);
    Ask(
        16,
        [](ScreenForm* box) {
            EXPECT_LE(box->height(), box->screen()->geometry().height());
            QTest::mouseClick(ButtonOf(box, 0), Qt::LeftButton);
        },
        text.repeated(20));
}

TEST_F(dlgMessageTest, EndsWithoutAnAnswerWhenItIsClosedOrUnloaded) {
    EXPECT_EQ(Ask(51,
                  [](ScreenForm* box) {
                      QCloseEvent close;
                      QSpontaneKeyEvent::setSpontaneous(&close);
                      qApp->notify(box, &close);
                  }),
              Messages::Closed);
    EXPECT_EQ(Ask(51, [](ScreenForm*) { Forms::UnloadAllBut({}); }), Messages::Closed);
}

TEST_F(dlgMessageTest, ABoxThatDoesNotWaitGoesByItself) {
    EXPECT_EQ(Message(QStringLiteral("First"), 64, true), 0);
    EXPECT_EQ(Message(QStringLiteral("Second"), 16, true), 0);
    EXPECT_EQ(NbInstances(Box), 2);
    QTest::mouseClick(ButtonOf(Screen(Box), 0), Qt::LeftButton);
    EXPECT_EQ(NbInstances(Box), 1);
    QTest::mouseClick(ButtonOf(Screen(Box), 0), Qt::LeftButton);
    EXPECT_EQ(NbInstances(Box), 0);
}

TEST_F(dlgMessageTest, TwoThatWaitAreAnsweredOneAfterTheOther) {
    int inner = 0;
    const int outer = Ask(4, [&](ScreenForm* box) {
        QTimer::singleShot(0, [&] {
            for (QWidget* window : QApplication::topLevelWidgets()) {
                if (window != box && window->objectName() == Box && window->isVisible())
                    QTest::mouseClick(ButtonOf(static_cast<ScreenForm*>(window), 1),
                                      Qt::LeftButton);
            }
        });
        inner = Message(QStringLiteral("Inner"), 4);
        QTest::mouseClick(ButtonOf(box, 0), Qt::LeftButton);
    });
    EXPECT_EQ(inner, Messages::No);
    EXPECT_EQ(outer, Messages::Yes);
}

TEST_F(dlgMessageTest, ABoxAboveOneThatWaitsTakesTouchesBesideIt) {
    // Through the window, where the touch of a blocked form is thrown away.
    const auto touch = [](ScreenForm* box) {
        QTest::mouseClick(box->windowHandle(), Qt::LeftButton, Qt::NoModifier,
                          ButtonOf(box, 0)->geometry().center());
    };
    EXPECT_EQ(Ask(4,
                  [&](ScreenForm* waiting) {
                      Message(QStringLiteral("Notice"), 64, true);
                      for (QWidget* window : QApplication::topLevelWidgets()) {
                          if (window != waiting && window->objectName() == Box &&
                              window->isVisible())
                              touch(static_cast<ScreenForm*>(window));
                      }
                      EXPECT_EQ(NbInstances(Box), 1);
                      touch(waiting);
                  }),
              Messages::Yes);
}

TEST_F(dlgMessageTest, ANoticeStandsWithoutAButtonUntilItGoes) {
    const QString box = QStringLiteral("dlgMessage");
    Messages::InstallNotice(&dlgMessage::PresentNotice);
    {
        const Messages::Notice notice(QStringLiteral("Reading"));
        ASSERT_EQ(NbInstances(box), 1);
        EXPECT_TRUE(Forms::Find(box)->Visible());
        const auto* shown = dynamic_cast<QWidget*>(Forms::Find(box));
        EXPECT_FALSE(shown->findChild<QWidget*>(QStringLiteral("cmdButton_0"))->isVisible());
    }
    EXPECT_EQ(NbInstances(box), 0);
    Messages::InstallNotice(nullptr);
}
