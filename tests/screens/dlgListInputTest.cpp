#include "screens/dialogs/dlgListInput.h"
#include "core/ErrorHandling.h"
#include "core/FormNames.h"
#include "support/ScreensFixture.h"

#include <QLineEdit>
#include <QListWidget>
#include <QPointer>

namespace {

/// Stands in for the panel editor: a parameter number, two lists, and the values it holds.
class FakeEditor : public ScreenForm, public PreviewLists {
public:
    FakeEditor()
        : ScreenForm(QStringLiteral("wBusPanneau")) {
        setFixedSize(100, 100);
        Prepare();
    }
    int PreviewParameter() const override { return parameter; }
    int PreviewCount(int list) const override { return list == 8 ? 5 : 3; }
    void setPreviewIndex(int list, int index) override { index_[list] = index; }
    QString PreviewValue(int) const override { return held; }
    int Index(int list) const { return index_.value(list, -99); }

    int parameter = 9;
    QString held = QStringLiteral("2");

private:
    QHash<int, int> index_;
};

} // namespace

class dlgListInputTest : public ScreensTest {
protected:
    enum Image { Up, Down, Confirm, Cancel };

    static QListWidget* List() {
        return qobject_cast<QListWidget*>(
            Child(FormNames::dlgListInput, QStringLiteral("lstValue")));
    }
    static QStringList Items() {
        QStringList items;
        for (int i = 0; i < List()->count(); ++i)
            items += List()->item(i)->text();
        return items;
    }
    static QString Value() {
        return qobject_cast<QLineEdit*>(Child(FormNames::dlgListInput, QStringLiteral("txtValue")))
            ->text();
    }
    static QWidget* ImageOf(int index) {
        return Child(FormNames::dlgListInput, QStringLiteral("imgControl_%1").arg(index));
    }
    static void TapImage(int index) { QTest::mouseClick(ImageOf(index), Qt::LeftButton); }
    static void TapRow(int row) {
        const QRect area = List()->visualItemRect(List()->item(row));
        EXPECT_GE(area.height(), 48);
        QTest::mouseClick(List()->viewport(), Qt::LeftButton, {}, area.center());
    }

    /// Asks for a value and does something while the dialog is up.
    std::optional<QString> Ask(const QString& descriptor, const QString& present,
                               const std::function<void()>& act, ScreenForm* parent = nullptr) {
        bool acted = false;
        QTimer::singleShot(0, [&] {
            acted = true;
            act();
            if (ScreenForm* left = Screen(FormNames::dlgListInput);
                left != nullptr && left->Visible())
                left->Hide();
        });
        auto value = AskValue(parent, descriptor, present);
        EXPECT_TRUE(acted);
        EXPECT_EQ(NbInstances(FormNames::dlgListInput), 0);
        RemoveUnloaded();
        return value;
    }
    /// The list of a descriptor and the row that is selected in it.
    QPair<QStringList, int> ListOf(const QString& descriptor, const QString& present = {}) {
        QPair<QStringList, int> shown;
        Ask(descriptor, present, [&] { shown = {Items(), List()->currentRow()}; });
        return shown;
    }
};

TEST_F(dlgListInputTest, EveryDescriptorMakesItsList) {
    EXPECT_EQ(ListOf(QStringLiteral("$"), QStringLiteral("Yes")).first,
              (QStringList{GetText(10001), GetText(10002)}));
    EXPECT_EQ(ListOf(QStringLiteral("*|-1|2")).first,
              (QStringList{QStringLiteral("-1"), QStringLiteral("0"), QStringLiteral("1"),
                           QStringLiteral("2")}));
    EXPECT_EQ(ListOf(QStringLiteral("*|7|7")).first, QStringList{QStringLiteral("7")});
    EXPECT_EQ(ListOf(QStringLiteral("*|5|4")).first, QStringList());
    EXPECT_EQ(ListOf(QStringLiteral("@|a||00:05")).first,
              (QStringList{QStringLiteral("a"), QString(), QStringLiteral("00:05")}));
    for (const auto& none :
         {QStringLiteral("@"), QStringLiteral(""), QStringLiteral("?|1|2"), QStringLiteral("$$|x")})
        EXPECT_EQ(ListOf(none).first, QStringList()) << none.toStdString();
    const auto longest = ListOf(QStringLiteral("*|-32768|32767"), QStringLiteral("32767"));
    EXPECT_EQ(longest.first.size(), 65536);
    EXPECT_EQ(longest.second, 65535);
    EXPECT_TRUE(boxes.isEmpty());
}

TEST_F(dlgListInputTest, BoundsThatAreMissingOrTooLargeAreReported) {
    EXPECT_EQ(ListOf(QStringLiteral("*|1")).first, QStringList());
    EXPECT_EQ(ListOf(QStringLiteral("*|1|40000")).first, QStringList());
    const QString source = QStringLiteral("dlgListInput.ValuesList");
    EXPECT_EQ(boxes, (QStringList{ErrorHandling::ErrorText(source, 9),
                                  ErrorHandling::ErrorText(source, 6)}));
}

TEST_F(dlgListInputTest, TheLastItemEqualToTheValueIsSelected) {
    EXPECT_EQ(ListOf(QStringLiteral("@|a|b|a|c"), QStringLiteral("a")).second, 2);
    EXPECT_EQ(ListOf(QStringLiteral("@|a|b"), QStringLiteral("A")).second, -1);
    EXPECT_EQ(ListOf(QStringLiteral("*|1|730"), QStringLiteral("700")).second, 699);
    // A value that the list doesn't hold comes back as it was.
    EXPECT_EQ(Ask(QStringLiteral("*|1|3"), QStringLiteral("99"),
                  [&] {
                      EXPECT_EQ(List()->currentRow(), -1);
                      TapImage(Confirm);
                  }),
              QStringLiteral("99"));
}

TEST_F(dlgListInputTest, TapsAndArrowsMoveWithoutWrapping) {
    const auto chosen = Ask(QStringLiteral("*|1|4"), QStringLiteral("2"), [&] {
        TapImage(Up);
        TapImage(Up);
        EXPECT_EQ(Value(), QStringLiteral("1"));
        // What a double tap sends.
        TapImage(Down);
        QTest::mouseDClick(ImageOf(Down), Qt::LeftButton);
        QTest::mouseRelease(ImageOf(Down), Qt::LeftButton);
        EXPECT_EQ(Value(), QStringLiteral("3"));
        for (int i = 0; i < 5; ++i)
            TapImage(Down);
        EXPECT_EQ(Value(), QStringLiteral("4"));
        TapRow(1);
        EXPECT_EQ(Value(), QStringLiteral("2"));
        TapImage(Confirm);
        EXPECT_FALSE(Screen(FormNames::dlgListInput)->Visible());
    });
    EXPECT_EQ(chosen, QStringLiteral("2"));
    EXPECT_EQ(Ask(QStringLiteral("*|1|4"), QStringLiteral("2"),
                  [&] {
                      TapImage(Down);
                      TapImage(Cancel);
                  }),
              std::nullopt);
    // Nothing selected: the first step goes to the first item, and up goes nowhere.
    Ask(QStringLiteral("@|a|b"), QStringLiteral("z"), [&] {
        TapImage(Up);
        EXPECT_EQ(Value(), QStringLiteral("z"));
        TapImage(Down);
        EXPECT_EQ(Value(), QStringLiteral("a"));
    });
}

TEST_F(dlgListInputTest, KeysOfARealKeyboardDoTheSame) {
    EXPECT_EQ(Ask(QStringLiteral("*|1|4"), QStringLiteral("2"),
                  [&] {
                      QTest::keyClick(Screen(FormNames::dlgListInput), Qt::Key_Down);
                      QTest::keyClick(Screen(FormNames::dlgListInput), Qt::Key_Return);
                  }),
              QStringLiteral("3"));
    EXPECT_EQ(Ask(QStringLiteral("*|1|4"), QStringLiteral("2"),
                  [&] { QTest::keyClick(Screen(FormNames::dlgListInput), Qt::Key_Escape); }),
              std::nullopt);
}

TEST_F(dlgListInputTest, AnArrowThatIsHeldRepeatsUntilItIsLetGo) {
    Ask(QStringLiteral("*|1|6"), QStringLiteral("1"), [&] {
        auto* timer =
            Screen(FormNames::dlgListInput)->findChild<QTimer*>(QStringLiteral("tmrRepeat"));
        QTest::mousePress(ImageOf(Down), Qt::LeftButton);
        EXPECT_TRUE(timer->isActive());
        EXPECT_EQ(timer->interval(), 1000) << "ahead of the first step";
        EXPECT_EQ(Value(), QStringLiteral("1"));
        timer->setInterval(1);
        EXPECT_TRUE(Comes([&] { return Value() != QStringLiteral("1"); }));
        EXPECT_EQ(timer->interval(), 100) << "ten steps a second";
        EXPECT_TRUE(Comes([&] { return Value() == QStringLiteral("6"); }));
        QTest::qWait(250);
        EXPECT_EQ(Value(), QStringLiteral("6")) << "no further than the end";
        QTest::mouseRelease(ImageOf(Down), Qt::LeftButton);
        EXPECT_FALSE(timer->isActive()) << "the finger is off";
        TapImage(Up);
        TapImage(Up);
        EXPECT_EQ(Value(), QStringLiteral("4"));
    });
}

TEST_F(dlgListInputTest, OnlyTheLeftButtonAloneRepeatsAndOnlyOnTheArrows) {
    Ask(QStringLiteral("*|1|9"), QStringLiteral("1"), [&] {
        const auto* timer =
            Screen(FormNames::dlgListInput)->findChild<QTimer*>(QStringLiteral("tmrRepeat"));
        QTest::mousePress(ImageOf(Down), Qt::LeftButton, Qt::ShiftModifier);
        EXPECT_FALSE(timer->isActive());
        EXPECT_EQ(Value(), QStringLiteral("1"));
        QTest::mouseRelease(ImageOf(Down), Qt::LeftButton, {}, QPoint(-5, -5));
        QTest::mousePress(ImageOf(Confirm), Qt::LeftButton);
        EXPECT_FALSE(timer->isActive());
        EXPECT_TRUE(Screen(FormNames::dlgListInput)->Visible());
        QTest::mouseRelease(ImageOf(Confirm), Qt::LeftButton, {}, QPoint(-5, -5));
    });
}

TEST_F(dlgListInputTest, TheListsOfThePanelEditorFollowTheValue) {
    auto* editor = new FakeEditor;
    const auto run = [&](const QString& present, const std::function<void()>& act) {
        return Ask(QStringLiteral("*|0|9"), present, act, editor);
    };
    run(QStringLiteral("2"), [&] {
        EXPECT_EQ(editor->Index(9), 1);
        TapImage(Down);
        EXPECT_EQ(editor->Index(9), 2);
        TapImage(Down);
        EXPECT_EQ(editor->Index(9), 2) << "a number behind the end of the list shows nothing new";
        TapRow(1);
        TapImage(Cancel);
    });
    EXPECT_EQ(editor->Index(9), 1) << "the preview isn't undone";
    run(QStringLiteral("2"), [&] {
        TapImage(Up);
        TapImage(Up);
        EXPECT_EQ(editor->Index(9), -1);
        TapImage(Confirm);
    });
    EXPECT_EQ(editor->Index(9), -1);
    EXPECT_EQ(editor->Index(8), -99);

    editor->parameter = 8;
    run(QStringLiteral("5"), [] {});
    EXPECT_EQ(editor->Index(8), 4);
    editor->parameter = 7;
    run(QStringLiteral("1"), [] {});
    EXPECT_EQ(editor->Index(7), -99);
    editor->Unload();
}

TEST_F(dlgListInputTest, GoesWithTheScreensThatAnAlarmUnloads) {
    const QPointer<ScreenForm> editor(new FakeEditor);
    EXPECT_EQ(Ask(
                  QStringLiteral("*|1|4"), QStringLiteral("2"),
                  [&] {
                      QTest::mousePress(ImageOf(Down), Qt::LeftButton);
                      Forms::UnloadAllBut({});
                      RemoveUnloaded();
                  },
                  editor),
              std::nullopt);
    EXPECT_TRUE(boxes.isEmpty());
}
