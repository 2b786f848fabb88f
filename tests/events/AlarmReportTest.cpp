// What the alarms of a period come to: comings, chattering, fleeting and stale ones, the time to
// acknowledgement, rates and floods.

#include "events/AlarmReport.h"

#include <gtest/gtest.h>

namespace {

using Unit = AlarmPeriod::Unit;

qint64 At(int day, int hour, int minute = 0, int second = 0) {
    return AlarmPeriod::SecondsOf({{2024, 3, day}, {hour, minute, second}});
}

/// A story told line by line, of 15 March 2024 unless another period is named.
class AlarmReportTest : public ::testing::Test {
protected:
    void Tell(qint64 time, EventKind kind, int channel = 1, int panel = 1, bool isChange = true,
              bool isSynchro = false) {
        records.push_back(
            {time, 0, 0, 0, quint8(panel), quint8(channel), kind, isChange, isSynchro});
    }
    void Step(qint64 time, EventKind kind, int channel = 1) { Tell(time, kind, channel, 1, false); }
    AlarmReport Reckon(Unit unit = Unit::Day, qint64 now = At(31, 0)) const {
        AlarmReport report(AlarmPeriod(unit, At(15, 12)));
        for (const HistoryRecord& record : records)
            report.Take(record);
        report.Finish(now);
        return report;
    }

    std::vector<HistoryRecord> records;
};

} // namespace

TEST_F(AlarmReportTest, WhatIsAnAlarm) {
    // A fault of a module with an event memory: the contact, the alarm behind it, its end.
    Tell(At(15, 8), EventKind::Active);
    Step(At(15, 8), EventKind::FirstFault);
    Step(At(15, 8, 1), EventKind::Acknowledged);
    Tell(At(15, 8, 2), EventKind::Normal);
    Step(At(15, 8, 2), EventKind::Normal);
    // Found again by a general reading while it stands; its going was missed; a second fault.
    Tell(At(15, 9), EventKind::Active);
    Tell(At(15, 9, 10), EventKind::ApplicationStarted, 0, 0);
    Tell(At(15, 9, 11), EventKind::Active, 1, 1, true, true);
    Tell(At(15, 9, 12), EventKind::Active);
    // A module that shows states: the acknowledged fault becomes active, and comes again.
    Tell(At(15, 10), EventKind::CableFault, 2);
    Tell(At(15, 10, 1), EventKind::Active, 2);
    Tell(At(15, 10, 2), EventKind::CableFault, 2);
    // Only steps reach the history; found standing and not known; a panel.
    Step(At(15, 11), EventKind::SecondFault, 3);
    Tell(At(15, 11, 1), EventKind::Active, 4, 1, true, true);
    Tell(At(15, 11, 2), EventKind::PanelLost, 0, 7, false);
    for (const EventKind kind :
         {EventKind::Unknown, EventKind::HornSilenced, EventKind::UserChanged,
          EventKind::MidnightState, EventKind::Normal})
        Tell(At(15, 12), kind, 5);
    const AlarmReport report = Reckon();
    EXPECT_EQ(report.Alarms(), 8);
    EXPECT_EQ(report.ByHour()[8], 1);
    EXPECT_EQ(report.ByPart()[9], 2);
    EXPECT_EQ(report.ByPart()[10], 2);
    EXPECT_EQ(report.ByPart()[11], 3);
    ASSERT_EQ(report.Sources().size(), 5U);
    EXPECT_EQ(report.Sources()[0].alarms, 3);
    EXPECT_EQ(report.Sources()[0].last.time, At(15, 9, 12));
    EXPECT_EQ(report.Sources().back().panel, 7);
}

TEST_F(AlarmReportTest, PeriodsOfTheCalendar) {
    const AlarmPeriod week(Unit::Week, At(15, 12));
    EXPECT_EQ(week.Begin(), At(11, 0));
    EXPECT_EQ(week.End(), At(18, 0));
    const AlarmPeriod leap = AlarmPeriod(Unit::Month, At(15, 12)).Next(-1);
    EXPECT_EQ(leap.Parts().size(), 30U);
    EXPECT_EQ(leap.Part(28)->Begin() + 86400, At(1, 0));
    EXPECT_EQ(leap.Part(29), std::nullopt);
    EXPECT_EQ(leap.Next(-2).Next(2), leap);
    const AlarmPeriod year(Unit::Year, At(15, 12));
    EXPECT_EQ(year.Part(2), AlarmPeriod(Unit::Month, At(15, 12)));
    const auto hour = AlarmPeriod(Unit::Day, At(15, 12)).Part(23);
    ASSERT_TRUE(hour);
    EXPECT_EQ(hour->Begin(), At(15, 23));
    EXPECT_EQ(hour->Next(1).Begin(), At(16, 0));
    EXPECT_EQ(hour->Parts().size(), 7U);
    EXPECT_EQ(hour->Part(0), std::nullopt);
}

TEST_F(AlarmReportTest, NuisanceAlarms) {
    // Three in a minute and a fourth; two more that are too slow. The first two came before.
    for (const qint64 time : {At(14, 23, 59, 50), At(14, 23, 59, 58), At(15, 0, 0, 20),
                              At(15, 0, 0, 55), At(15, 0, 2), At(15, 0, 2, 59)}) {
        Tell(time, EventKind::Active);
        Tell(time + (time == At(15, 0, 2) ? 11 : 10), EventKind::Normal);
    }
    // Half a minute apart: two chattering spells with a rest between.
    for (qint64 i = 0; i < 6; ++i) {
        Tell(At(15, int(1 + i / 3)) + i % 3 * 30, EventKind::CableFault, 2);
        Tell(At(15, int(1 + i / 3)) + i % 3 * 30 + 20, EventKind::Normal, 2);
    }
    const AlarmReport report = Reckon();
    ASSERT_EQ(report.Sources().size(), 2U);
    EXPECT_EQ(report.Sources()[0].chatters, 2);
    EXPECT_EQ(report.Sources()[0].chatterAlarms, 6);
    EXPECT_EQ(report.Sources()[0].fleeting, 0);
    EXPECT_EQ(report.Sources()[1].alarms, 4);
    EXPECT_EQ(report.Sources()[1].chatters, 1);
    EXPECT_EQ(report.Sources()[1].chatterAlarms, 2) << "those of the day before aren't counted";
    EXPECT_EQ(report.Sources()[1].fleeting, 3);
}

TEST_F(AlarmReportTest, StaleAlarms) {
    Tell(At(10, 8), EventKind::Active, 1); // gone in the period
    Tell(At(12, 8), EventKind::Active, 2); // stands on
    Tell(At(13, 8), EventKind::Active, 3); // gone before the period
    Tell(At(14, 8), EventKind::Active, 4); // stale by an hour
    for (const int panel : {1, 2}) {       // one out of service by itself, one with its panel
        Tell(At(13, 9), EventKind::Active, 6, panel);
        Tell(At(14, 22), EventKind::OutOfService, panel == 1 ? 6 : 0, panel);
    }
    Tell(At(14, 23), EventKind::Normal, 3);
    Tell(At(15, 7), EventKind::Normal, 1);
    Tell(At(15, 8), EventKind::Active, 5); // stale on the next day
    Tell(At(15, 9), EventKind::Normal, 4);
    Tell(At(16, 9), EventKind::Normal, 5);
    const AlarmReport report = Reckon(Unit::Day, At(16, 20));
    ASSERT_EQ(report.StaleAlarms().size(), 3U);
    EXPECT_EQ(report.StaleAlarms()[0].coming.channel, 1);
    EXPECT_FALSE(report.StaleAlarms()[0].stands);
    EXPECT_EQ(report.StaleAlarms()[1].coming.channel, 2);
    EXPECT_TRUE(report.StaleAlarms()[1].stands);
    EXPECT_EQ(report.StaleAlarms()[1].went, At(16, 20));
    EXPECT_EQ(report.StaleAlarms()[2].went, At(15, 9));
    EXPECT_EQ(report.Alarms(), 1);
    EXPECT_TRUE(report.IsKnownToNow());
    EXPECT_FALSE(Reckon().IsKnownToNow()) << "what stands may have gone since";
}

TEST_F(AlarmReportTest, TimeToAcknowledgement) {
    EXPECT_EQ(Reckon().AcknowledgedWithin(50), -1);
    Tell(At(15, 7), EventKind::PanelLost, 0, 3, false); // waits for nobody
    Tell(At(15, 8), EventKind::Active, 1);
    Tell(At(15, 8, 0, 5), EventKind::Normal, 1);
    Tell(At(15, 8, 0, 10), EventKind::Active, 1);
    Tell(At(15, 8, 0, 12), EventKind::Active, 1, 2);
    Tell(At(15, 8, 0, 15), EventKind::AcknowledgedOnPc, 0, 0); // of two panels: of neither
    Step(At(15, 8, 0, 20), EventKind::Acknowledged, 1);        // 20 s since the first
    Step(At(15, 8, 0, 30), EventKind::Acknowledged, 1);        // nothing waits any more
    Tell(At(15, 8, 0, 42), EventKind::AcknowledgedOnPc, 0, 0); // 30 s: panel 2 alone waits
    Tell(At(15, 9), EventKind::Active, 3);
    Tell(At(15, 9, 0, 1), EventKind::Normal, 3);
    Tell(At(15, 9), EventKind::Active, 4);
    Step(At(15, 9, 0, 40), EventKind::Normal, 3);            // 40 s: gone, and over now
    Tell(At(15, 9, 0, 50), EventKind::LampsAcknowledged, 0); // 50 s
    Tell(At(15, 23, 59), EventKind::Active, 5);
    Tell(At(16, 0, 1), EventKind::PanelAcknowledged, 0); // 120 s, past midnight
    Tell(At(15, 20), EventKind::Active, 6);              // a clock was set back
    Step(At(15, 19), EventKind::Acknowledged, 6);
    Tell(At(15, 21), EventKind::Active, 7); // forgotten by the module
    Tell(At(15, 21, 1), EventKind::Normal, 7);
    Tell(At(15, 21, 2), EventKind::Cleared, 0);
    Tell(At(15, 21), EventKind::Active, 9); // taken out of service
    Tell(At(15, 21, 1), EventKind::OutOfService, 9);
    Tell(At(15, 21), EventKind::SecondFault, 10); // of a module that only shows states
    Tell(At(15, 21, 0, 45), EventKind::Active, 10);
    Tell(At(15, 22), EventKind::Active, 8); // never acknowledged
    const AlarmReport report = Reckon();
    EXPECT_EQ(report.Acknowledged(), 6);
    EXPECT_EQ(report.AcknowledgedWithin(50), 40);
    EXPECT_EQ(report.AcknowledgedWithin(95), 120);
    EXPECT_EQ(report.AcknowledgedWithin(10), 20);
    EXPECT_EQ(report.Unacknowledged(), 1);
}

TEST_F(AlarmReportTest, RatesAndDays) {
    const auto many = [this](int day, int count) {
        for (int i = 0; i < count; ++i) {
            const qint64 time = At(day, 0) + qint64(i) * 200;
            Tell(time, EventKind::Active, 1 + i % 24, 1 + i % 64);
            Tell(time + 100, EventKind::Normal, 1 + i % 24, 1 + i % 64);
        }
    };
    many(12, 150);
    many(13, 151);
    many(14, 301);
    const AlarmReport report = Reckon(Unit::Week, At(16, 12));
    EXPECT_EQ(report.Days(), 4.5) << "from the first line on, up to now";
    EXPECT_EQ(report.AlarmsADay(), 602 / 4.5);
    EXPECT_EQ(report.DaysAbove(AlarmLimits::AcceptableADay), 2);
    EXPECT_EQ(report.DaysAbove(AlarmLimits::MostADay), 1);
    EXPECT_EQ(report.BusiestDay(), std::make_pair(301, At(14, 0)));
    EXPECT_EQ(report.ByPart(), std::vector<int>({0, 150, 151, 301, 0, 0, 0}));
    EXPECT_EQ(report.MostInTenMinutes(), 3);
}

TEST_F(AlarmReportTest, Floods) {
    AlarmFloods floods(0, 100000);
    for (int i = 0; i < 10; ++i)
        floods.Take(1000 + 10 * i);
    EXPECT_EQ(floods.Most(), 10);
    floods.Take(1600); // the first has left
    floods.Take(1601); // eleven in ten minutes, since 1010
    floods.Take(2600); // 1070 left four behind it when it went
    for (int i = 0; i < 12; ++i)
        floods.Take(i == 6 ? 49999 : 50000); // a clock that is kept right
    floods.Take(40000);                      // a clock set back ends it
    for (int i = 0; i < 11; ++i)
        floods.Take(99900 + i);
    floods.Finish(100100);
    ASSERT_EQ(floods.All().size(), 3U);
    EXPECT_EQ(floods.All()[0].begin, 1010);
    EXPECT_EQ(floods.All()[0].end, 1670);
    EXPECT_EQ(floods.All()[0].alarms, 11);
    EXPECT_EQ(floods.All()[0].most, 11);
    EXPECT_EQ(floods.All()[1].end, 50000);
    EXPECT_EQ(floods.All()[2].end, 100100) << "it goes on";
    EXPECT_EQ(floods.Most(), 12);
}
