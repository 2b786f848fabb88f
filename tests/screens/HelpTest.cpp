// The operator's help: which page is shown, turning it by touch, and the pages themselves.

#include "core/Config.h"
#include "screens/dialogs/wHelp.h"
#include "support/ScreensFixture.h"

#include <QRegularExpression>
#include <QScrollBar>
#include <QTextBlock>
#include <QTextBrowser>

namespace {

const QString Help = QStringLiteral("wHelp");
const QString Pages = QStringLiteral(KORVANELLE_SOURCE_DIR "/data/help/korvanelle-%1.html");

class HelpTest : public ScreensTest {
protected:
    void Provide(const char* language) {
        const QString letters = QString::fromLatin1(language);
        ASSERT_TRUE(QFile::copy(Pages.arg(letters),
                                Path(QStringLiteral("korvanelle-%1.html").arg(letters))));
    }
    static QTextBrowser& Page() {
        return dynamic_cast<QTextBrowser&>(*Child(Help, QStringLiteral("txtHelp")));
    }
    static int Place() { return Page().verticalScrollBar()->value(); }
    static QString Content(const char* language) {
        QFile file(Pages.arg(QString::fromLatin1(language)));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return QString::fromUtf8(file.readAll());
    }
};

QStringList All(const QString& text, const char* pattern) {
    QStringList found;
    auto matches = QRegularExpression(QString::fromLatin1(pattern)).globalMatch(text);
    while (matches.hasNext())
        found += matches.next().captured(1);
    return found;
}

} // namespace

TEST_F(HelpTest, PageOfTheLanguageElseOfTheFirstElseAWord) {
    EXPECT_EQ(HelpPage(), "");
    ShowHelp();
    EXPECT_EQ(boxes, QStringList(GetText(713001)));
    EXPECT_EQ(NbInstances(Help), 0);
    Provide("en");
    Provide("fr");
    const QString english = Path(QStringLiteral("korvanelle-en.html"));
    const QString french = Path(QStringLiteral("korvanelle-fr.html"));
    const QString pages[] = {english, french, english, english};
    for (qint16 language = 0; language < 4; ++language) {
        Global::Get().language = language;
        EXPECT_EQ(HelpPage(), pages[language]) << language;
    }
    Global::Get().language = 0;
    Global::Get().helpFile = Path(QStringLiteral("korvanelle-fr.chm"));
    EXPECT_EQ(HelpPage(), french) << "the page that lies beside the help file found";
    Global::Get().helpFile = Path(QStringLiteral("korvanelle-es.chm"));
    EXPECT_EQ(HelpPage(), english);
}

TEST_F(HelpTest, PageIsTurnedByTouchAndTheWayBackIsKept) {
    Provide("en");
    Forms::Show(QStringLiteral("wRunAlarms"));
    ASSERT_TRUE(QTest::qWaitForWindowActive(Screen(QStringLiteral("wRunAlarms"))));
    ShowHelp();
    ASSERT_EQ(NbInstances(Help), 1);
    QApplication::processEvents();
    const int page = Page().verticalScrollBar()->pageStep();
    EXPECT_GT(Page().verticalScrollBar()->maximum(), 2 * page);
    Tap(Help, QStringLiteral("imgControl_7"));
    EXPECT_EQ(Place(), page);
    Tap(Help, QStringLiteral("imgControl_6"));
    const int line = Place() - page;
    EXPECT_GT(line, 20);
    EXPECT_LT(line, page / 3);
    Tap(Help, QStringLiteral("imgControl_5"));
    Tap(Help, QStringLiteral("imgControl_4"));
    EXPECT_EQ(Place(), 0);
    Tap(Help, QStringLiteral("imgControl_7"));
    Tap(Help, QStringLiteral("imgNavig_0"));
    EXPECT_EQ(Place(), 0);

    QWidget* back = Child(Help, QStringLiteral("imgNavig_1"));
    EXPECT_FALSE(back->isEnabled());
    // The place of a line is looked for by its words, and touched far right of them.
    const QTextCursor title = Page().document()->find(QStringLiteral("The horn sounds"));
    const QPoint place(Page().viewport()->width() - 20, Page().cursorRect(title).center().y() + 15);
    QTest::mouseClick(Page().viewport(), Qt::LeftButton, {}, place);
    EXPECT_GT(Place(), page) << "a touch anywhere on the line of a link follows it";
    ASSERT_TRUE(back->isEnabled());
    Tap(Help, QStringLiteral("imgNavig_1"));
    EXPECT_EQ(Place(), 0);
    EXPECT_FALSE(back->isEnabled());

    Tap(Help, QStringLiteral("imgClose"));
    EXPECT_EQ(NbInstances(Help), 0);
    EXPECT_TRUE(QTest::qWaitForWindowActive(Screen(QStringLiteral("wRunAlarms"))));
}

TEST_F(HelpTest, OpensAtTheChapterOfItsScreen) {
    Provide("en");
    ScreenForm opener(QStringLiteral("wBusPanneau"));
    opener.Show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&opener));
    ShowHelp();
    QApplication::processEvents();
    const QTextCursor title = Page().cursorForPosition(QPoint(30, 30));
    EXPECT_EQ(title.block().text(), QStringLiteral("A panel and its channels"));
}

TEST_F(HelpTest, PagesHaveTheSameSectionsAndEveryLinkLeadsToOne) {
    const QStringList sections = All(Content("en"), "<a name=\"(\\w+)\">");
    EXPECT_GE(sections.size(), 8);
    for (const char* language : {"en", "fr"}) {
        SCOPED_TRACE(language);
        const QString page = Content(language);
        EXPECT_EQ(All(page, "<a name=\"(\\w+)\">"), sections);
        const QStringList links = All(page, "href=\"#(\\w+)\"");
        EXPECT_EQ(links.size(), All(page, "(href=)").size()) << "no link leads out of the page";
        for (const QString& section : sections)
            EXPECT_TRUE(links.contains(section)) << qPrintable(section);
        for (const QString& goal : links)
            EXPECT_TRUE(sections.contains(goal)) << qPrintable(goal);
    }
}

// The help speaks of buttons by the words that stand on them.
TEST_F(HelpTest, PagesNameTheButtonsAsTheScreensDo) {
    const int buttons[] = {710001, 710002, 710003, 710004, 710005, 710007, 710008, 710009, 710010,
                           712002, 712003, 712012, 610004, 610007, 610008, 610014, 720012, 300501,
                           300502, 300503, 300504, 300601, 300602, 300603, 300604, 300632, 300612,
                           300613, 300615, 300616, 300617, 300618, 300619, 300620, 300621, 300901,
                           400301, 400302, 400303, 400304, 400305, 400306, 400307, 430301, 430302,
                           430303, 430309, 430312, 510301, 510302, 510406, 510407, 510408, 510421,
                           510422, 630208, 630244, 630245, 630246, 630247, 630259, 630264};
    for (const auto& [language, index] : {std::pair("en", 0), std::pair("fr", 1)}) {
        Global::Get().language = qint16(index);
        const QString page = Content(language);
        for (const int id : buttons)
            EXPECT_TRUE(page.contains(GetText(id))) << language << ' ' << qPrintable(GetText(id));
    }
}
