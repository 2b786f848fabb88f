#include "screens/dialogs/dlgListInput.h"
#include "core/ErrorHandling.h"
#include "support/ScreensFixture.h"

#include <QLineEdit>
#include <QListWidget>

namespace {

/// Stands in for the panel editor: a parameter number, two lists, and the values it holds.
class FakeEditor : public ScreenForm, public PreviewLists {
public:
    FakeEditor()
        : ScreenForm("wBusPanneau") {
        setFixedSize(100, 100);
        Prepare();
    }
    int PreviewParameter() const override { return parameter; }
    int PreviewCount(int list) const override { return list == 8 ? 5 : 3; }
    void setPreviewIndex(int list, int index) override { indices[list] = index; }
    QString PreviewValue(int) const override { return "2"; }

    int parameter = 9;
    QHash<int, int> indices;
};

} // namespace

class dlgListInputTest : public ScreensTest {
protected:
    using Act = std::function<void()>;

    static QListWidget* List() { return Find<QListWidget>(FormNames::dlgListInput, "lstValue"); }
    static QString Value() { return Find<QLineEdit>(FormNames::dlgListInput, "txtValue")->text(); }
    static QWidget* Image(int index) {
        return Child(FormNames::dlgListInput, Part("imgControl", index));
    }
    static void Up() { QTest::mouseClick(Image(0), Qt::LeftButton); }
    static void Down() { QTest::mouseClick(Image(1), Qt::LeftButton); }
    static void Confirm() { QTest::mouseClick(Image(2), Qt::LeftButton); }
    static void Cancel() { QTest::mouseClick(Image(3), Qt::LeftButton); }
    static void PressKey(Qt::Key key) { QTest::keyClick(Screen(FormNames::dlgListInput), key); }
    static QTimer* Repeat() {
        return Screen(FormNames::dlgListInput)->findChild<QTimer*>("tmrRepeat");
    }

    /// Asks for a value and does something while the dialog is up.
    static std::optional<QString> Ask(const QString& descriptor, const QString& present,
                                      const Act& act, ScreenForm* parent = nullptr) {
        const auto ask = [&] { return AskValue(parent, descriptor, present); };
        return AskAt(FormNames::dlgListInput, ask, act);
    }
    static QStringList ListOf(const QString& descriptor) {
        QStringList items;
        Ask(descriptor, {}, [&] {
            for (int i = 0; i < List()->count(); ++i)
                items += List()->item(i)->text();
        });
        return items;
    }
};

TEST_F(dlgListInputTest, EveryDescriptorMakesItsList) {
    const std::pair<const char*, QStringList> lists[] = {
        {"$", {GetText(10001), GetText(10002)}},
        {"*|-1|2", {"-1", "0", "1", "2"}},
        {"*|7|7", {"7"}},
        {"@|a||00:05", {"a", "", "00:05"}},
        {"*|5|4", {}},
        {"@", {}},
        {"", {}},
        {"?|1|2", {}},
        {"$$|x", {}},
    };
    for (const auto& [descriptor, items] : lists)
        EXPECT_EQ(ListOf(descriptor), items) << descriptor;
    EXPECT_EQ(ListOf("*|-32768|32767").size(), 65536);
    EXPECT_TRUE(boxes.isEmpty());
    // Bounds that are missing or too large.
    for (const char* wrong : {"*|1", "*|1|40000"})
        EXPECT_EQ(ListOf(wrong), QStringList()) << wrong;
    const QString source = "dlgListInput.ValuesList";
    EXPECT_EQ(boxes, (QStringList{ErrorHandling::ErrorText(source, 9),
                                  ErrorHandling::ErrorText(source, 6)}));
}

TEST_F(dlgListInputTest, TheLastItemEqualToTheValueIsSelected) {
    const std::tuple<const char*, const char*, int> cases[] = {
        {"@|a|b|a|c", "a", 2}, {"@|a|b", "A", -1}, {"*|1|730", "700", 699}};
    for (const auto& one : cases) {
        const auto& [list, value, row] = one;
        const auto look = [row = row] { EXPECT_EQ(List()->currentRow(), row); };
        Ask(list, value, look);
    }
    EXPECT_EQ(Ask("*|1|3", "99", Confirm), "99") << "what the list doesn't hold comes back";
}

TEST_F(dlgListInputTest, TapsArrowsAndKeysMoveWithoutWrapping) {
    const auto chosen = Ask("*|1|4", "2", [] {
        const std::pair<void (*)(), const char*> steps[] = {{Up, "1"}, {Up, "1"}, {Down, "2"}};
        for (const auto& [step, value] : steps) {
            step();
            EXPECT_EQ(Value(), value);
        }
        // What a double tap sends.
        QTest::mouseDClick(Image(1), Qt::LeftButton);
        QTest::mouseRelease(Image(1), Qt::LeftButton);
        EXPECT_EQ(Value(), "3");
        for (int i = 0; i < 5; ++i)
            Down();
        EXPECT_EQ(Value(), "4");
        TapRow(List(), 1);
        EXPECT_EQ(Value(), "2");
        EXPECT_GE(List()->visualItemRect(List()->item(1)).height(), 48);
        Confirm();
        EXPECT_FALSE(Screen(FormNames::dlgListInput)->Visible());
    });
    EXPECT_EQ(chosen, "2");
    EXPECT_EQ(Ask("*|1|4", "2", Cancel), std::nullopt);
    const auto typed = Ask("*|1|4", "2", [] {
        PressKey(Qt::Key_Down);
        PressKey(Qt::Key_Return);
    });
    EXPECT_EQ(typed, "3");
    EXPECT_EQ(Ask("*|1|4", "2", [] { PressKey(Qt::Key_Escape); }), std::nullopt);
    // Nothing selected: the first step goes to the first item, and up goes nowhere.
    Ask("@|a|b", "z", [] {
        Up();
        EXPECT_EQ(Value(), "z");
        Down();
        EXPECT_EQ(Value(), "a");
    });
}

TEST_F(dlgListInputTest, AnArrowThatIsHeldRepeatsUntilItIsLetGo) {
    Ask("*|1|6", "1", [] {
        // The left button alone repeats, and only on the arrows.
        for (const auto& [image, modifier] :
             {std::pair(1, Qt::ShiftModifier), std::pair(2, Qt::NoModifier)}) {
            QTest::mousePress(Image(image), Qt::LeftButton, modifier);
            EXPECT_FALSE(Repeat()->isActive());
            QTest::mouseRelease(Image(image), Qt::LeftButton, {}, QPoint(-5, -5));
        }
        EXPECT_TRUE(Screen(FormNames::dlgListInput)->Visible());
        QTest::mousePress(Image(1), Qt::LeftButton);
        EXPECT_TRUE(Repeat()->isActive());
        EXPECT_EQ(Repeat()->interval(), 1000) << "ahead of the first step";
        EXPECT_EQ(Value(), "1");
        Repeat()->setInterval(1);
        EXPECT_TRUE(Comes([] { return Value() == "6"; }));
        EXPECT_EQ(Repeat()->interval(), 100) << "ten steps a second";
        QTest::qWait(250);
        EXPECT_EQ(Value(), "6") << "no further than the end";
        QTest::mouseRelease(Image(1), Qt::LeftButton);
        EXPECT_FALSE(Repeat()->isActive()) << "the finger is off";
        Up();
        EXPECT_EQ(Value(), "5");
    });
}

TEST_F(dlgListInputTest, TheListsOfThePanelEditorFollowTheValue) {
    auto* editor = new FakeEditor;
    const auto run = [&](const char* present, const Act& act) {
        return Ask("*|0|9", present, act, editor);
    };
    run("2", [&] {
        EXPECT_EQ(editor->indices.value(9, -99), 1);
        Down();
        EXPECT_EQ(editor->indices.value(9, -99), 2);
        Down();
        EXPECT_EQ(editor->indices.value(9, -99), 2)
            << "a number behind the end of the list shows nothing new";
        TapRow(List(), 1);
        Cancel();
    });
    EXPECT_EQ(editor->indices.value(9, -99), 1) << "the preview isn't undone";
    run("1", Up);
    EXPECT_EQ(editor->indices.value(9, -99), -1);
    for (const auto& [parameter, index] : {std::pair(8, 4), std::pair(7, -99)}) {
        EXPECT_EQ(editor->indices.value(parameter, -99), -99);
        editor->parameter = parameter;
        run("5", [] {});
        EXPECT_EQ(editor->indices.value(parameter, -99), index);
    }
    // An alarm takes both away under the finger.
    const auto taken = run("2", [] {
        QTest::mousePress(Image(1), Qt::LeftButton);
        Forms::UnloadAllBut({});
        RemoveUnloaded();
    });
    EXPECT_EQ(taken, std::nullopt);
    EXPECT_TRUE(boxes.isEmpty());
}
