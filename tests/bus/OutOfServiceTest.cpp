// What is out of service with a memory: its lines, its ends, and what a kill or another clock
// leaves of it.

#include "model/OutOfService.h"
#include "bus/Engine.h"
#include "bus/OutOfServiceWatch.h"
#include "events/HistoProcs.h"

#include <csignal>
#include <random>
#include <sys/wait.h>
#include <tuple>
#include <unistd.h>

namespace {

using OutOfService::Entry;

constexpr qint64 Hour = 3'600'000;
const OutOfService::Thing Pump{12, 7};
const OutOfService::Thing Cabinet{3, 0};

class OutOfServiceEngine : public Engine {
protected:
    OutOfServiceEngine() {
        MakeSite();
        Global::Get().userLevel = 3;
        Global::Get().userName = Text("DUPONT");
        Load();
    }

    static void MakeSite() {
        Global::setConfiguration(nullptr);
        AddPanel(12, Models::Q6200XT);
        AddPanel(3, Models::Q7100);
    }
    /// Another start of the program: channels forget that they are out, the site is what was kept.
    void Restart() {
        if (!QFile::exists(CurrentConfigFile()))
            MakeSite();
        else
            ReadSite();
        OutOfService::Restore();
        Load();
        engine->ServiceWatch().Check();
    }
    static void ReadSite() {
        Global::setConfiguration(std::make_unique<ConfigClass>());
        EXPECT_EQ(Site().Read(CurrentConfigFile()), ConfigClass::ReadDone);
    }
    void Take(const OutOfService::Thing& thing, const QString& why = {}, int minutes = 0) {
        OutOfService::Apply({{thing, true, why, minutes}});
        TellOutOfService();
    }
    /// Seconds of the clock and of the engine.
    void Pass(qint64 milliseconds) {
        clock.Advance(milliseconds);
        engine->tmrMidnight_Timer();
    }
    /// "origin display common" of the lines of a thing or of all.
    QStringList Lines(const QString& part = Text("ervice")) const {
        QStringList lines;
        const QDir folder(platform::ApplicationFolder());
        for (const QString& name : folder.entryList({Text("Histo*.his")}, QDir::Files, QDir::Name))
            for (const QString& line : LinesOf(name).filter(Text("ervice")).filter(part))
                lines += Text("%1 %2 %3")
                             .arg(line.mid(35, 7).trimmed(), line.mid(55, 15).trimmed(),
                                  line.mid(71, 26).trimmed());
        return lines;
    }
};

} // namespace

TEST_F(OutOfServiceEngine, EachComingAndGoingIsALineOfItsOwn) {
    Take(Pump, Text("Cable repair"), OutOfService::Shift);
    Take(Cabinet);
    const QStringList history = LinesOf(Text("Histo202403.his"));
    EXPECT_EQ(history[1].mid(35),
              Text("P12-C07 03-15 20:00 Out of service  DUPONT                     "
                   "Cable repair                            "));
    EXPECT_EQ(history[2].mid(43, 11), Text("Unlimited  "));
    EXPECT_EQ(Ids(), (QList<int>{0x0CFE0707, 0x03FE0007}));
    EXPECT_EQ(TraceLines().last().mid(44),
              Text("P03-Q71 SERV   OUT    DUPONT                     ") + QString(39, u'*'));
    // In other hands, by whatever way the site learns it.
    Global::Get().userLevel = 0;
    Site().Panel(3).setActive(true);
    Pass(1000 + 90 * 60'000);
    Site().Panel(12).setModel(Models::None);
    Pass(1000);
    const QString nobody = Text(" Back in service ") + QString(26, u'*');
    EXPECT_EQ(Lines().mid(2), (QStringList{Text("P03-Q71") + nobody, Text("P12-C07") + nobody}));
    EXPECT_EQ(LinesOf(Text("Histo202403.his"))[3].mid(43, 11), Text("1 h 30     "));
    EXPECT_TRUE(OutOfService::Find(Cabinet).has_value()) << "the file of the start says inactive";
    SaveCurrentConfig();
    EXPECT_EQ(OutOfService::Memory(), QList<Entry>());
}

TEST_F(OutOfServiceEngine, TheDayIsCountedAndASiteThatNeverUsedItSeesNothing) {
    Site().Panel(3).setActive(false);
    clock.Set(2024, 3, 15, 23, 59, 59);
    Pass(2000);
    EXPECT_EQ(Lines(), QStringList());
    EXPECT_EQ(BytesOf(Text("korvanelle.ini")).indexOf("OutOfService"), -1);
    Take(Pump);
    clock.Set(2024, 3, 16, 23, 59, 59);
    Pass(2000);
    EXPECT_EQ(Lines().last(), Text("SYSTEM Out of service Panels: 1  Channels: 1"));
    EXPECT_EQ(Lines().size(), 2);
}

TEST_F(OutOfServiceEngine, AtTheEndOfItsTimeAThingComesBackByWhateverClock) {
    const QString automatic = Text("P12-C07 Back in service Automatic, time is over");
    Take(Pump, Text("Test"), OutOfService::Shift);
    Take(Cabinet, {}, OutOfService::Day);
    Pass(8 * Hour - 1000);
    EXPECT_TRUE(OutOfService::IsOut(Pump));
    Pass(1000);
    EXPECT_FALSE(OutOfService::IsOut(Pump));
    EXPECT_EQ(Lines(Text("P12")).last(), automatic);
    // The clock is set forth and back again: once is enough.
    clock.Set(clock.Now() + 2);
    Pass(1000);
    EXPECT_TRUE(Site().Panel(3).Active());
    clock.Set(clock.Now() - 2);
    Pass(1000);
    EXPECT_EQ(Lines().size(), 4);
    ReadSite();
    EXPECT_TRUE(Site().Panel(3).Active()) << "kept in the file of the start";
    EXPECT_TRUE(Site().Panel(12).Active());
    // A clock that is set back gives no time: not within the time, and not by years.
    Take(Pump, {}, OutOfService::Shift);
    Pass(0);
    Pass(6 * Hour);
    clock.Set(clock.Now() - 5.0 / 24);
    Pass(4 * Hour);
    EXPECT_EQ(Lines(Text("P12")).mid(3), QStringList(automatic));
    clock.Set(2024, 3, 31);
    Take(Pump, {}, OutOfService::Shift);
    clock.Set(2024, 3, 20);
    Restart();
    EXPECT_TRUE(OutOfService::IsOut(Pump));
    Pass(8 * Hour);
    EXPECT_EQ(Lines(Text("P12")).mid(5), QStringList(automatic));
}

// Swallowed when it came: nobody has heard of it.
TEST_F(OutOfServiceEngine, AnAlarmThatStandsAtTheReturnIsTold) {
    Take({3, 7}, {}, OutOfService::Shift);
    for (const OutOfService::Thing& thing : {OutOfService::Thing{3, 8}, {3, 9}, Pump})
        Take(thing);
    for (const auto& [panel, channel, state] :
         {std::tuple(3, 7, 4), std::tuple(3, 8, 1), std::tuple(3, 9, 0), std::tuple(12, 7, 1)}) {
        EventClass event(qint16(panel), qint16(channel), 0, qint16(state));
        engine->SendEvent(event);
    }
    // The display module shows what others report.
    OutOfService::Apply({{{3, 8}, false}, {{3, 9}, false}, {Pump, false}});
    Pass(1000);
    Pass(8 * Hour);
    // The channel stays out in the site that is left.
    Take({3, 8});
    OutOfService::LeaveSite();
    Pass(1000);
    events.removeIf([](const EventClass& event) { return event.Chnl() == Family::System; });
    EXPECT_EQ(Fields(events), TextList({"3/8 0 1 -1", "3/7 0 4 -1"}));
}

TEST_F(OutOfServiceEngine, ARestartKeepsWhatIsOutAndTellsWhatIsOver) {
    Take(Pump, Text("Works"), 3 * OutOfService::Day);
    Take(Cabinet);
    Take({12, 8}, {}, OutOfService::Shift);
    Site().Panel(12).Channel(8).setOutOfOrder(true);
    clock.Advance(9 * Hour);
    Restart();
    EXPECT_TRUE(OutOfService::IsOut(Pump) && OutOfService::IsOut(Cabinet));
    EXPECT_FALSE(OutOfService::IsOut({12, 8}));
    EXPECT_EQ(Lines().mid(3), TextList({"P12-C08 Back in service Automatic, time is over"}));
    EventClass alarm(12, 7, 0, 1);
    const qsizetype lines = TraceLines().size();
    engine->SendEvent(alarm);
    EXPECT_EQ(TraceLines().size(), lines) << "swallowed as before";
    // What only a time is kept of: a former program's restart brought its channels back, and a
    // thing that isn't there comes back as well.
    IniWriteSection(Text("OutOfService"), {{Text("12.7"), Text("2024-03-14 08:00:00")},
                                           {Text("3.0"), Text("2024-03-14 08:00:00")},
                                           {Text("50.1"), Text("\t\t\t\t\t\t\t")}});
    SaveCurrentConfig();
    Restart();
    EXPECT_EQ(Lines().mid(4), TextList({"P12-C07 Back in service **************************",
                                        "P50-C01 Back in service **************************"}));
    ASSERT_TRUE(OutOfService::Find(Cabinet));
    EXPECT_EQ(DateTimes::DateAndTime(OutOfService::Find(Cabinet)->since), "2024-03-14 08:00:00");
}

// Killed between any two of its steps: the change stands, and its line is there once.
TEST_F(OutOfServiceEngine, ALineThatAKillCutOffIsWrittenOnce) {
    int expected = 0;
    for (const bool out : {true, false}) {
        for (int stage = 0; stage < 3; ++stage) {
            if (OutOfService::IsOut(Pump) == out)
                OutOfService::Apply({{Pump, !out}});
            TellOutOfService();
            expected = int(Lines().size());
            OutOfService::Apply({{Pump, out, Text("Test")}});
            QList<Entry> entries = OutOfService::Memory();
            if (stage > 0)
                entries[0].line = int(1000 + expected);
            OutOfService::setMemory(entries);
            if (stage > 1) {
                EventClass event(12, Family::System, 7, out ? 7 : 8);
                event.setNum(entries[0].line);
                event.setGDH(out ? entries[0].since : entries[0].back);
                engine->TraiteEvent(event);
            }
            Restart();
            EXPECT_EQ(OutOfService::IsOut(Pump), out) << stage;
            EXPECT_EQ(Lines().size(), expected + 1) << stage;
            Restart();
            EXPECT_EQ(Lines().size(), expected + 1) << stage;
        }
    }
}

// The same by real kills at random moments: comings and goings stand in turn, and the last of them
// is what is so.
TEST_F(OutOfServiceEngine, KillsLoseAndDoubleNothing) {
    constexpr int Kills = 20;
    std::mt19937 random(3);
    engine.reset();
    SaveCurrentConfig();
    for (int kill = 0; kill < Kills; ++kill) {
        clock.Advance(Hour);
        int started[2];
        ASSERT_EQ(pipe(started), 0);
        const pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            link = new FakeLink;
            Restart();
            close(started[1]);
            for (int i = 0;; ++i) {
                clock.Advance(1000);
                for (const OutOfService::Thing& thing : {Pump, Cabinet})
                    OutOfService::Apply({{thing, !OutOfService::IsOut(thing)}});
                if (i % 3 == 0)
                    SaveCurrentConfig();
                TellOutOfService();
            }
        }
        close(started[1]);
        // Every other one strikes the start itself; a busy machine gets no further by then.
        char none;
        if (kill % 2 == 0) {
            ASSERT_EQ(read(started[0], &none, 1), 0);
        }
        usleep(useconds_t(5000 + random() % 50000));
        ::kill(child, SIGKILL);
        close(started[0]);
        waitpid(child, nullptr, 0);
    }
    link = new FakeLink;
    Restart();
    for (const auto& [thing, origin] :
         {std::pair(Pump, Text("P12-C07")), std::pair(Cabinet, Text("P03-Q71"))}) {
        const QStringList lines = Lines(origin);
        ASSERT_GT(lines.size(), 4) << origin.toStdString();
        for (qsizetype i = 0; i < lines.size(); ++i)
            ASSERT_EQ(lines[i].contains(Text("Out of")), i % 2 == 0) << origin.toStdString() << i;
        EXPECT_EQ(OutOfService::IsOut(thing), lines.size() % 2 == 1) << origin.toStdString();
    }
}
