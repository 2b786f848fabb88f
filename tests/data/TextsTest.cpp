// The words of the language base: every text that the program asks for is there in every language,
// in the form that the asking place needs.

#include "BaseReader.h"

#include <QDirIterator>
#include <QFile>
#include <QRegularExpression>
#include <QSet>
#include <gtest/gtest.h>

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
const QString Number = "\\s*(?:Q\\w+\\(\\s*)?(?:u?\")?(\\d{5,6})\\b";

/// Numbers of texts in a C++ source: handed to a look-up of words, given as a control's Tag, or
/// named by a constant.
QSet<int> TextNumbersOfCode(const QString& source) {
    return Numbers(source, QStringLiteral("\\b(?:GetText|Text|ShowText|Message)\\(") + Number) +
           Numbers(source, QStringLiteral("(?:\\bsetTag\\(|\"Tag\"\\)?,|\\bTag\\w*\\()") + Number) +
           Numbers(source, QStringLiteral("\\b\\w*Text\\w*\\s*=") + Number);
}

TEST(Texts, EveryNumberUsedByTheProgramHasWords) {
    const auto config = BaseTable("T_Config").ReadAll();
    QSet<int> used, usedByForms, usedConfig;
    QDirIterator files(QStringLiteral(KORVANELLE_SOURCE_DIR "/src"), {"*.cpp", "*.h", "*.ui"},
                       QDir::Files, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        QFile file(files.next());
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        const QString source = QString::fromUtf8(file.readAll());
        const std::string name = files.fileName().toStdString();
        const bool isForm = files.fileName().endsWith(QLatin1String(".ui"));
        const QSet<int> texts =
            isForm ? Numbers(source, "<property name=\"Tag\"[^>]*>\\s*<\\w+[^>]*>(\\d+)<")
                   : TextNumbersOfCode(source);
        for (const int id : texts)
            EXPECT_TRUE(BaseTexts().words.contains(id)) << name << " uses text " << id;
        (isForm ? usedByForms : used) += texts;
        for (const int id : Numbers(source, "\\bGetConfig\\(" + Number)) {
            EXPECT_TRUE(config.contains(id)) << name << " uses the default " << id;
            usedConfig += id;
        }
    }
    // Numbers of each way of asking are found.
    EXPECT_GT(used.size(), 50);
    EXPECT_GT(usedByForms.size(), 200);
    EXPECT_GE(usedConfig.size(), 2);
}

// What the program reckons by an offset or gets as a result, and what stands in fixed columns.
TEST(Texts, NumbersReckonedByTheProgramHaveWordsThatFit) {
    constexpr int AnyLength = 1000;
    const struct {
        int first;
        int last;
        int columns;
    } runs[] = {
        {10001, 10007, AnyLength},   {20001, 20006, AnyLength},   {20008, 20011, AnyLength},
        {51000, 51001, 6}, // the parameter of the trace
        {51010, 51014, 15},          {51020, 51023, 15},          {51031, 51032, 15},
        {51033, 51034, 26},          {51035, 51036, 40},          {51037, 51038, 11},
        {51039, 51039, 15},          {51041, 51041, 11},          {51047, 51047, 15},
        {51048, 51048, 11},          {51049, 51051, 26},          {51060, 51062, 15},
        {51063, 51063, 11},          {51064, 51064, 26},          {850130, 850134, 40},
        {100020, 100023, AnyLength}, {300120, 300121, AnyLength}, {300130, 300131, AnyLength},
        {300310, 300313, AnyLength}, {430120, 430129, AnyLength}, {510300, 510302, AnyLength},
        {610001, 610006, 22},        {640100, 640101, AnyLength}, {710001, 710005, 16},
        {720002, 720012, 16},        {830101, 830103, AnyLength}};
    for (const auto& [first, last, columns] : runs) {
        for (int id = first; id <= last; ++id) {
            for (const QString& words : Words(id)) {
                for (const QString& part : words.split(u'|'))
                    EXPECT_LE(part.size(), columns) << id << ": " << part.toStdString();
            }
        }
    }
}

// All languages have as many marks: the build sees to that.
TEST(Texts, MarksStandWhereTheProgramFillsAndParts) {
    const struct {
        int id;
        char mark;
        int count;
    } texts[] = {{20008, '$', 1}, {20011, '$', 1}, {30006, '$', 3}, {50001, '$', 2},
                 {50001, '|', 1}, {50004, '|', 3}, {51011, '|', 1}};
    for (const auto& [id, mark, count] : texts)
        EXPECT_EQ(Words(id).value(0).count(QLatin1Char(mark)), count) << id << mark;
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
        EXPECT_FALSE(unnamed.contains(QRegularExpression("[\\\\/.:]")))
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
