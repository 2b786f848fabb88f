// The operator's help: which page is shown, turning it by touch, and the pages themselves.

#include "core/Config.h"
#include "screens/dialogs/HelpText.h"
#include "screens/dialogs/wHelp.h"
#include "screens/touch/Theme.h"
#include "support/ScreensFixture.h"

#include <QDirIterator>
#include <QRegularExpression>
#include <QScrollBar>
#include <QTextBlock>
#include <QTextBrowser>

namespace {

const QString Help = QStringLiteral("wHelp");
const QString Console = QStringLiteral("wRunAlarms");
constexpr const char* Languages[] = {"en", "fr", "de", "es"};
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
    static QString ChapterShown() {
        return Page().cursorForPosition(QPoint(30, 30)).block().text();
    }
    static QString Content(const char* language) {
        return HelpText::Read(Pages.arg(QString::fromLatin1(language)));
    }
};

QStringList All(const QString& text, const char* pattern) {
    QStringList found;
    auto matches = QRegularExpression(QString::fromLatin1(pattern)).globalMatch(text);
    while (matches.hasNext())
        found += matches.next().captured(1);
    return found;
}

/// What the help must name of each design, as its source names it, by the design.
QHash<QString, QStringList> ButtonsOfDesigns() {
    QHash<QString, QStringList> designs;
    QDirIterator files(QStringLiteral(KORVANELLE_SOURCE_DIR "/src"), {QStringLiteral("*.ui")},
                       QDir::Files, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QString design = HelpText::Read(files.next());
        QStringList& buttons = designs[files.fileInfo().completeBaseName()];
        for (const QString& control : design.split(QStringLiteral("<widget "))) {
            if (!control.startsWith(QLatin1String("class=\"TouchImage\"")) &&
                !control.startsWith(QLatin1String("class=\"QPushButton\"")))
                continue;
            const QStringList names =
                All(control, "name=\"Tag\"[^>]*>\\s*<string[^>]*>(\\w+)<") +
                All(control, "name=\"picture\"[^>]*>\\s*<string[^>]*>(\\w+)<");
            if (!names.isEmpty())
                buttons += QStringLiteral("{{%1}}").arg(names.first());
        }
    }
    return designs;
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
    Forms::Show(Console);
    ASSERT_TRUE(QTest::qWaitForWindowActive(Screen(Console)));
    ShowHelp();
    ASSERT_EQ(NbInstances(Help), 1);
    QApplication::processEvents();
    const int page = Page().verticalScrollBar()->pageStep();
    EXPECT_GT(Place(), page);
    Tap(Help, QStringLiteral("imgNavig_0"));
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
    EXPECT_TRUE(QTest::qWaitForWindowActive(Screen(Console)));
}

TEST_F(HelpTest, OpensAtTheChapterOfItsScreen) {
    Provide("en");
    ScreenForm opener(QStringLiteral("wBusPanneau"));
    opener.Show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&opener));
    ShowHelp();
    QApplication::processEvents();
    EXPECT_EQ(ChapterShown(), QStringLiteral("A panel and its channels"));
}

TEST_F(HelpTest, OpensOverTheConsoleAndGivesWayToAnAlarm) {
    Provide("en");
    Forms::Show(Console);
    ASSERT_TRUE(QTest::qWaitForWindowActive(Screen(Console)));
    Tap(Console, QStringLiteral("imgHelp"));
    QApplication::processEvents();
    EXPECT_EQ(ChapterShown(), QStringLiteral("The alarm screen"));
    EventClass lost(1, 255, 1, 0);
    engine->SendEvent(lost);
    EXPECT_EQ(NbInstances(Help), 0);
    EXPECT_TRUE(QTest::qWaitForWindowActive(Screen(Console)));
}

TEST_F(HelpTest, PagesHaveTheSameSectionsAndEveryLinkLeadsToOne) {
    const QStringList sections = All(Content("en"), "<a name=\"(\\w+)\">");
    for (const char* language : Languages) {
        SCOPED_TRACE(language);
        const QString page = HelpText::Filled(Content(language));
        EXPECT_EQ(All(page, "<a name=\"(\\w+)\">"), sections);
        EXPECT_EQ(All(page, "(#\\d+#|[{}])"), QStringList()) << "a word that isn't there";
        const QStringList links = All(page, "href=\"#(\\w+)\"");
        EXPECT_EQ(links.size(), All(page, "(href=)").size()) << "no link leads out of the page";
        EXPECT_EQ(links.size(), All(page, "(<h2>)").size());
        for (const QString& goal : links)
            EXPECT_TRUE(sections.contains(goal)) << qPrintable(goal);
        for (const QString& picture : All(page, "src=\"(pictures/[^\"]+)\""))
            EXPECT_TRUE(QFileInfo::exists(Pages.section(u'/', 0, -2) + u'/' + picture))
                << qPrintable(picture);
        for (const QString& name : All(page, "src=\"picture:(\\w+)\""))
            EXPECT_FALSE(Theme::Picture(name, 16).isNull()) << qPrintable(name);
    }
}

// Every design has its chapter; there, or among the buttons that many screens have, stand the word
// of each of its buttons, or its picture when it has no word.
TEST_F(HelpTest, EveryScreenAndEveryButtonIsInEachLanguage) {
    const QHash<QString, QStringList> designs = ButtonsOfDesigns();
    ASSERT_GT(designs.size(), 30);
    for (qint16 language = 0; language < 4; ++language) {
        Global::Get().language = language;
        QHash<QString, QString> chapters;
        const QString page = HelpText::Filled(Content(Languages[language]));
        for (const QString& part : page.split(QStringLiteral("<h2>")))
            for (const QString& anchor : All(part, "<a name=\"(\\w+)\">"))
                chapters.insert(anchor, part);
        for (auto design = designs.begin(); design != designs.end(); ++design) {
            SCOPED_TRACE((Languages[language] + (' ' + design.key())).toStdString());
            ASSERT_TRUE(chapters.contains(design.key()));
            const QString text = chapters[design.key()] + chapters[QStringLiteral("common")];
            for (const QString& button : design.value())
                EXPECT_TRUE(text.contains(HelpText::Filled(button))) << qPrintable(button);
        }
    }
}
