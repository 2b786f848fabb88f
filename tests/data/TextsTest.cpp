// The words of the language base: every text that the program asks for is there in every language,
// in the form that the asking place needs.

#include "BaseReader.h"

#include <QDirIterator>
#include <QFile>
#include <QRegularExpression>
#include <QSet>
#include <gtest/gtest.h>

using base_test::BaseTexts;

namespace {

/// The words of `id` in every language; fails the test when the base lacks it.
QStringList Words(int id) {
    QStringList words = BaseTexts().words.value(id);
    EXPECT_EQ(words.size(), BaseTexts().languages.size()) << "text " << id;
    return words;
}

QSet<int> Numbers(const QString& source, const QString& pattern) {
    QSet<int> numbers;
    const QRegularExpression expression(pattern, QRegularExpression::DotMatchesEverythingOption);
    auto matches = expression.globalMatch(source);
    while (matches.hasNext()) {
        numbers.insert(matches.next().captured(1).toInt());
    }
    return numbers;
}

// A number as it stands in a call: plain, or as a string in one of its wrappings.
const QString Number = QStringLiteral("\\s*(?:Q\\w+\\(\\s*)?(?:u?\")?(\\d{5,6})\\b");

/// Numbers of texts in a C++ source: handed to a look-up of words, given as a control's Tag, or
/// named by a constant.
QSet<int> TextNumbersOfCode(const QString& source) {
    return Numbers(source, QStringLiteral("\\b(?:GetText|Text|ShowText|Message)\\(") + Number) +
           Numbers(source, QStringLiteral("(?:\\bsetTag\\(|\"Tag\"\\)?,|\\bTag\\w*\\()") + Number) +
           Numbers(source, QStringLiteral("\\b\\w*Text\\w*\\s*=") + Number);
}

/// Numbers of texts in a designed form.
QSet<int> TextNumbersOfForm(const QString& source) {
    return Numbers(source, QStringLiteral("<property name=\"Tag\"[^>]*>\\s*<\\w+[^>]*>(\\d+)<"));
}

QSet<int> ConfigNumbersOfCode(const QString& source) {
    return Numbers(source, QStringLiteral("\\bGetConfig\\(") + Number);
}

TEST(Texts, SourcesAreSearchedForTheirNumbers) {
    const QString code = QStringLiteral(
        "x = GetText(QStringLiteral(\"20008\"), false); Message(GetText(30010), 35);\n"
        "Config::GetText( \"50011\" ); label->setProperty(\"Tag\", 710001);\n"
        "button->setTag(u\"710002\"_s); constexpr int NoInstructionText = 710021;\n"
        "width = 10000; GetConfig(QStringLiteral(\"100110\"));");
    EXPECT_EQ(TextNumbersOfCode(code), QSet<int>({20008, 30010, 50011, 710001, 710002, 710021}));
    EXPECT_EQ(ConfigNumbersOfCode(code), QSet<int>({100110}));
    const QString form = QStringLiteral(
        "<property name=\"Tag\" stdset=\"0\">\n <string notr=\"true\">610001</string>\n</property>"
        "<property name=\"text\"><string>99999</string></property>"
        "<property name=\"Tag\"><number>610002</number></property>");
    EXPECT_EQ(TextNumbersOfForm(form), QSet<int>({610001, 610002}));
}

TEST(Texts, EveryNumberUsedByTheProgramHasWords) {
    base_test::BaseReader base(base_test::BasePath());
    QSet<int> config;
    for (const QVariantList& row : base.Query(QStringLiteral("SELECT ID FROM T_Config"))) {
        config.insert(row[0].toInt());
    }
    QDirIterator files(QStringLiteral(KORVANELLE_SOURCE_DIR "/src"),
                       {QStringLiteral("*.cpp"), QStringLiteral("*.h"), QStringLiteral("*.ui")},
                       QDir::Files, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        QFile file(files.next());
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        const QString source = QString::fromUtf8(file.readAll());
        const std::string name = files.fileName().toStdString();
        const bool isForm = files.fileName().endsWith(QLatin1String(".ui"));
        for (const int id : isForm ? TextNumbersOfForm(source) : TextNumbersOfCode(source)) {
            EXPECT_TRUE(BaseTexts().words.contains(id)) << name << " uses text " << id;
        }
        for (const int id : ConfigNumbersOfCode(source)) {
            EXPECT_TRUE(config.contains(id)) << name << " uses the default " << id;
        }
    }
}

TEST(Texts, NumbersReckonedByTheProgramHaveWords) {
    // First and last number of each run that the program adds an offset to, or gets as a result.
    const QList<QPair<int, int>> runs = {
        {10001, 10007},   {20001, 20006},   {20008, 20011},   {51000, 51001},   {51010, 51014},
        {51020, 51023},   {51031, 51039},   {51041, 51041},   {51047, 51051},   {100020, 100023},
        {300120, 300121}, {300130, 300131}, {300310, 300313}, {430120, 430129}, {510300, 510302},
        {640100, 640101}, {830101, 830103}};
    for (const auto& [first, last] : runs) {
        for (int id = first; id <= last; ++id) {
            for (const QString& words : Words(id)) {
                EXPECT_FALSE(words.trimmed().isEmpty()) << "text " << id;
            }
        }
    }
}

TEST(Texts, MarksAgreeInAllLanguages) {
    const QList<QPair<int, int>> fillings = {{20008, 1}, {20011, 1}, {30006, 3}, {50001, 2}};
    for (const auto& [id, count] : fillings) {
        EXPECT_EQ(Words(id).value(0).count(u'$'), count) << "text " << id;
    }
    const QList<QPair<int, int>> bars = {{50001, 1}, {50004, 3}, {51011, 1}};
    for (const auto& [id, count] : bars) {
        EXPECT_EQ(Words(id).value(0).count(u'|'), count) << "text " << id;
    }
    for (auto text = BaseTexts().words.begin(); text != BaseTexts().words.end(); ++text) {
        for (const QString& words : text.value()) {
            EXPECT_EQ(words.count(u'$'), text.value()[0].count(u'$')) << "text " << text.key();
            EXPECT_EQ(words.count(u'|'), text.value()[0].count(u'|')) << "text " << text.key();
        }
    }
}

TEST(Texts, FixedColumnsHoldTheirWords) {
    struct Field {
        int first;
        int last;
        int columns;
    };
    const QList<Field> fields = {{51000, 51001, 11},   {51010, 51014, 15},   {51020, 51023, 15},
                                 {51031, 51032, 15},   {51033, 51034, 26},   {51035, 51036, 40},
                                 {51037, 51038, 11},   {51039, 51039, 15},   {51041, 51041, 11},
                                 {51047, 51047, 15},   {51048, 51048, 11},   {51049, 51051, 26},
                                 {610001, 610006, 22}, {710001, 710005, 16}, {720002, 720012, 16}};
    for (const Field& field : fields) {
        for (int id = field.first; id <= field.last; ++id) {
            for (const QString& words : Words(id)) {
                for (const QString& part : words.split(u'|')) {
                    EXPECT_LE(part.size(), field.columns) << id << ": " << part.toStdString();
                }
            }
        }
    }
    // The trace has six columns for the parameter.
    for (const QString& words : Words(51000) + Words(51001)) {
        EXPECT_LE(words.size(), 6) << words.toStdString();
    }
}

TEST(Texts, WordsTakenApartByTheProgramKeepTheirForm) {
    for (const QString& marks : Words(50011)) {
        EXPECT_EQ(marks.size(), 2) << "mark of a panel, mark of a channel";
        EXPECT_NE(marks[0], marks[1]);
    }
    for (const QString& kinds : Words(50012)) {
        EXPECT_EQ(kinds.size(), 3) << "one letter for each kind of mirror";
    }
    for (const QString& all : Words(10100) + Words(10101) + Words(510300)) {
        EXPECT_EQ(all.toInt(), 0) << "a number would name a channel or a module";
        EXPECT_FALSE(all[0].isDigit());
    }
    for (const QString& unnamed : Words(50010)) {
        EXPECT_FALSE(unnamed.contains(QRegularExpression(QStringLiteral("[\\\\/.:]"))))
            << "stands where a path is looked for";
    }
}

// A value is stored by comparing the shown word, so words of one list must differ.
TEST(Texts, WordsOfOneListDiffer) {
    const QList<QPair<int, int>> lists = {
        {10001, 10002}, {100021, 100023}, {300310, 300313}, {510300, 510302}};
    for (qsizetype language = 0; language < BaseTexts().languages.size(); ++language) {
        for (const auto& [first, last] : lists) {
            QSet<QString> words;
            for (int id = first; id <= last; ++id) {
                words.insert(Words(id).value(language));
                EXPECT_FALSE(Words(id).value(language).contains(u'|')) << "text " << id;
            }
            EXPECT_EQ(words.size(), last - first + 1) << "texts from " << first;
        }
    }
}

} // namespace
