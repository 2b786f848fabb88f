// What a filter lets through, how an alarm is followed, and what a line is in a table.

#include "events/HistorySearch.h"
#include "events/AlarmCourse.h"
#include "events/HistoProcs.h"
#include "events/HistoryCsv.h"
#include "events/HistoryState.h"
#include "model/Models.h"
#include "model/OutOfService.h"
#include "platform/CodePage.h"
#include "support/Bench.h"

namespace {

class HistorySearchTest : public Bench {
protected:
    HistorySearchTest() {
        AddPanel(1, Models::Q7100).Channel(7).setScreenText("Pompe É1");
        AddPanel(12, Models::Q7100).Channel(7).setScreenText("Vanne 3");
        filter.from = {2024, 2, 1};
        filter.to = {2024, 3, 31};
    }
    void Write(EventClass event) {
        clock.Advance(1000);
        event.setGDH(DateTimes::Now());
        HistoProcs::HistoEvent(event);
    }
    void WriteAs(const QString& user, EventClass event) {
        Global::Get().userName = user;
        Write(event);
    }
    /// February and March, a login on each side.
    void WriteTwoMonths() {
        clock.Set(2024, 2, 20);
        Write({1, 7, 0, 1});
        WriteAs("Ida", {0, 254, 0, 3});
        clock.Set(2024, 3, 15);
        Write({12, 7, 1, 3});
        Write({12, 8, 0, 1});
        WriteAs("Ole", {0, 254, 0, 3});
        WriteAs("Ole", {12, 254, 0, 0});
        Write({12, 7, 1, 1});
        Write({12, 7, 1, 0});
        Write({12, 255, 1, 0});
    }
    /// Places of the lines among all, by a filter with some of its fields set.
    std::vector<quint32> Found(const std::function<void(HistoryFilter&)>& choose = {}) {
        HistoryFilter chosen = filter;
        if (choose)
            choose(chosen);
        search.Begin(chosen);
        while (!search.Step(1000)) {
        }
        return search.Found();
    }
    std::vector<quint32> FoundWords(const QString& words) {
        return Found([&](HistoryFilter& chosen) { chosen.words = words; });
    }

    using Places = std::vector<quint32>;
    HistoryFilter filter;
    HistorySearch search;
};

/// Lines of channel 7 of panel 1 or of the panel as a whole, one a minute, of these kinds.
std::vector<HistoryRecord> Records(const std::vector<EventKind>& kinds) {
    std::vector<HistoryRecord> records;
    using enum EventKind;
    const EventKinds ofPanel{PanelLost, PanelPresent, LampsAcknowledged, Cleared};
    for (const EventKind kind : kinds) {
        HistoryRecord record{};
        record.panel = 1;
        record.channel = ofPanel.Has(kind) ? 0 : 7;
        record.kind = kind;
        record.isChange = kind == Active || kind == Normal;
        records.push_back(record);
    }
    return records;
}

} // namespace

TEST_F(HistorySearchTest, EachFieldChoosesAndAllTogether) {
    WriteTwoMonths();
    EXPECT_EQ(Found(), Places({0, 1, 2, 3, 4, 5, 6, 7, 8}));
    EXPECT_EQ(Found([](auto& f) { f.from = f.to = {2024, 2, 20}; }), Places({0, 1}));
    EXPECT_EQ(Found([](auto& f) { f.panel = 12; }), Places({2, 3, 6, 7, 8}));
    EXPECT_EQ(Found([](auto& f) { f.channel = 7; }), Places({0, 2, 6, 7}));
    EXPECT_EQ(Found([](auto& f) {
                  f.kinds = {EventKind::FirstFault, EventKind::Active};
              }),
              Places({0, 2, 3}));
    EXPECT_EQ(Found([](auto& f) { f.user = "Ole"; }), Places({4, 5}));
    EXPECT_EQ(search.Users(), QStringList({"Ida", "Ole"}));
    EXPECT_EQ(Found([](auto& f) {
                  f.panel = 12;
                  f.channel = 7;
                  f.kinds = {EventKind::Acknowledged};
                  f.words = "alarm";
              }),
              Places({6}));
    EXPECT_EQ(search.RowOf(6), 0);
    EXPECT_EQ(search.RowOf(7), -1);
    EXPECT_TRUE(platform::FromCodePage(search.Line(0)).contains("Vanne 3"));
    EXPECT_EQ(search.Line(0).size(), 138);
    Global::Get().userName = "Eva";
    Global::Get().userLevel = 1;
    OutOfService::Apply({{{1, 7}, true}});
    Write({1, 254, 7, 7});
    EXPECT_EQ(Found([](auto& f) { f.user = "Eva"; }), Places({9})) << "took it out of service";
}

TEST_F(HistorySearchTest, WordsStandAnywhereInTheLine) {
    WriteTwoMonths();
    EXPECT_EQ(FoundWords("pompe é1"), Places({0})) << "capitals don't matter";
    EXPECT_EQ(FoundWords("É1 POMPE"), Places({0})) << "nor does their order";
    EXPECT_EQ(FoundWords("pompe e1"), Places()) << "accents do";
    EXPECT_EQ(FoundWords("p12-c07 2024-03-15 vanne"), Places({2, 6, 7}));
    EXPECT_EQ(FoundWords("pompe vanne"), Places()) << "all of them in one line";
    EXPECT_EQ(FoundWords("ole"), Places({4, 5}));
    // What stands behind the columns, or on the next line, isn't of the line.
    WriteFile("Histo202402.his", QByteArray("2024-02-20 10:00:00").leftJustified(138) +
                                     "behind\r\n2024-02-20 11:00:00 next\n");
    EXPECT_EQ(FoundWords("behind"), Places());
    EXPECT_EQ(FoundWords("NEXT"), Places({1}));
}

TEST_F(HistorySearchTest, WhatWasReadIsKeptUntilTheFilesGrow) {
    WriteTwoMonths();
    search.Begin(filter);
    search.Step(0);
    EXPECT_TRUE(search.Reading());
    search.Cancel();
    while (!search.Step(1000)) {
    }
    EXPECT_EQ(search.Found(), Places({0, 1})) << "what was read is looked through";
    const Places all = Found();
    EXPECT_EQ(all.size(), 9U) << "what was cancelled is read again";
    HistoryFilter panel = filter;
    panel.panel = 12;
    search.Begin(panel);
    EXPECT_FALSE(search.Reading());
    Write({12, 7, 0, 1});
    EXPECT_EQ(Found().size(), 10U);
    search.Return(panel, {2, 3});
    EXPECT_EQ(search.Found(), Places({2, 3}));
    Found([](auto& f) { f.from = f.to; });
    search.Return(panel, {2, 3});
    while (!search.Step(1000)) {
    }
    EXPECT_EQ(search.Found().size(), 6U) << "other days were read since";
    QFile::remove(Path("Histo202403.his"));
    search.Begin(panel);
    while (!search.Step(1000)) {
    }
    EXPECT_TRUE(search.Found().empty());
}

TEST_F(HistorySearchTest, AnAlarmIsFollowedFromAnyOfItsLines) {
    using enum EventKind;
    auto records = Records({Normal,
                            Active,
                            FirstFault,
                            PanelLost,
                            Acknowledged,
                            Normal,
                            Normal,
                            PanelPresent,
                            CableFault,
                            Normal,
                            LampsAcknowledged,
                            SecondFault,
                            Active,
                            Active,
                            Active,
                            Normal,
                            Normal,
                            FirstFault,
                            Active,
                            FirstFault,
                            Normal});
    records[13].isSynchro = true; // known to stand
    records[16].isChange = false; // the alarm's own end
    // A module that only shows states: acknowledged, and come again.
    records[17].isChange = records[19].isChange = true;
    const struct {
        std::vector<size_t> lines;
        std::optional<size_t> coming, acknowledged, going;
    } courses[] = {
        {{0}, {}, {}, {}},          {{1, 2, 4, 5, 6}, 1, 4, 5}, {{3, 7}, 3, {}, 7},
        {{8, 9}, 8, 10, 9},         {{10}, {}, {}, {}},         {{11, 12, 13}, 11, {}, {}},
        {{14, 15, 16}, 14, 16, 15}, {{17, 18}, 17, 18, {}},     {{19, 20}, 19, {}, 20}};
    for (const auto& expected : courses) {
        for (const size_t line : expected.lines) {
            SCOPED_TRACE(line);
            const AlarmCourse course = CourseOf(records, line);
            EXPECT_EQ(course.coming, expected.coming);
            EXPECT_EQ(course.acknowledged, expected.acknowledged);
            EXPECT_EQ(course.going, expected.going);
            EXPECT_EQ(course.isStep, line != 10);
        }
    }
}

TEST_F(HistorySearchTest, LinesHaveTheStatesOfTheConsole) {
    WriteTwoMonths();
    Write({12, 7, 0, 0});
    Write({12, 0, 0, 2});
    const std::optional<RowState> states[] = {RowState::Active,
                                              {},
                                              RowState::FirstFault,
                                              RowState::Active,
                                              {},
                                              {},
                                              RowState::Acknowledged,
                                              RowState::Other,
                                              RowState::Lost,
                                              RowState::Report,
                                              RowState::Report};
    ASSERT_EQ(Found().size(), std::size(states));
    for (int row = 0; row < int(std::size(states)); ++row)
        EXPECT_EQ(StateOf(search.Row(row)), states[row]) << row;
}

TEST(HistoryCsvTest, FieldsAreDividedQuotedAndUtf8) {
    EXPECT_EQ(HistoryCsv::Heading({"Date", "N\u00B0"}), "\xEF\xBB\xBF"
                                                        "Date;N\xC2\xB0\r\n");
    const QByteArray line =
        "2024-03-15 12:00:00 000012 0000077 P01-C07 State       Active          "
        "Vanne; \"3\"                 \xC9vier";
    EXPECT_EQ(HistoryCsv::Row(line), "2024-03-15;12:00:00;000012;0000077;P01-C07;State;Active;"
                                     "\"Vanne; \"\"3\"\"\";\xC3\x89vier\r\n");
    EXPECT_EQ(HistoryCsv::Row("2024-03-15 12:00:00"), "2024-03-15;12:00:00;;;;;;;\r\n");
}
