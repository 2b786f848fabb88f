#include "screens/dialogs/dlgMessage.h"
#include "core/Operator.h"
#include "support/ScreensFixture.h"

#include <QPushButton>
#include <QTextEdit>

namespace {

const QString Box = "dlgMessage";

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
            const QString& text = "Question?") {
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
    static void Touch(ScreenForm* box, int index) {
        QTest::mouseClick(ButtonOf(box, index), Qt::LeftButton);
    }
    int Key(int style, Qt::Key key) {
        return Ask(style, [key](ScreenForm* box) {
            QWidget* focus = box->focusWidget();
            QTest::keyClick(focus ? focus : box, key);
            box->Hide();
        });
    }
};

TEST_F(dlgMessageTest, EveryButtonOfEverySetHasItsNumberWordAndPlace) {
    const QList<QList<QPair<int, int>>> sets{
        {{Messages::Ok, 10004}},
        {{Messages::Ok, 10004}, {Messages::Cancel, 10005}},
        {{Messages::Abort, 10006}, {Messages::Retry, 10007}, {Messages::Ignore, 10003}},
        {{Messages::Yes, 10002}, {Messages::No, 10001}, {Messages::Cancel, 10005}},
        {{Messages::Yes, 10002}, {Messages::No, 10001}},
    };
    const QList<QList<double>> edges{{-0.5}, {-1.25, 0.25}, {-1.75, -0.5, 0.75}};
    for (int set = 0; set < sets.size(); ++set) {
        const int count = int(sets[set].size());
        for (int index = 0; index < count; ++index) {
            SCOPED_TRACE(testing::Message() << "set " << set << " button " << index);
            const int pressed = Ask(set + 16 * count, [&](ScreenForm* box) {
                QPushButton* button = ButtonOf(box, index);
                EXPECT_EQ(button->text(), u'&' + GetText(sets[set][index].second));
                EXPECT_NEAR(button->x(),
                            box->width() / 2.0 + edges[count - 1][index] * button->width(), 1);
                EXPECT_TRUE(box->rect().contains(button->geometry()));
                for (int other = 0; other < 3; ++other)
                    EXPECT_EQ(ButtonOf(box, other)->isVisible(), other < count);
                for (int picture = 0; picture < 5; ++picture)
                    EXPECT_EQ(Child(Box, Part("imgIcons", picture))->isVisible(), picture == count);
                Touch(box, index);
            });
            EXPECT_EQ(pressed, sets[set][index].first);
        }
    }
}

TEST_F(dlgMessageTest, KeysPressTheDefaultAndTheCancelButton) {
    EXPECT_EQ(Key(0, Qt::Key_Return), Messages::Ok);
    EXPECT_EQ(Key(51, Qt::Key_Enter), Messages::Yes);
    EXPECT_EQ(Key(51 + 256, Qt::Key_Return), Messages::No);
    EXPECT_EQ(Key(51 + 512, Qt::Key_Return), Messages::Cancel);
    const int escaped[] = {Messages::Closed, Messages::Cancel, Messages::Abort, Messages::Cancel,
                           Messages::No};
    for (int style = 0; style < 5; ++style)
        EXPECT_EQ(Key(style, Qt::Key_Escape), escaped[style]) << style;
}

TEST_F(dlgMessageTest, GrowsWithItsTextAndStaysOnTheDisplay) {
    int height = 0;
    const QString text = QStringLiteral("A text of many lines. ");
    for (const int lines : {1, 30, 600}) {
        const auto read = [&](ScreenForm* box) {
            EXPECT_GT(box->height(), height) << lines;
            height = box->height();
            const auto* shown = box->findChild<QTextEdit*>("txtMsg");
            EXPECT_TRUE(lines == 600 || shown->height() >= shown->document()->size().height());
            EXPECT_LE(shown->geometry().bottom(), ButtonOf(box, 0)->y());
            EXPECT_LE(ButtonOf(box, 0)->geometry().bottom(), height);
            EXPECT_LE(height, box->screen()->geometry().height());
            Touch(box, 0);
        };
        Ask(16, read, text.repeated(lines));
    }
}

TEST_F(dlgMessageTest, EndsWithoutAnAnswerWhenItIsClosedOrUnloaded) {
    EXPECT_EQ(Ask(51, [](ScreenForm* box) { CloseWindow(box); }), Messages::Closed);
    EXPECT_EQ(Ask(51, [](ScreenForm*) { Forms::UnloadAllBut({}); }), Messages::Closed);
}

TEST_F(dlgMessageTest, ABoxThatDoesNotWaitStandsUntilItIsTouchedAndANoticeUntilItGoes) {
    EXPECT_EQ(Message("First", 64, true), 0);
    EXPECT_EQ(Message("Second", 16, true), 0);
    for (const int left : {2, 1}) {
        EXPECT_EQ(NbInstances(Box), left);
        Touch(Screen(Box), 0);
    }
    Messages::InstallNotice(&dlgMessage::PresentNotice);
    {
        const Messages::Notice notice("Reading");
        EXPECT_TRUE(Screen(Box)->Visible());
        EXPECT_FALSE(ButtonOf(Screen(Box), 0)->isVisible());
    }
    EXPECT_EQ(NbInstances(Box), 0);
    Messages::InstallNotice(nullptr);
}

TEST_F(dlgMessageTest, TwoThatWaitAreAnsweredOneAfterTheOther) {
    int inner = 0;
    const int outer = Ask(4, [&](ScreenForm* box) {
        QTimer::singleShot(
            0, [] { Touch(dynamic_cast<ScreenForm*>(QApplication::activeModalWidget()), 1); });
        inner = Message("Inner", 4);
        Touch(box, 0);
    });
    EXPECT_EQ(inner, Messages::No);
    EXPECT_EQ(outer, Messages::Yes);
}
