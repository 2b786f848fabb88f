#include "bus/Engine.h"

#include <QThread>
#include <tuple>

namespace {

class BusWide : public Engine {
protected:
    BusWide() { Start(); }

    /// A module whose panel the cycle leaves alone.
    PanelClass& Put(int address, int model) {
        PanelClass& panel = AddModule(address, model);
        modules[address][132] = model == Models::Q6200XT ? 2 : 1;
        modules[address][133] = model == Models::P5500 ? 2 : 1;
        panel.setNextPoll(clock.Now() + 100);
        return panel;
    }
    /// Silences reads of a register; `failures` of them.
    void Fail(int registerNo, int failures) {
        link->answer = [this, registerNo, failures](const QByteArray& frame) mutable {
            if (FakeModules::WordAt(frame, 2) == registerNo && failures-- > 0)
                return QByteArray();
            return modules.Answer(frame);
        };
    }
    /// One slow update of all panels.
    void UpdateAll() {
        Forget();
        engine->StartUpdate();
        Rounds(63);
    }
    void Tick(int month, int day, int hour, int minute = 0, int second = 0) {
        clock.Set(2024, month, day, hour, minute, second);
        engine->tmrMidnight_Timer();
    }
    /// History lines of panels.
    QStringList Histo(const QString& month) const {
        const QString name = Text("Histo%1.his").arg(month);
        return QFile::exists(Path(name)) ? LinesOf(name).filter(Text(" P0")) : QStringList();
    }
    /// What was sent behind the first frames.
    Lines SentAfter(int count) const { return Frames::Said(link->sent.mid(count)); }
};

using Update = BusWide;
using Midnight = BusWide;

TEST_F(Update, GoesOnceThroughThePanelsUpToSixtyThree) {
    for (const int address : {1, 5, 63, 64})
        Put(address, Models::Q6200XT);
    Put(6, Models::Q6200XT).setActive(false);
    Put(7, Models::None);
    Rounds(3);
    EXPECT_EQ(link->sent.size(), 0) << "not before it is started";
    engine->StartUpdate();
    Rounds(4);
    EXPECT_EQ(Sent(), Lines{"read 1 132 1"});
    Rounds(1);
    EXPECT_EQ(Sent(), (Lines{"read 1 132 1", "read 5 132 1"})) << "one panel a turn";
    Rounds(100);
    EXPECT_EQ(Sent(), (Lines{"read 1 132 1", "read 5 132 1", "read 63 132 1"}));
    EXPECT_EQ(updates, QList<qsizetype>{3});
    EXPECT_EQ(Site().Panel(5).ActualModel(), Models::Q6200XT);

    // It waits for the end of a turn.
    Put(64, Models::None);
    for (const int address : {1, 5, 63})
        Site().Panel(address).setNextPoll(clock.Now() - 1);
    link->sent.clear();
    engine->StartUpdate();
    Rounds(3);
    EXPECT_EQ(Sent(), (Lines{"read 5 68 1", "read 63 68 1", "read 1 68 1", "read 1 132 1"}));
}

TEST_F(Update, ReportsWhatDiffersAndStoresAll) {
    PanelClass& panel = Put(5, Models::Q7100);
    const int before[] = {0, 1, 0, 3, 0, 5, 0, 0, 0, 0, 0, 2};
    const int now[] = {0, 1, 1, 0, 5, 5, 0, 0, 0, 0, 0, 4};
    for (int i = 0; i < 12; ++i) {
        panel.Channel(i + 1).setState(qint16(before[i]));
        modules[5][1 + i] = quint16(now[i]);
        modules[5][49 + i] = quint16(i % 2);
    }
    UpdateAll();
    EXPECT_EQ(Sent(), (Lines{"read 5 132 1", "read 5 133 1", "read 5 49 12", "read 5 1 12"}));
    EXPECT_EQ(Ids(), (QList<int>{0x05030001, 0x05040100, 0x05050000, 0x050C0104}));
    for (int i = 0; i < 12; ++i)
        EXPECT_EQ(panel.Channel(i + 1).State(), now[i]) << i;
    UpdateAll();
    EXPECT_EQ(events.size(), 0);
}

TEST_F(Update, ReadsNoStatesOfOtherModels) {
    PanelClass& display = Put(5, Models::Q6200XT);
    PanelClass& remote = Put(6, Models::P5500);
    PanelClass& gone = Put(7, Models::Q7100);
    modules.Remove(7);
    UpdateAll();
    EXPECT_EQ(Sent(), (Lines{"read 5 132 1", "read 6 132 1", "read 6 133 1", "read 7 132 1",
                             "read 7 132 1", "read 7 132 1"}));
    EXPECT_TRUE(display.Present() && remote.Present());
    EXPECT_EQ(remote.ActualModel(), Models::P5500);
    EXPECT_FALSE(gone.Present());
    EXPECT_EQ(gone.ActualModel(), 0);
    EXPECT_EQ(events.size(), 0);

    // Its next polls tell the loss, once; an update that finds it again tells the return.
    gone.setNextPoll(0);
    Rounds(3);
    EXPECT_EQ(Ids(), QList<int>{0x07FF0100});
    UpdateAll();
    EXPECT_EQ(events.size(), 0) << "known";
    Put(7, Models::Q7100).setPresent(false);
    UpdateAll();
    EXPECT_EQ(Ids(), QList<int>{0x07FF0101});
    EXPECT_TRUE(gone.Present());
    UpdateAll();
    EXPECT_EQ(events.size(), 0);
}

TEST_F(Update, ForgivesTwoFailuresAndGivesAPanelUpAfterThree) {
    PanelClass& panel = Put(5, Models::Q7100);
    modules[5][3] = 1;
    Fail(49, 2);
    UpdateAll();
    EXPECT_EQ(Counters(panel), (QList<int>{0, 0, 0})) << "the second read counts anew";
    EXPECT_EQ(events.size(), 1);
    modules[5][3] = 0;
    Fail(1, 2);
    UpdateAll();
    EXPECT_EQ(Counters(panel), (QList<int>{2, 2, 0}));
    EXPECT_EQ(events.size(), 1);
    EXPECT_TRUE(panel.Present());

    modules[5][3] = 1;
    const std::pair<int, Lines> rows[] = {
        {49, {"read 5 132 1", "read 5 133 1", "read 5 49 12", "read 5 49 12", "read 5 49 12"}},
        {1,
         {"read 5 132 1", "read 5 133 1", "read 5 49 12", "read 5 1 12", "read 5 1 12",
          "read 5 1 12"}}};
    for (const auto& [registerNo, expected] : rows) {
        Put(5, Models::Q7100);
        for (int counter = 0; counter < 3; ++counter)
            panel.setErrCptr(counter, counter == 0 ? 0 : 2);
        Fail(registerNo, 9);
        UpdateAll();
        EXPECT_EQ(Sent(), expected);
        EXPECT_EQ(Counters(panel), (QList<int>{3, 2, 1}));
        EXPECT_EQ(Ids(), QList<int>{0x05FF0100});
        EXPECT_FALSE(panel.Present());
        EXPECT_EQ(panel.Channel(3).State(), 0);
    }
}

TEST_F(Midnight, IsAnotherDayThanOneSecondAgo) {
    Put(5, Models::Q6200XT);
    Tick(3, 15, 12, 0, 1);
    Tick(3, 15, 23, 59, 59);
    EXPECT_EQ(link->sent.size(), 0);
    EXPECT_EQ(engine->Commands().Count(), 0);
    Tick(3, 16, 0);
    EXPECT_EQ(Sent(), Lines{"read 5 132 1"});
    EXPECT_EQ(Waiting(), TextList({"0:0121=0000"}));
    EXPECT_NEAR(engine->Commands().Item(1)->SendTime(), clock.Now(), platform::OneSecond);
    Tick(3, 16, 0, 0, 1);
    EXPECT_EQ(link->sent.size(), 1) << "once";
    Rounds(1);
    EXPECT_EQ(Sent().back(), "write 0 289 0");
    EXPECT_EQ(engine->Commands().Count(), 0);
    EXPECT_TRUE(TraceLines().last().endsWith(Text("WRITE  COMMAND P00:0121 0000")))
        << "in the trace of the new day";
    // The same day of another month isn't seen as another day.
    link->sent.clear();
    Tick(4, 16, 0);
    EXPECT_EQ(link->sent.size(), 0);
}

TEST_F(Midnight, AClockThatLeapsDeletesNothingAheadOfTheNextOne) {
    const QString second = Path(Text("copies"));
    ASSERT_TRUE(QDir().mkpath(second));
    IniWrite(Text("Files"), Text("Histo"), second);
    IniWrite(Text("Files"), Text("PeriodTime"), Text("6"));
    WriteFile(Text("Histo202403.his"), "x");
    const auto traces = [&] { return QDir(Path(Text("Trace"))).count(); };
    const auto atRest = [&] {
        for (; engine->Second().IsBusy(); engine->tmrMidnight_Timer())
            QThread::msleep(1);
    };
    Tick(3, 15, 12);
    // A typing error in the year.
    clock.Set(2099, 3, 16, 12);
    engine->tmrMidnight_Timer();
    atRest();
    EXPECT_TRUE(QFile::exists(Path(Text("Histo202403.his"))));
    EXPECT_TRUE(QFile::exists(second + Text("/Histo202403.his")));
    const auto before = traces();
    clock.Set(2099, 3, 17);
    engine->tmrMidnight_Timer();
    atRest();
    EXPECT_FALSE(QFile::exists(Path(Text("Histo202403.his"))));
    EXPECT_FALSE(QFile::exists(second + Text("/Histo202403.his")));
    EXPECT_EQ(traces(), before) << "that of 2024 went, that of the day came";
}

TEST_F(Midnight, TheRecordOfTheDayIsForced) {
    Put(5, Models::Q6200XT).Channel(2).setState(3);
    Put(6, Models::Q7100).setActive(false);
    Put(7, Models::P5500);
    modules.Remove(7);
    Put(8, Models::None);
    Tick(3, 15, 12);
    const int before = LastEvent().toInt();
    Tick(4, 1, 0);
    EXPECT_EQ(Histo(Text("202403")), QStringList());
    const QStringList lines = Histo(Text("202404"));
    ASSERT_EQ(lines.size(), 3);
    EXPECT_TRUE(lines[0].startsWith(Text("2024-04-01 00:00:00")));
    for (const auto& [line, origin] : {std::pair(0, "P05-Q62"), {1, "P06-Q71"}, {2, "P07-P55"}})
        EXPECT_EQ(lines[line].mid(35, 7), Text(origin));
    EXPECT_TRUE(lines[0].contains(Text("030000000000000000000000")));
    EXPECT_EQ(LastEvent().toInt(), before + 3) << "each has a number of its own";
    EXPECT_EQ(events.size(), 0) << "no other consumer is served";
}

TEST_F(Midnight, WithTheBusAtRestOnlyTheClocksAreReset) {
    Put(5, Models::Q6200XT);
    engine->setRun(false);
    Tick(3, 15, 12);
    Forget();
    Tick(3, 16, 0);
    EXPECT_EQ(Sent(), Lines{"write 0 289 0"});
    EXPECT_EQ(engine->Commands().Count(), 0);
    EXPECT_EQ(Histo(Text("202403")), QStringList());
    EXPECT_EQ(TraceLines(), TextList({"2024-03-16 00:00:00 WRITE  COMMAND P00:0121 0000"}));

    link->setPortOpen(false);
    Forget();
    Tick(3, 17, 0);
    EXPECT_EQ(link->sent.size(), 0);
    EXPECT_EQ(TraceLines().size(), 1);

    // The reset is given up after four tries.
    link->setPortOpen(true);
    link->answer = [](const QByteArray&) -> QByteArray {
        throw platform::RunTimeError(platform::errors::DeviceIo);
    };
    Tick(3, 18, 0);
    EXPECT_EQ(Sent(), Lines(4, "write 0 289 0"));
    EXPECT_EQ(Boxes().size(), 1);
}

TEST_F(Midnight, FilesThatCantBeCaredForHoldNothingUp) {
    Put(5, Models::Q6200XT);
    Tick(3, 15, 12);
    ASSERT_TRUE(QDir().mkpath(Path(Text("Trace/20240316.log"))));
    // Nobody answers a box at midnight: all is done when it comes.
    int told = 0;
    Messages::Install([&](const QString& text, int, bool) {
        ++told;
        EXPECT_TRUE(text.contains(Text("Function : DoMidnightActions")));
        EXPECT_EQ(Histo(Text("202403")).size(), 1);
        EXPECT_EQ(Waiting(), TextList({"0:0121=0000"}));
        return int(Messages::Ok);
    });
    Tick(3, 16, 0);
    EXPECT_EQ(told, 1);
}

TEST_F(Midnight, ReleasesPulsesThatNothingHolds) {
    Put(5, Models::Q7100); // the sources
    Put(6, Models::Q7100);
    modules[5][2] = 1;
    Site().Panel(5).Channel(2).setState(1);
    // No event can come from a source out of all bounds, as that of channel 10.
    Site().Mirrors().Add(0, 1, 6, 10, MirrorClass::Pulse);
    // Source channel and kind of its rules, and whether it is released.
    const std::tuple<int, QList<std::pair<int, int>>, bool> rows[] = {
        {3, {{1, MirrorClass::Pulse}}, true},
        {4, {{2, MirrorClass::Pulse}}, false},
        {5, {{1, MirrorClass::Permanent}}, false},
        {6, {}, false},
        {7, {{1, MirrorClass::Pulse}, {2, MirrorClass::Pulse}}, false},
        {8, {{1, MirrorClass::Pulse}, {2, MirrorClass::Permanent}}, true},
        {9, {{2, MirrorClass::Permanent}, {1, MirrorClass::NoKind}}, false},
        {10, {{99, MirrorClass::Pulse}}, true},
        {12, {{1, MirrorClass::Pulse}, {3, MirrorClass::Pulse}}, true},
    };
    Lines expected;
    for (const auto& [channel, rules, released] : rows) {
        modules[6][channel] = 3;
        Site().Panel(6).Channel(channel).setState(3);
        for (const auto& [source, kind] : rules)
            Site().Mirrors().Add(5, qint16(source), 6, qint16(channel), qint16(kind));
        if (released)
            expected.push_back("write 6 " + std::to_string(16 + channel) + " 0");
    }
    Site().Mirrors().Add(5, 1, 6, 11, MirrorClass::Pulse); // a target that is at rest
    engine->MidnightSynchro();
    EXPECT_EQ(SentAfter(8), expected);
    for (const auto& [channel, rules, released] : rows)
        EXPECT_EQ(Site().Panel(6).Channel(channel).State(), released ? 0 : 3) << channel;
    EXPECT_EQ(engine->Commands().Count(), 0) << "carried out at once";
}

TEST_F(Midnight, ReleasesTheLampsOfADisplay) {
    Put(5, Models::Q7100);
    PanelClass& display = Put(6, Models::Q6200XT);
    for (const auto& [lamp, state] : {std::pair(2, -1), {9, 3}, {20, -1}, {24, 1}})
        display.Channel(lamp).setState(qint16(state));
    for (const qint16 target : {9, 24})
        Site().Mirrors().Add(5, 1, 6, target, MirrorClass::Pulse);
    engine->MidnightSynchro();
    EXPECT_EQ(SentAfter(5), (Lines{"write 6 64 1", "write 6 2 0", "write 6 20 0", "write 6 9 0",
                                   "write 6 64 1", "write 6 2 0", "write 6 20 0", "write 6 24 0"}));
    EXPECT_EQ(display.Channel(9).State() + display.Channel(24).State(), 0);
    EXPECT_EQ(display.Channel(2).State(), -1) << "kept for the acknowledgement";

    // A display that doesn't answer is released in the model alone.
    display.Channel(9).setState(3);
    modules.Remove(6);
    Forget();
    engine->MidnightSynchro();
    EXPECT_EQ(Addresses(6), QList<int>());
    EXPECT_EQ(display.Channel(9).State(), 0);
}

} // namespace
