#include "screens/dialogs/dlgConsigne.h"

#include "screens/touch/TouchImage.h"
#include "support/ScreensFixture.h"

namespace {

class ConsigneTest : public ScreensTest {
protected:
    void Show(const QString& text) {
        auto* dialog = new dlgConsigne;
        dialog->setAlarm("    12 2024-03-15 12:00:00 P01-C07 Trip");
        dialog->setConsigne(text);
        dialog->Show();
    }
    static QWidget& Text() { return *Child(FormNames::dlgConsigne, "lblConsigne"); }
    static int Room() { return Child(FormNames::dlgConsigne, "frmConsigne")->height(); }
    /// Everything of the text can be brought in sight by the buttons.
    static void ReadToTheEnd() {
        const int end = Room() - Text().height();
        for (int taps = 0; Text().y() > end && taps < 50; ++taps) {
            const int before = Text().y();
            Tap(FormNames::dlgConsigne, "imgControl_7");
            EXPECT_LT(before - Text().y(), Room()) << "no line is passed over";
        }
        EXPECT_EQ(Text().y(), end);
        Tap(FormNames::dlgConsigne, "imgControl_6");
        EXPECT_EQ(Text().y(), end);
        Tap(FormNames::dlgConsigne, "imgControl_5");
        EXPECT_GT(Text().y(), end);
        for (int taps = 0; taps < 50; ++taps)
            Tap(FormNames::dlgConsigne, "imgControl_4");
        EXPECT_EQ(Text().y(), 0);
    }
};

} // namespace

TEST_F(ConsigneTest, TextsAreReadToTheirEndByTheButtonsThatTheyNeed) {
    const QStringList texts{
        "Close the valve.\r\nCall <b>the team</b>.", QStringLiteral("Word ").repeated(204),
        QStringLiteral("W").repeated(1024), QStringLiteral("x\r\n").repeated(341),
        QStringLiteral("Line by line.\n").repeated(73)};
    for (const QString& text : texts) {
        SCOPED_TRACE(text.left(12).toStdString());
        Show(text);
        auto& label = *qobject_cast<QLabel*>(&Text());
        EXPECT_EQ(label.text().remove(QChar(0x200B)).remove(u'\n').size(),
                  QString(text).remove(u'\r').remove(u'\n').size());
        const QRect needed =
            QFontMetrics(label.font())
                .boundingRect(QRect(0, 0, label.width(), 100000), Qt::TextWordWrap, label.text());
        EXPECT_LE(needed.width(), label.width());
        EXPECT_LE(needed.height(), label.height());
        EXPECT_EQ(Child(FormNames::dlgConsigne, "imgControl_7")->isVisible(), text.size() > 100);
        const bool isWide = Child(FormNames::dlgConsigne, "frmFrames_0")->geometry().right() >=
                            Child(FormNames::dlgConsigne, "imgControl_7")->x();
        EXPECT_EQ(isWide, text.size() <= 100);
        if (text.size() > 100)
            ReadToTheEnd();
        Tap(FormNames::dlgConsigne, "imgClose");
        EXPECT_FALSE(Screen(FormNames::dlgConsigne)->isVisible());
        Forms::Unload(FormNames::dlgConsigne);
        RemoveUnloaded();
    }
}
