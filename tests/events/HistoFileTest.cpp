#include "events/HistoProcs.h"

#include "events/TextProcs.h"
#include "model/Models.h"
#include "support/Bench.h"

namespace {

class HistoFile : public QuietBench {
protected:
    HistoFile() { AddPanel(3, Models::Q7100); }

    EventClass Event() {
        EventClass event(3, 5, 0, 1);
        event.setNum(42);
        event.setGDH(clock.Now());
        return event;
    }
};

const QString Month = Text("Histo202403.his");

TEST_F(HistoFile, BeginsWithItsHeadingAndGrowsLineByLine) {
    HistoProcs::HistoEvent(Event());
    HistoProcs::HistoEvent(Event());
    const QByteArray bytes = BytesOf(Month);
    EXPECT_EQ(bytes.size(), 3 * 140);
    const QByteArray heading = "Date       Time     Evt\xA0No PnlCnt  Origin  Parameter   Display"
                               "         Common\xA0text                Specific\xA0text";
    EXPECT_EQ(bytes.left(140), heading.leftJustified(138, ' ') + "\r\n");
    const QStringList lines = LinesOf(Month);
    ASSERT_EQ(lines.size(), 3);
    EXPECT_EQ(lines[1],
              TextProcs::HistoScreenLineToHistoFileLine(TextProcs::FormateHistoScreen(Event())));
    EXPECT_EQ(lines[2], lines[1]);
    // One byte for each character.
    Site().Panel(3).Channel(5).setScreenText(QStringLiteral(u"Überdruck 5 \u20AC \u0394"));
    HistoProcs::HistoEvent(Event());
    EXPECT_EQ(BytesOf(Month).mid(3 * 140 + 98, 40).trimmed(), QByteArray("\xDC"
                                                                         "berdruck 5 \x80 ?"));
}

TEST_F(HistoFile, IsNamedAfterTheMomentOfWriting) {
    WriteFile(Month, "note\r\n");
    EventClass old = Event();
    old.setGDH(clock.Now() - 40);
    HistoProcs::HistoEvent(old);
    EXPECT_EQ(LinesOf(Month).size(), 2) << "no heading in a file that was there";
    EXPECT_EQ(LinesOf(Month).value(0), Text("note"));

    // A change to daily files leaves the file of the month as it is.
    IniWrite(Text("Files"), Text("PeriodUnit"), Text("1"));
    for (const auto second : {0, 1, 2}) {
        HistoProcs::HistoEvent(Event());
        if (second == 0)
            clock.Set(2024, 12, 31, 23, 59, 58);
        clock.Advance(1000);
    }
    EXPECT_EQ(LinesOf(Month).size(), 2);
    for (const char* day : {"20240315", "20241231", "20250101"})
        EXPECT_EQ(LinesOf(Text("Histo%1.his").arg(Text(day))).size(), 2) << day;
}

TEST_F(HistoFile, ThatCannotBeWrittenIsToldOnce) {
    ASSERT_TRUE(QDir().mkdir(Path(Month)));
    HistoProcs::HistoEvent(Event());
    EXPECT_EQ(Boxes(), TextList({"Error Nr 75 : Path/File access error\r\nModule : "
                                 "HistoProcs\r\nFunction : HistoEvent"}));
    EXPECT_TRUE(Faults::Stands(Faults::Kind::HistoryNotWritten));
    // Its folder goes away as a whole, and comes back with the next event.
    ASSERT_TRUE(QDir(Path(QString())).removeRecursively());
    HistoProcs::HistoEvent(Event());
    EXPECT_EQ(LinesOf(Month).size(), 2) << "heading and event";
    EXPECT_FALSE(Faults::Stands(Faults::Kind::HistoryNotWritten));
}

} // namespace
