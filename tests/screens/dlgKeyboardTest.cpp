#include "screens/dialogs/dlgKeyboard.h"
#include "platform/CodePage.h"
#include "support/ScreensFixture.h"

#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>

class dlgKeyboardTest : public ScreensTest {
protected:
    enum Ctrl { Home, Left, Right, End, Back, Del, Clear, Space };
    using Act = std::function<void()>;

    static QPushButton* Button(const char* array, int index) {
        return Find<QPushButton>(FormNames::dlgKeyboard, Part(array, index));
    }
    static QLineEdit* Line() { return Find<QLineEdit>(FormNames::dlgKeyboard, "txtValue_0"); }
    static QPlainTextEdit* Lines() {
        return Find<QPlainTextEdit>(FormNames::dlgKeyboard, "txtValue_1");
    }
    static void TapKey(const QString& name) { Tap(FormNames::dlgKeyboard, name); }
    static void Ctrls(const QList<int>& keys) {
        for (const int key : keys)
            TapKey(Part("cmdCtrl", key));
    }
    static dlgKeyboard* Keyboard() {
        return qobject_cast<dlgKeyboard*>(Screen(FormNames::dlgKeyboard));
    }
    static void LineBreak() { TapKey("imgCRLF"); }
    static void Cancel() { TapKey("imgControl_0"); }
    static void Confirm() { TapKey("imgControl_1"); }
    /// Types characters of the printable ranges with the keys.
    static void Type(const QString& text) {
        for (const char code : platform::ToCodePage(text)) {
            TapKey(Part("cmdRange", uchar(code) / 32 - 1));
            TapKey(Part("cmdKey", uchar(code) % 32));
        }
    }

    static std::optional<QString> Ask(const QString& present, const Act& act, int maxLength = 0,
                                      bool multiLine = false) {
        const auto ask = [&] { return AskText("Title", present, maxLength, multiLine); };
        return AskAt(FormNames::dlgKeyboard, ask, act);
    }
};

TEST_F(dlgKeyboardTest, EveryRangeShowsItsCharactersOfTheCodePage) {
    Ask({}, [] {
        EXPECT_EQ(Button("cmdKey", 0)->text(), "@") << "begins with the capitals";
        for (int code = 32; code < 256; ++code) {
            TapKey(Part("cmdRange", code / 32 - 1));
            const QPushButton* key = Button("cmdKey", code % 32);
            const QString character = platform::FromCodePage(QByteArray(1, char(code)));
            const bool isFree = character[0].category() == QChar::Other_Control;
            EXPECT_EQ(key->isEnabled(), !isFree) << code;
            EXPECT_EQ(key->text().replace("&&", "&"), isFree ? QString() : character) << code;
        }
        const QStringList captions{"HOME", "<--", "-->", "END", "<==X", "DEL", "CLR", QString()};
        for (int i = 0; i < captions.size(); ++i)
            EXPECT_EQ(Button("cmdCtrl", i)->text(), captions[i]);
        EXPECT_FALSE(Child(FormNames::dlgKeyboard, "imgCRLF")->isVisible());
    });
}

TEST_F(dlgKeyboardTest, KeysLieInTheirGridAndAreLargeEnoughAtEverySize) {
    for (const QSize& display : {QSize(), QSize(1280, 800)}) {
        OverrideScreenSize(display);
        Ask({}, [&] {
            const QWidget* box = Child(FormNames::dlgKeyboard, "picKeyboard");
            EXPECT_TRUE(Screen(FormNames::dlgKeyboard)->rect().contains(box->geometry()));
            const auto check = [&](const QPushButton* key, double x, double y, int rows) {
                EXPECT_NEAR(key->x(), (x + 0.1) * box->width() / 10.1, 1);
                EXPECT_NEAR(key->y(), (y + 0.1) * box->height() / (rows + 0.1), 1);
                EXPECT_GE(qMin(key->width(), key->height()), 48);
                EXPECT_TRUE(key->isVisible() && box->rect().contains(key->geometry()));
                EXPECT_LE(key->fontMetrics().horizontalAdvance(key->text()), key->width() - 4)
                    << key->text().toStdString();
            };
            for (int i = 0; i < 7; ++i)
                check(Button("cmdRange", i), 0, i, 7);
            for (int i = 0; i < 32; ++i)
                check(Button("cmdKey", i), i % 8 + 2, i >> 3, 5);
            for (int i = 0; i < 8; ++i)
                check(Button("cmdCtrl", i), i + 2, 4, 5);
        });
    }
}

TEST_F(dlgKeyboardTest, EditsOneLine) {
    const auto text = Ask("abcd", [] {
        const auto edit = [](const QList<int>& keys, const char* typed, const char* shown) {
            Ctrls(keys);
            Type(typed);
            EXPECT_EQ(Line()->text(), QString::fromUtf8(shown).replace(u'|', QString()));
            EXPECT_EQ(Line()->cursorPosition(), QString::fromUtf8(shown).indexOf(u'|'));
        };
        edit({Home, Left, Del}, "", "|bcd");
        edit({Back, Right, Right, Back}, "", "b|d");
        edit({End, Right, Del}, "", "bd|");
        // The caret is where a selection begins.
        Line()->setSelection(0, 2);
        edit({}, "Z", "Z|bd");
        edit({Clear, Clear, Back, Del, Left, Right}, "K&é€", "K&é€|");
        edit({Left, Left}, "x", "K&x|é€");
        edit({Space}, "", "K&x |é€");
        EXPECT_EQ(Keyboard()->focusWidget(), Line());
        Confirm();
    });
    EXPECT_EQ(text, "K&x é€");
}

TEST_F(dlgKeyboardTest, ALineBreakIsOneStep) {
    const QString before = "ab\r\n\r\ncd";
    const auto edit = [] {
        EXPECT_TRUE(Lines()->isVisible() && !Line()->isVisible());
        const auto shows = [](const char* text) { EXPECT_EQ(Keyboard()->Text(), text); };
        Ctrls({Left, Left, Left, Left});
        Type("1");
        shows("ab1\r\n\r\ncd");
        Ctrls({Right, Right, Back});
        shows("ab1\r\ncd");
        Ctrls({Left, Del});
        shows("ab1cd");
        LineBreak();
        Type("2");
        shows("ab1\r\n2cd");
        Ctrls({Home, Del, End, Back});
        EXPECT_EQ(Keyboard()->focusWidget(), Lines());
        Confirm();
    };
    EXPECT_EQ(Ask(before, edit, 1024, true), "b1\r\n2c");
    EXPECT_EQ(Ask(before, Confirm, 1024, true), before);
}

TEST_F(dlgKeyboardTest, AFullBoxTakesNothingMore) {
    const auto typeOn = [] {
        Type("xyz");
        Ctrls({Home, Space});
        Confirm();
    };
    EXPECT_EQ(Ask("ab", typeOn, 3), "abx");
    EXPECT_EQ(Ask("abcdef", Confirm, 3), "abc");
    // A line break counts two and is never halved.
    EXPECT_EQ(Ask("abc\r\nd", Confirm, 4, true), "abc");
    const auto breakOn = [] {
        LineBreak();
        Type("d");
        LineBreak();
        QTest::keyClicks(Lines(), "efg");
        Confirm();
    };
    EXPECT_EQ(Ask("abc", breakOn, 7, true), "abc\r\nde");
}

TEST_F(dlgKeyboardTest, ALetterThatNoFileKeepsIsntTaken) {
    const auto type = [] {
        Ctrls({Left});
        TypeAbroad(Keyboard()->focusWidget(), "ałé😀€");
        Confirm();
    };
    EXPECT_EQ(Ask("xz", type), "xaé€z");
    EXPECT_EQ(Ask("xz", type, 1024, true), "xaé€z");
}

TEST_F(dlgKeyboardTest, EnterConfirmsAndEscapeCancelsOnARealKeyboard) {
    for (const bool multiLine : {false, true}) {
        for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Escape}) {
            const auto given = Ask(
                "a",
                [&] {
                    QTest::keyClicks(Keyboard()->focusWidget(), "b");
                    QTest::keyClick(Keyboard()->focusWidget(), key);
                },
                40, multiLine);
            EXPECT_EQ(given.value_or("none"), key == Qt::Key_Escape ? "none" : "ab") << key;
        }
    }
    EXPECT_EQ(Ask("a", Cancel), std::nullopt);
}
