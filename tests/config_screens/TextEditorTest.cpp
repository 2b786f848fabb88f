// The editors of library and instruction texts.

#include "config_screens/texts/wParamBiblio.h"
#include "config_screens/texts/wParamConsignes.h"
#include "model/ConfigClass.h"
#include "support/ConfigScreensFixture.h"

#include <QTextEdit>

namespace {

const QString Biblio = FormNames::wParamBiblio;
const QString Consignes = FormNames::wParamConsignes;

class TextEditorTest : public ConfigScreensTest {
protected:
    enum Image { OneUp = 2, OneDown, StepUp, StepDown, Copy, Paste, Cut, Clear, Edit, FromFile };

    static void Touch(const QString& form, int image) { Tap(form, Part("imgControl", image)); }
    static QListWidget* List(const QString& form) {
        return Screen(form)->findChild<QListWidget*>();
    }
    static QString Line(const QString& form, int number) {
        return List(form)->item(number - 1)->text();
    }
    static void GoTo(const QString& form, int number) { List(form)->setCurrentRow(number - 1); }
    void Edits(const QString& form, const QString& text) {
        Type(text);
        Touch(form, Edit);
    }
    void Leave(const QString& form, int reply) {
        answer = reply;
        Tap(form, "imgNavig_0");
        RemoveUnloaded();
    }
};

} // namespace

TEST(TextLines, AreOneLineOfTheHead) {
    EXPECT_EQ(FormatBiblio(7, "  Pump\r\n1  "), "07 - Pump¶1");
    EXPECT_EQ(FormatBiblio(64, QString(24, QChar())), "64 - ");
    EXPECT_EQ(FormateConsigne(3, "Call\r\nthe\nman"), "03 - Call the man");
    const QString cut = QString(63, u'W') + QStringLiteral("\r\nmore");
    EXPECT_EQ(FormateConsigne(1, cut), QStringLiteral("01 - ") + QString(63, u'W') + u' ');
}

TEST_F(TextEditorTest, StepsStopAtTheEnds) {
    for (const auto& [form, entries, step] :
         {std::tuple(Biblio, 64, 19), std::tuple(Consignes, 48, 8)}) {
        Forms::Show(form);
        EXPECT_EQ(List(form)->count(), entries);
        Touch(form, StepDown);
        EXPECT_EQ(TextOf(form, "lblNumero"), QString::number(1 + step));
        Touch(form, OneUp);
        Touch(form, StepUp);
        EXPECT_EQ(TextOf(form, "lblNumero"), "1");
    }
}

TEST_F(TextEditorTest, AYesReachesTheSiteAndItsFile) {
    Site().setBiblio(2, " two");
    Site().setModified(false);
    Forms::Show(Biblio);
    Touch(Biblio, Paste);
    EXPECT_EQ(Line(Biblio, 1), "01 - ") << "nothing was copied";
    GoTo(Biblio, 2);
    Touch(Biblio, Cut);
    GoTo(Biblio, 64);
    Touch(Biblio, Paste);
    EXPECT_EQ(Line(Biblio, 64), "64 - two");
    Edits(Biblio, "Pump €");
    EXPECT_EQ(Line(Biblio, 64), "64 - Pump €");
    Touch(Biblio, Copy);
    GoTo(Biblio, 3);
    Touch(Biblio, Paste);
    EXPECT_EQ(Site().BiblioText(3), QString()) << "no word before the question";
    for (const int none : {Messages::Cancel, Messages::Closed}) {
        Leave(Biblio, none);
        EXPECT_NE(Screen(Biblio), nullptr);
    }
    Leave(Biblio, Messages::Yes);
    EXPECT_EQ(Site().Biblio(64), QStringLiteral("Pump €").leftJustified(24));
    EXPECT_EQ(Site().Biblio(1), QString(24, QChar())) << "what nobody touched keeps its bytes";
    ConfigClass saved;
    ASSERT_EQ(saved.Read(CurrentConfigFile()), ConfigClass::ReadDone);
    EXPECT_EQ(saved.BiblioText(2) + saved.BiblioText(3), "Pump €");
    EXPECT_NE(Screen(FormNames::wMain), nullptr);
}

TEST_F(TextEditorTest, NothingAskedWhereNothingDiffers) {
    Site().setConsigne(2, "text");
    Forms::Show(Consignes);
    Edits(Consignes, QString());
    GoTo(Consignes, 3);
    Touch(Consignes, Clear);
    GoTo(Consignes, 2);
    Edits(Consignes, "text   ");
    Touch(Consignes, Clear);
    Tap(Consignes, "imgCancel");
    EXPECT_EQ(Line(Consignes, 2), "02 - text");
    Leave(Consignes, Messages::Cancel);
    EXPECT_TRUE(boxes.isEmpty());
    EXPECT_EQ(Screen(Consignes), nullptr);
}

TEST_F(TextEditorTest, AnAlarmKeepsWhatWasEdited) {
    Forms::Show(Consignes);
    Edits(Consignes, "First\nSecond");
    AlarmComes();
    Forms::Show(Biblio);
    EXPECT_TRUE(Child(Biblio, "lblKept")->isHidden()) << "its twin kept nothing";
    Forms::Show(Consignes);
    EXPECT_FALSE(Child(Consignes, "lblKept")->isHidden());
    auto* whole = Find<QTextEdit>(Consignes, "txtConsigne");
    EXPECT_EQ(whole->toPlainText(), "First\nSecond");
    Tap(Consignes, "imgCancel");
    EXPECT_TRUE(Child(Consignes, "lblKept")->isHidden());
    EXPECT_TRUE(whole->toPlainText().isEmpty());
}

TEST_F(TextEditorTest, ImportTakesTheHeadOfAFile) {
    WriteFile("long.txt", QByteArray("\x80 1\r\n") + QByteArray(1995, 'W'));
    WriteFile("unicode.txt", "Maßnahme ł" + QByteArray(4081, ' ') + "ßß");
    Forms::Show(Consignes);
    const auto* whole = Find<QTextEdit>(Consignes, "txtConsigne");
    TakeFile("unicode.txt");
    Touch(Consignes, FromFile);
    EXPECT_EQ(whole->toPlainText(), "Maßnahme ?");
    TakeFile("long.txt");
    Touch(Consignes, FromFile);
    EXPECT_EQ(whole->toPlainText(), QStringLiteral("€ 1\n") + QString(1019, u'W'));
    EXPECT_EQ(IniRead("Files", "Import", QString()),
              QDir::cleanPath(Global::InApplicationFolder(QString())));
    Leave(Consignes, Messages::Yes);
    EXPECT_EQ(Site().Consigne(1), QStringLiteral("€ 1\r\n") + QString(1019, u'W'));
    EXPECT_EQ(boxes, QStringList{GetText(30010)});
}
