// Lines of history files as records: every kind in every language, every form of a date, damage.

#include "events/HistoryRecords.h"

#include "events/HistoProcs.h"
#include "model/Models.h"
#include "support/Bench.h"

namespace {

class HistoryRecordsTest : public Bench {
protected:
    HistoryRecordsTest() {
        AddPanel(12, Models::Q7100);
        IniWrite("General", "Language", "0");
    }
    static void Write(EventClass event, int number = 0) {
        event.setGDH(DateTimes::Now());
        event.setNum(number);
        HistoProcs::HistoEvent(event);
    }
    const std::vector<HistoryRecord>& Read(const QDate& from, const QDate& to) {
        records.Begin(from, to);
        double last = 0;
        while (!records.Step(0)) {
            EXPECT_LE(last, records.Progress());
            last = records.Progress();
        }
        return records.Records();
    }
    const std::vector<HistoryRecord>& ReadMarch() { return Read({2024, 3, 1}, {2024, 3, 31}); }

    HistoryRecords records;
};

qint64 Seconds(int year, int month, int day, int hour = 0, int minute = 0, int second = 0) {
    return QDateTime({year, month, day}, {hour, minute, second}, Qt::UTC).toSecsSinceEpoch();
}

QByteArray Line(const char* dateAndTime, const char* origin = "P01-C07") {
    return QByteArray(dateAndTime) + " 000123 0000077 " + origin + " State       Active\r\n";
}

} // namespace

TEST_F(HistoryRecordsTest, EveryEventInEveryLanguage) {
    const struct {
        EventClass event;
        EventKind kind;
    } events[] = {{{12, 7, 0, 0}, EventKind::Normal},
                  {{12, 7, 0, 1}, EventKind::Active},
                  {{12, 7, 1, 1}, EventKind::Acknowledged},
                  {{12, 7, 0, 2}, EventKind::CableFault},
                  {{12, 24, 1, 3}, EventKind::FirstFault},
                  {{12, 7, 1, 4}, EventKind::SecondFault},
                  {{12, 0, 0, 0}, EventKind::PanelAcknowledged},
                  {{12, 0, 0, 1}, EventKind::HornSilenced},
                  {{12, 0, 0, 2}, EventKind::LampsAcknowledged},
                  {{12, 0, 0, 3}, EventKind::Cleared},
                  {{12, 255, 1, 1}, EventKind::PanelPresent},
                  {{12, 255, 1, 0}, EventKind::PanelLost},
                  {{12, 254, 0, 0}, EventKind::AcknowledgedOnPc},
                  {{0, 254, 0, 1}, EventKind::ApplicationStarted},
                  {{0, 254, 0, 2}, EventKind::ApplicationStopped},
                  {{0, 254, 0, 3}, EventKind::UserChanged},
                  {{0, 254, 0, 4}, EventKind::CommStarted},
                  {{0, 254, 0, 5}, EventKind::CommStopped},
                  {{12, 254, 0, 6}, EventKind::MidnightState},
                  {{12, 254, 0, 7}, EventKind::OutOfService},
                  {{12, 254, 7, 8}, EventKind::BackInService},
                  {{0, 254, 0, 9}, EventKind::OutOfServiceCount}};
    for (qint16 language = 0; language < 4; ++language) {
        Global::Get().language = language;
        Global::ReadMarks();
        for (const auto& written : events)
            Write(written.event, 123456);
    }
    const auto& read = ReadMarch();
    ASSERT_EQ(read.size(), 4 * std::size(events));
    for (size_t i = 0; i < read.size(); ++i) {
        const auto& [event, kind] = events[i % std::size(events)];
        SCOPED_TRACE(i);
        EXPECT_EQ(read[i].kind, kind);
        const bool namesNoPanel = event.Panel() == 0 || kind == EventKind::AcknowledgedOnPc;
        EXPECT_EQ(read[i].panel, namesNoPanel ? 0 : 12);
        const bool ofChannel = Family::IsChannel(event.Chnl()) || kind == EventKind::BackInService;
        EXPECT_EQ(read[i].channel, ofChannel ? 7 + 17 * int(event.Chnl() == 24) : 0);
        EXPECT_EQ(read[i].time, Seconds(2024, 3, 15, 12));
        EXPECT_EQ(read[i].number, 12345);
        EXPECT_EQ(records.Line(read[i]).mid(20, 6), "012345");
        EXPECT_TRUE(!Family::IsChannel(event.Chnl()) || read[i].isChange == (event.Param() == 0));
    }
    EventClass found(12, 7, 0, 1);
    found.setClock(-1);
    Write(found);
    EXPECT_TRUE(ReadMarch().back().isSynchro);
    EXPECT_FALSE(records.Records().front().isSynchro);
    EXPECT_EQ(records.Unread(), 0);
}

TEST_F(HistoryRecordsTest, DatesAsAnyLocaleWritesThem) {
    WriteFile("Histo202403.his", Line("2024-03-15 10:11:12") + Line("15.03.2024 10:11:12") +
                                     Line("03/15/2024 10:11:12") + Line("05/03/2024 10:11:12") +
                                     Line("03/05/2024 10:11:12") + Line("05.03.2024 09:11:12") +
                                     Line("03.04.2024 10:11:12"));
    for (const char* locale : {"fr_FR", "en_US"}) {
        DateTimes::ReadLocale(QLocale(locale));
        QList<qint64> times;
        for (const HistoryRecord& record : Read({2024, 1, 1}, {2024, 12, 31}))
            times += record.time;
        const qint64 whole = Seconds(2024, 3, 15, 10, 11, 12);
        const qint64 fifth = Seconds(2024, 3, 5, 10, 11, 12);
        EXPECT_EQ(times, QList<qint64>({whole, whole, whole, fifth, fifth, fifth - 3600,
                                        Seconds(2024, 3, 4, 10, 11, 12)}))
            << "the month of the file tells which number is the day";
    }
    // Another locale wrote the former months: the 2nd of January comes before the 1st of February.
    WriteFile("Histo202401.his", Line("01/02/2024 10:11:12"));
    WriteFile("Histo202402.his", Line("02/01/2024 10:11:12"));
    DateTimes::ReadLocale(QLocale("fr_FR"));
    QList<qint64> times;
    for (const HistoryRecord& record : Read({2024, 1, 1}, {2024, 2, 29}))
        times += record.time;
    EXPECT_EQ(times,
              QList<qint64>({Seconds(2024, 1, 2, 10, 11, 12), Seconds(2024, 2, 1, 10, 11, 12)}));
    DateTimes::ReadLocale(QLocale::c());
}

TEST_F(HistoryRecordsTest, FilesOfDaysAndMonthsInTheOrderOfTheirLines) {
    WriteFile("Histo202402.his", Line("2024-02-29 00:00:00") + Line("2024-02-29 23:59:59"));
    WriteFile("Histo202403.his", Line("2024-03-20 08:00:00") + Line("2024-03-20 07:00:00"));
    WriteFile("Histo20240301.his", Line("2024-02-29 23:59:58") + Line("2024-03-01 08:00:00"));
    WriteFile("Histo20240305.his", "");
    WriteFile("Histo2024.his", Line("2024-03-02 08:00:00"));
    WriteFile("Histo202413.his", Line("2024-03-02 08:00:00"));
    EXPECT_EQ(HistoryRecords::Files().size(), 4);
    QList<qint64> times;
    for (const HistoryRecord& record : Read({2024, 2, 29}, {2024, 3, 20}))
        times += record.time;
    const qint64 leap = Seconds(2024, 2, 29, 23, 59, 58);
    EXPECT_EQ(times, QList<qint64>({Seconds(2024, 2, 29), leap + 1, leap, Seconds(2024, 3, 1, 8),
                                    Seconds(2024, 3, 20, 8), Seconds(2024, 3, 20, 7)}))
        << "a clock that was set back stays so";
    EXPECT_EQ(Read({2024, 2, 29}, {2024, 2, 29}).size(), 3U) << "written after midnight";
    EXPECT_EQ(Read({2024, 3, 21}, {2024, 3, 31}).size(), 0U);
    QFile::remove(Path("Histo20240301.his"));
    records.Begin({2024, 2, 1}, {2024, 3, 31});
    QFile::remove(Path("Histo202402.his"));
    while (!records.Step(0)) {
    }
    EXPECT_EQ(records.UnreadFiles(), 1);
    EXPECT_EQ(records.Records().size(), 2U);
    QFile::remove(Path("Histo202403.his"));
    HistoryRecord gone = records.Records().front();
    ++gone.file;
    EXPECT_EQ(records.Line(gone), "");
}

TEST_F(HistoryRecordsTest, DamageIsPassedOverAndCounted) {
    const QByteArray good = Line("2024-03-15 10:11:12");
    QByteArray heading("Date       Time     Evt\r\n");
    WriteFile("Histo202403.his", heading + "\r\n" + good + "2024-02-30 10:11:12\r\n" +
                                     "2024-03-15 24:11:12\r\n" + "torn " + good +
                                     QByteArray(600'000, 'x') + "\r\n" + good +
                                     "2024-03-15 10:11:12\r\n" + good + "2024-03-15 10:11:12 000");
    const auto& read = ReadMarch();
    ASSERT_EQ(read.size(), 5U);
    EXPECT_EQ(read[1].kind, EventKind::Active);
    EXPECT_EQ(read[2].kind, EventKind::Unknown);
    EXPECT_EQ(read[2].panel, 0);
    EXPECT_EQ(records.Line(read[3]) + "\r\n", good);
    EXPECT_GE(records.Unread(), 4);
    EXPECT_EQ(records.Progress(), 1);
}

/// Lines begin at every place of the pieces in which a file is read; a reading that is given up
/// keeps what it has.
TEST_F(HistoryRecordsTest, NoLineIsLostBetweenThePieces) {
    const QByteArray line = Line("2024-03-15 10:11:12");
    for (int length = 1; length < 150; length += 7) {
        const int count = 1'000'000 / int(line.size());
        WriteFile("Histo202403.his", QByteArray(length, 'x') + '\n' + line.repeated(count));
        ASSERT_EQ(int(ReadMarch().size()), count) << length;
        EXPECT_EQ(records.Line(records.Records().back()) + "\r\n", line);
    }
    records.Begin({2024, 3, 1}, {2024, 3, 31});
    EXPECT_FALSE(records.Step(0));
    EXPECT_GT(records.Progress(), 0.1);
    records.Cancel();
    EXPECT_TRUE(records.Step(0));
    EXPECT_GT(records.Records().size(), 1000U);
}
