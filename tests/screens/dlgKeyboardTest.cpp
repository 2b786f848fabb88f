#include "screens/dialogs/dlgKeyboard.h"
#include "core/FormNames.h"
#include "platform/CodePage.h"
#include "support/ScreensFixture.h"

#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>

namespace {} // namespace

class dlgKeyboardTest : public ScreensTest {
protected:
    enum Ctrl { Home, Left, Right, End, Back, Del, Clear, Space };
    enum Image { Cancel, Confirm };

    static QString Name(const char* array, int index) {
        return QString::fromLatin1(array) + u'_' + QString::number(index);
    }
    static QPushButton* Button(const char* array, int index) {
        return qobject_cast<QPushButton*>(Child(FormNames::dlgKeyboard, Name(array, index)));
    }
    static QLineEdit* Line() {
        return qobject_cast<QLineEdit*>(Child(FormNames::dlgKeyboard, Name("txtValue", 0)));
    }
    static QPlainTextEdit* Lines() {
        return qobject_cast<QPlainTextEdit*>(Child(FormNames::dlgKeyboard, Name("txtValue", 1)));
    }
    static void Ctrls(const QList<int>& keys) {
        for (const int key : keys)
            Tap(FormNames::dlgKeyboard, Name("cmdCtrl", key));
    }
    static dlgKeyboard* Keyboard() {
        return qobject_cast<dlgKeyboard*>(Screen(FormNames::dlgKeyboard));
    }
    static void LineBreak() { Tap(FormNames::dlgKeyboard, QStringLiteral("imgCRLF")); }
    /// Types characters of the printable ranges with the keys.
    static void Type(const QString& text) {
        const QByteArray codes = platform::ToCodePage(text);
        for (const char code : codes) {
            const int number = uchar(code);
            Tap(FormNames::dlgKeyboard, Name("cmdRange", number / 32 - 1));
            Tap(FormNames::dlgKeyboard, Name("cmdKey", number % 32));
        }
    }

    std::optional<QString> Ask(const std::function<void()>& act, const QString& present = {},
                               int maxLength = 0, bool multiLine = false) {
        bool acted = false;
        QTimer::singleShot(0, [&] {
            acted = true;
            act();
            if (ScreenForm* left = Screen(FormNames::dlgKeyboard);
                left != nullptr && left->Visible())
                left->Hide();
        });
        auto text = AskText(QStringLiteral("Title"), present, maxLength, multiLine);
        EXPECT_TRUE(acted);
        EXPECT_EQ(NbInstances(FormNames::dlgKeyboard), 0);
        RemoveUnloaded();
        return text;
    }
    std::optional<QString> AskLines(const std::function<void()>& act, const QString& present = {},
                                    int maxLength = 1024) {
        return Ask(act, present, maxLength, true);
    }
};

TEST_F(dlgKeyboardTest, EveryRangeShowsItsCharactersOfTheCodePage) {
    Ask([&] {
        EXPECT_EQ(Button("cmdKey", 0)->text(), QStringLiteral("@")) << "begins with the capitals";
        for (int range = 0; range < 7; ++range) {
            Tap(FormNames::dlgKeyboard, Name("cmdRange", range));
            for (int key = 0; key < 32; ++key) {
                QString wanted =
                    platform::FromCodePage(QByteArray(1, char((range + 1) * 32 + key)));
                const bool isFree = wanted[0].category() == QChar::Other_Control;
                EXPECT_EQ(Button("cmdKey", key)->isEnabled(), !isFree);
                if (isFree)
                    wanted.clear();
                else if (wanted == QLatin1String("&"))
                    wanted = QStringLiteral("&&");
                EXPECT_EQ(Button("cmdKey", key)->text(), wanted) << range << " " << key;
            }
        }
        const QStringList captions{QStringLiteral("HOME"), QStringLiteral("<--"),
                                   QStringLiteral("-->"),  QStringLiteral("END"),
                                   QStringLiteral("<==X"), QStringLiteral("DEL"),
                                   QStringLiteral("CLR"),  QString()};
        for (int i = 0; i < captions.size(); ++i)
            EXPECT_EQ(Button("cmdCtrl", i)->text(), captions[i]);
    });
}

TEST_F(dlgKeyboardTest, KeysLieInTheirGridAndAreLargeEnoughAtEverySize) {
    for (const QSize& display : {QSize(), QSize(1280, 800)}) {
        OverrideScreenSize(display);
        Ask([&] {
            const QWidget* box = Child(FormNames::dlgKeyboard, QStringLiteral("picKeyboard"));
            EXPECT_TRUE(Screen(FormNames::dlgKeyboard)->rect().contains(box->geometry()));
            EXPECT_EQ(box->geometry().right() + 1 + box->x(),
                      Screen(FormNames::dlgKeyboard)->width());
            const double column = box->width() / 10.1;
            const auto check = [&](const QPushButton* key, double x, double y, double width,
                                   double row) {
                EXPECT_NEAR(key->x(), (x + 0.1) * column, 1);
                EXPECT_NEAR(key->y(), (y + 0.1) * row, 1);
                EXPECT_NEAR(key->width(), width * column, 1);
                EXPECT_NEAR(key->height(), 0.9 * row, 1);
                EXPECT_GE(qMin(key->width(), key->height()), 48);
                EXPECT_TRUE(key->isVisible() && box->rect().contains(key->geometry()));
                EXPECT_LE(key->fontMetrics().horizontalAdvance(key->text()), key->width() - 4)
                    << key->text().toStdString();
            };
            for (int i = 0; i < 7; ++i)
                check(Button("cmdRange", i), 0, i, 1.8, box->height() / 7.1);
            for (int i = 0; i < 32; ++i)
                check(Button("cmdKey", i), i % 8 + 2, i >> 3, 0.9, box->height() / 5.1);
            for (int i = 0; i < 8; ++i)
                check(Button("cmdCtrl", i), i + 2, 4, 0.9, box->height() / 5.1);
        });
    }
}

TEST_F(dlgKeyboardTest, TypesAtTheCaretAndKeepsTheFocusInTheBox) {
    const auto text = Ask(
        [&] {
            Type(QStringLiteral("K&é€"));
            Ctrls({Left, Left});
            Type(QStringLiteral("x"));
            Ctrls({Space});
            EXPECT_EQ(Line()->cursorPosition(), 6);
            EXPECT_EQ(Keyboard()->focusWidget(), Line());
            Ctrls({Home});
            Type(QStringLiteral("1"));
            Tap(FormNames::dlgKeyboard, Name("imgControl", Confirm));
        },
        QStringLiteral("ab"));
    EXPECT_EQ(text, QStringLiteral("1abK&x é€"));
}

TEST_F(dlgKeyboardTest, EditsOneLine) {
    const auto text = Ask(
        [&] {
            Ctrls({Home, Left, Del});
            EXPECT_EQ(Line()->text(), QStringLiteral("bcd"));
            Ctrls({Back, Right, Right, Back});
            EXPECT_EQ(Line()->text(), QStringLiteral("bd"));
            EXPECT_EQ(Line()->cursorPosition(), 1);
            Ctrls({End, Right, Del});
            EXPECT_EQ(Line()->text(), QStringLiteral("bd"));
            // The caret is where a selection begins.
            Line()->setSelection(0, 2);
            Type(QStringLiteral("Z"));
            EXPECT_EQ(Line()->text(), QStringLiteral("Zbd"));
            Ctrls({Clear, Clear, Back, Del, Left, Right});
            EXPECT_EQ(Line()->text(), QString());
            Type(QStringLiteral("q"));
            Tap(FormNames::dlgKeyboard, Name("imgControl", Confirm));
        },
        QStringLiteral("abcd"));
    EXPECT_EQ(text, QStringLiteral("q"));
}

TEST_F(dlgKeyboardTest, ALineBreakIsOneStep) {
    const QString before = QStringLiteral("ab\r\n\r\ncd");
    const auto text = AskLines(
        [&] {
            EXPECT_TRUE(Lines()->isVisible() && !Line()->isVisible());
            Ctrls({Left, Left, Left, Left});
            Type(QStringLiteral("1"));
            EXPECT_EQ(Keyboard()->Text(), QStringLiteral("ab1\r\n\r\ncd"));
            Ctrls({Right, Right, Back});
            EXPECT_EQ(Keyboard()->Text(), QStringLiteral("ab1\r\ncd"));
            Ctrls({Left, Del});
            EXPECT_EQ(Keyboard()->Text(), QStringLiteral("ab1cd"));
            LineBreak();
            Type(QStringLiteral("2"));
            EXPECT_EQ(Keyboard()->Text(), QStringLiteral("ab1\r\n2cd"));
            Ctrls({Home, Del, End, Back});
            EXPECT_EQ(Keyboard()->focusWidget(), Lines());
            Tap(FormNames::dlgKeyboard, Name("imgControl", Confirm));
        },
        before);
    EXPECT_EQ(text, QStringLiteral("b1\r\n2c"));
    EXPECT_EQ(AskLines([&] { Tap(FormNames::dlgKeyboard, Name("imgControl", Confirm)); }, before),
              before);
    Ask([&] {
        EXPECT_FALSE(Child(FormNames::dlgKeyboard, QStringLiteral("imgCRLF"))->isVisible());
    });
}

TEST_F(dlgKeyboardTest, AFullBoxTakesNothingMore) {
    const auto confirm = [&] { Tap(FormNames::dlgKeyboard, Name("imgControl", Confirm)); };
    EXPECT_EQ(Ask(
                  [&] {
                      Type(QStringLiteral("xyz"));
                      Ctrls({Home, Space});
                      confirm();
                  },
                  QStringLiteral("ab"), 3),
              QStringLiteral("abx"));
    EXPECT_EQ(Ask(confirm, QStringLiteral("abcdef"), 3), QStringLiteral("abc"));
    // A line break counts two and is never halved.
    EXPECT_EQ(AskLines(confirm, QStringLiteral("abc\r\nd"), 4), QStringLiteral("abc"));
    EXPECT_EQ(AskLines(
                  [&] {
                      LineBreak();
                      Type(QStringLiteral("d"));
                      LineBreak();
                      QTest::keyClicks(Lines(), QStringLiteral("efg"));
                      confirm();
                  },
                  QStringLiteral("abc"), 7),
              QStringLiteral("abc\r\nde"));
}

TEST_F(dlgKeyboardTest, EnterConfirmsAndEscapeCancelsOnARealKeyboard) {
    for (const bool multiLine : {false, true}) {
        const auto box = [&]() -> QWidget* {
            if (multiLine)
                return Lines();
            return Line();
        };
        for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter}) {
            EXPECT_EQ(Ask(
                          [&] {
                              QTest::keyClicks(box(), QStringLiteral("b"));
                              QTest::keyClick(box(), key);
                          },
                          QStringLiteral("a"), 40, multiLine),
                      QStringLiteral("ab"));
        }
        EXPECT_EQ(Ask([&] { QTest::keyClick(box(), Qt::Key_Escape); }, QStringLiteral("a"), 40,
                      multiLine),
                  std::nullopt);
    }
    EXPECT_EQ(Ask([&] { Tap(FormNames::dlgKeyboard, Name("imgControl", Cancel)); }), std::nullopt);
}

TEST_F(dlgKeyboardTest, GoesWithTheScreensThatAnAlarmUnloads) {
    EXPECT_EQ(Ask(
                  [&] {
                      Type(QStringLiteral("x"));
                      Forms::UnloadAllBut({});
                      RemoveUnloaded();
                  },
                  QStringLiteral("a")),
              std::nullopt);
}
