// The operator's help: which page is shown, turning it by touch, and the pages themselves.

#include "screens/dialogs/HelpText.h"
#include "screens/dialogs/wHelp.h"
#include "support/ScreensFixture.h"

#include <QDirIterator>
#include <QRegularExpression>
#include <QScrollBar>
#include <QTextBlock>
#include <QTextBrowser>

namespace {

const QString Help = "wHelp";
const QString Console = "wRunAlarms";
constexpr const char* Languages[] = {"en", "fr", "de", "es"};
const QString Pages = QStringLiteral(KORVANELLE_SOURCE_DIR "/data/help/korvanelle-%1.html");

class HelpTest : public ScreensTest {
protected:
    void Provide(const char* language) {
        const QString letters = language;
        ASSERT_TRUE(QFile::copy(Pages.arg(letters),
                                Path(QStringLiteral("korvanelle-%1.html").arg(letters))));
    }
    static QTextBrowser& Page() { return *Find<QTextBrowser>(Help, "txtHelp"); }
    static int Place() { return Page().verticalScrollBar()->value(); }
    static QString ChapterShown() {
        return Page().cursorForPosition(QPoint(30, 30)).block().text();
    }
    static QString Content(const char* language) { return HelpText::Read(Pages.arg(language)); }
};

QStringList All(const QString& text, const QString& pattern) {
    QStringList found;
    auto matches = QRegularExpression(pattern).globalMatch(text);
    while (matches.hasNext())
        found += matches.next().captured(1);
    return found;
}

/// What the help must name of each design, as its source names it, by the design.
QHash<QString, QStringList> ButtonsOfDesigns() {
    QHash<QString, QStringList> designs;
    QDirIterator files(QStringLiteral(KORVANELLE_SOURCE_DIR "/src"), {"*.ui"}, QDir::Files,
                       QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QString design = HelpText::Read(files.next());
        QStringList& buttons = designs[files.fileInfo().completeBaseName()];
        for (const QString& control :
             design.split("<widget ")
                 .filter(QRegularExpression("^class=\"(TouchImage|QPushButton)"))) {
            const auto named = [&](const QString& property) {
                return All(control, "name=\"" + property + "\"[^>]*>\\s*<string[^>]*>(\\w+)<");
            };
            for (const QString& name : (named("Tag") + named("picture")).mid(0, 1))
                buttons += QStringLiteral("{{%1}}").arg(name);
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
    // The page that lies beside the help file found counts before that of the language.
    const std::tuple<int, QString, const char*> cases[] = {
        {0, {}, "en"}, {1, {}, "fr"}, {2, {}, "en"}, {0, "fr", "fr"}, {0, "es", "en"}};
    for (const auto& [language, found, page] : cases) {
        Global::Get().language = qint16(language);
        Global::Get().helpFile = found.isEmpty() ? found : Path("korvanelle-" + found + ".chm");
        EXPECT_EQ(HelpPage(), Path(QStringLiteral("korvanelle-%1.html").arg(page))) << language;
    }
}

TEST_F(HelpTest, PageIsTurnedByTouchAndTheWayBackIsKept) {
    Provide("en");
    Forms::Show(Console);
    ASSERT_TRUE(QTest::qWaitForWindowActive(Screen(Console)));
    ShowHelp();
    QApplication::processEvents();
    const int page = Page().verticalScrollBar()->pageStep();
    EXPECT_GT(Place(), page);
    Tap(Help, "imgNavig_0");
    Tap(Help, "imgControl_7");
    EXPECT_EQ(Place(), page);
    Tap(Help, "imgControl_6");
    const int line = Place() - page;
    EXPECT_TRUE(line > 20 && line < page / 3) << line;
    for (const char* control : {"imgControl_5", "imgControl_4", "imgControl_7", "imgNavig_0"})
        Tap(Help, control);
    EXPECT_EQ(Place(), 0);

    const QWidget* back = Child(Help, "imgNavig_1");
    EXPECT_FALSE(back->isEnabled());
    // The place of a line is looked for by its words, and touched far right of them.
    const QTextCursor title = Page().document()->find("The horn sounds");
    const QPoint place(Page().viewport()->width() - 20, Page().cursorRect(title).center().y() + 15);
    QTest::mouseClick(Page().viewport(), Qt::LeftButton, {}, place);
    EXPECT_GT(Place(), page) << "a touch anywhere on the line of a link follows it";
    ASSERT_TRUE(back->isEnabled());
    Tap(Help, "imgNavig_1");
    EXPECT_EQ(Place(), 0);
    EXPECT_FALSE(back->isEnabled());
}

TEST_F(HelpTest, IsTurnedAboveAFormThatWaits) {
    Provide("en");
    Forms::Show(Console);
    ScreenForm& waiting = *dynamic_cast<ScreenForm*>(Forms::Load(FormNames::dlgConsigne));
    QTimer::singleShot(0, [&] {
        EXPECT_TRUE(QTest::qWaitForWindowActive(&waiting));
        ShowHelp();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(Screen(Help)));
        // By the window system, which lets nothing through to a window below a modal one.
        QTest::mouseClick(Screen(Help)->windowHandle(), Qt::LeftButton, {},
                          Child(Help, "imgClose")->geometry().center());
        EXPECT_EQ(NbInstances(Help), 0);
        EXPECT_TRUE(waiting.isVisible());
        Forms::Unload(Help);
        waiting.Hide();
    });
    waiting.ShowModal();
}

TEST_F(HelpTest, OpensAtTheChapterOfItsScreenAndGivesWayToAnAlarm) {
    Provide("en");
    const auto opens = [](ScreenForm* opener, const char* chapter) {
        ASSERT_TRUE(QTest::qWaitForWindowActive(opener));
        ShowHelp();
        QApplication::processEvents();
        EXPECT_EQ(ChapterShown(), chapter);
    };
    {
        ScreenForm opener("wBusPanneau");
        opener.Show();
        opens(&opener, "A panel and its channels");
        Tap(Help, "imgClose");
        EXPECT_EQ(NbInstances(Help), 0);
    }
    Forms::Show(Console);
    opens(Screen(Console), "The alarm screen");
    EventClass lost(1, 255, 1, 0);
    engine->SendEvent(lost);
    EXPECT_EQ(NbInstances(Help), 0);
    EXPECT_TRUE(QTest::qWaitForWindowActive(Screen(Console)));
}

// Every design has its chapter; there, or among the buttons that many screens have, stand the word
// of each of its buttons, or its picture when it has no word.
TEST_F(HelpTest, EveryLinkScreenAndButtonIsInEachLanguage) {
    const QStringList sections = All(Content("en"), "<a name=\"(\\w+)\">");
    const QHash<QString, QStringList> designs = ButtonsOfDesigns();
    ASSERT_GT(designs.size(), 30);
    for (qint16 language = 0; language < 4; ++language) {
        SCOPED_TRACE(Languages[language]);
        Global::Get().language = language;
        const QString page = HelpText::Filled(Content(Languages[language]));
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

        QHash<QString, QString> chapters;
        for (const QString& part : page.split("<h2>"))
            for (const QString& anchor : All(part, "<a name=\"(\\w+)\">"))
                chapters.insert(anchor, part);
        for (auto design = designs.begin(); design != designs.end(); ++design) {
            ASSERT_TRUE(chapters.contains(design.key())) << qPrintable(design.key());
            const QString text = chapters[design.key()] + chapters["common"];
            for (const QString& button : design.value())
                EXPECT_TRUE(text.contains(HelpText::Filled(button)))
                    << qPrintable(design.key() + u' ' + button);
        }
    }
}
