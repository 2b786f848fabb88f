// The alarm report in words: figures, lists, the file for a spreadsheet and the printed lines, out
// of history files.

#include "events/ReportText.h"

#include "events/HistoProcs.h"
#include "model/Models.h"
#include "support/Bench.h"
#include "support/HistoryWriter.h"

#include <QRegularExpression>

namespace {

using Unit = AlarmPeriod::Unit;

class AlarmTablesTest : public Bench {
protected:
    AlarmTablesTest() {
        PanelClass& panel = AddPanel(12, Models::Q7100);
        Site().setBiblio(3, "Überdruck");
        panel.Channel(7).setBibNum(3);
        panel.Channel(7).setScreenText("Kessel; \"Nord\"");
        AddPanel(2, Models::Q7000);
        HistoryWriter history;
        history.PutAlarm(2, 9, noon - qint64(3) * 86400, 60, -1);
        for (qint64 i = 0; i < 12; ++i)
            history.PutAlarm(12, 7, noon - 7200 + i * 15, 20, 5);
        history.PutAlarm(12, 8, noon - 3600, 130, 600);
        history.Put({2, 255, 1, 0}, noon - 1800);
    }
    AlarmTables Reckon(Unit unit = Unit::Day, int daysAgo = 0) {
        const AlarmPeriod period = AlarmPeriod(unit, noon).Next(-daysAgo);
        AlarmReport report(period);
        records.Begin(AlarmReport::ReadFrom(period), AlarmReport::ReadTo(period));
        while (!records.Step(0)) {
        }
        for (const HistoryRecord& record : records.Records())
            report.Take(record);
        report.Finish(noon);
        return {report, records};
    }
    static QString Figure(const AlarmTables& tables, int text) {
        for (const ReportFigure& figure : tables.Figures())
            if (figure.name == GetText(text, true).replace(u'|', u' '))
                return figure.value + (figure.isExceeded ? " !" : "");
        return "none";
    }

    const qint64 noon = AlarmPeriod::SecondsOf({{2024, 3, 15}, {12, 0}});
    HistoryRecords records;
};

} // namespace

TEST_F(AlarmTablesTest, FiguresAndListsOfADay) {
    const AlarmTables tables = Reckon();
    EXPECT_EQ(tables.Period(), "Friday 2024-03-15");
    EXPECT_EQ(Figure(tables, 715030), "14");
    EXPECT_EQ(Figure(tables, 715031), "28.0");
    EXPECT_EQ(Figure(tables, 715033), "12 (10:00)");
    EXPECT_EQ(Figure(tables, 715035), "12 !");
    EXPECT_EQ(Figure(tables, 715025), "1 (0:11:45)") << "until four are left of ten minutes";
    EXPECT_EQ(Figure(tables, 715036), "0:00:05");
    EXPECT_EQ(Figure(tables, 715038), "0") << "the loss of a panel waits for nobody";
    EXPECT_EQ(Figure(tables, 715041), "none");
    WriteFile("Histo202402.his", "torn\r\n");
    EXPECT_EQ(Figure(Reckon(), 715041), "1");
    EXPECT_EQ(tables.ByPart().alarms[11], 2);
    EXPECT_EQ(tables.ByPart().acceptable[11], 6.25);
    const QString words = "Überdruck Kessel; \"Nord\"";
    EXPECT_EQ(tables.BadActors().rows.first(), QStringList({"P12-C07", "12", "85.7", words}));
    EXPECT_EQ(tables.Nuisance().rows,
              QList<QStringList>({{"P12-C07", "12", "12", "1", "12", words}}));
    ASSERT_EQ(tables.Stale().rows.size(), 1);
    EXPECT_EQ(tables.Stale().rows[0].mid(0, 4),
              QStringList({"P02-C09", "2024-03-12 12:00:00", "still standing", "72:00:00"}));
    EXPECT_EQ(Reckon(Unit::Day, 2).Stale().rows[0].mid(2, 2),
              QStringList({"> 2024-03-15 00:00:00", "> 60:00:00"}))
        << "what became of it later isn't looked for";
    ASSERT_EQ(tables.Floods().rows.size(), 1);
    EXPECT_EQ(tables.Floods().rows[0][0], "2024-03-15 10:00:00");
}

TEST_F(AlarmTablesTest, EveryPeriodHasWordsInEveryLanguage) {
    const QStringList months = {"March 2024", "mars 2024", "März 2024", "marzo 2024"};
    for (qint16 language = 0; language < 4; ++language) {
        Global::Get().language = language;
        for (const Unit unit : {Unit::Hour, Unit::Day, Unit::Week, Unit::Month, Unit::Year}) {
            const AlarmTables tables = Reckon(unit);
            const QByteArray csv = ReportText::Csv(tables.All());
            EXPECT_FALSE(QString(csv).contains(QRegularExpression("#\\d+#|[$|]"))) << csv.data();
            EXPECT_LE(tables.Figures().size(), 12) << "the screen has so many places";
            EXPECT_EQ(tables.ByPart().names.size(), tables.ByPart().most.size());
        }
        EXPECT_EQ(Reckon(Unit::Month).Period(), months[language]);
        EXPECT_EQ(Reckon().BadActors().rows.first()[2], language == 0 ? "85.7" : "85,7");
    }
    Global::Get().language = 0;
    EXPECT_EQ(Reckon(Unit::Week).Period(), "Week 11, from 2024-03-11");
    EXPECT_EQ(Reckon(Unit::Hour).Period(), "2024-03-15  12:00 - 13:00");
}

TEST_F(AlarmTablesTest, FileForASpreadsheet) {
    const QByteArray csv = ReportText::Csv(Reckon().All());
    EXPECT_TRUE(csv.startsWith("\xEF\xBB\xBF"
                               "Alarm report - Friday 2024-03-15\r\nFigure;Value;Limit\r\n"
                               "Alarms;14;\r\n"))
        << csv.data();
    EXPECT_TRUE(csv.contains("P12-C07;12;85.7;\"Überdruck Kessel; \"\"Nord\"\"\"\r\n"));
    {
        HistoryWriter history;
        for (int i = 0; i < 600; ++i)
            history.Put({12, 8, 0, 1}, noon - 1);
    }
    EXPECT_TRUE(ReportText::Csv(Reckon().All()).contains(";1228.0;")) << "no thousands divided";
    const ReportTable formula{"t", {{"a", 1, false}}, {{"=1+1"}, {"-"}, {"two\nlines"}}};
    EXPECT_EQ(ReportText::Csv({formula}).mid(3), "t\r\na\r\n'=1+1\r\n-\r\n\"two\nlines\"\r\n\r\n");
}

/// Each that is listed is looked up in its file, in one go.
TEST_F(AlarmTablesTest, ListsHaveAnEnd) {
    const AlarmPeriod year(Unit::Year, noon);
    AlarmReport report(year);
    for (int i = 0; i < 1400; ++i) {
        const quint8 panel = 1 + i % 64;
        const quint8 channel = 1 + i / 64;
        report.Take({year.Begin() + i, 0, 0, 0, panel, channel, EventKind::Active, true, false});
    }
    report.Finish(noon);
    const AlarmTables tables(report, records);
    EXPECT_EQ(tables.Stale().rows.size(), 1000);
    EXPECT_EQ(tables.Stale().more, 400);
    EXPECT_EQ(Figure(tables, 715024), "1400");
}

TEST_F(AlarmTablesTest, PrintedInTheWidthOfThePaper) {
    Site().setPrinterInitString(0, "1B 40");
    Site().setPrintMaxLen(60);
    EXPECT_EQ(HistoProcs::PlainLineWidth(), 58);
    EXPECT_EQ(platform::ToCodePage(HistoProcs::PlainLine("é")), "\x1B@\x82");
    for (const int width : {20, 58, 130}) {
        const QStringList lines = ReportText::Lines(Reckon().All(), width);
        for (const QString& line : lines)
            EXPECT_LE(line.size(), width) << line.toStdString();
        EXPECT_GT(lines.size(), 70);
    }
    const QStringList lines = ReportText::Lines(Reckon().All(), 58);
    EXPECT_TRUE(lines.contains("P12-C07      12     85.7  Überdruck Kessel; \"Nord\""))
        << lines.join('\n').toStdString();
    ReportTable many{"many", {{"a", 1, false}, {"b", 1, true}}, {}};
    for (int i = 0; i < 60; ++i)
        many.rows += {QString::number(i), "x"};
    const QStringList cut = ReportText::Lines({many}, 40);
    EXPECT_EQ(cut.size(), 4 + ReportText::PrintedRows + 2);
    EXPECT_EQ(cut[cut.size() - 2], "and 10 more");
    many.more = 100;
    EXPECT_EQ(ReportText::Lines({many}, 40).at(cut.size() - 2), "and 110 more");
    EXPECT_TRUE(ReportText::Csv({many}).endsWith("59;x\r\nand 100 more\r\n\r\n"));
}
