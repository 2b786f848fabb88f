#include "bus/EventMemory.h"

#include "bus/Miroirs.h"

#include <QCursor>
#include <QGuiApplication>
#include <QTimer>

namespace {

/// Modules that tell their model as the real ones do; the first start of the bus is the test's.
class Synchro : public EngineWithConsole {
protected:
    Synchro() {
        link->answer = [this](const QByteArray& frame) { return Answer(frame); };
        Load();
    }
    ~Synchro() override { Messages::InstallNotice(nullptr); }

    /// A module that says `model` of itself, under a panel configured as `configured`.
    PanelClass& Put(int address, int model, int configured = -1) {
        PanelClass& panel = AddModule(address, configured < 0 ? model : configured);
        panel.setPresent(false);
        modules[address][132] = model == Models::Q6200XT ? 2 : 1;
        if (model != Models::Q7000)
            modules[address][133] = model == Models::Q7100 ? 1 : (model == Models::P5500 ? 2 : 0);
        return panel;
    }
    virtual QByteArray Answer(const QByteArray& frame) {
        if (inFrame)
            inFrame(frame);
        // Of the register that not all have some say nothing.
        const bool silent =
            FakeModules::WordAt(frame, 2) == 133 && !modules[quint8(frame[0])].contains(133);
        return silent ? QByteArray() : modules.Answer(frame);
    }
    static void Add(Lines& lines, const Lines& more) {
        lines.insert(lines.end(), more.begin(), more.end());
    }
    /// What the second pass writes to a module with channels.
    static void AddReset(Lines& lines, const std::string& address) {
        for (int registerNo = 17; registerNo <= 28; ++registerNo)
            lines.push_back("write " + address + " " + std::to_string(registerNo) + " 0");
        Add(lines, {"write " + address + " 67 2", "read " + address + " 144 1"});
    }
    QList<EventClass> ChannelEvents() const {
        QList<EventClass> list;
        for (const EventClass& event : events)
            if (Family::IsChannel(event.Chnl()))
                list += event;
        return list;
    }

    std::function<void(const QByteArray&)> inFrame;
};

TEST_F(Synchro, AsksResetsAndReadsEachModelInThreePasses) {
    const std::pair<int, int> actual[] = {
        {3, Models::Q7100}, {9, Models::Q6200XT}, {21, Models::Q7000}, {64, Models::P5500}};
    for (const auto& [address, model] : actual)
        Put(address, model);
    PanelClass& other = Put(40, Models::Q7100, Models::P5000);
    Put(50, Models::Q7100, Models::None); // in the bus, not in the site
    modules[3][144] = 2;
    modules[21][144] = 62;
    engine->setRun(true);
    Lines expected = {"read 3 132 1",  "read 3 133 1",  "read 3 49 12",  "read 9 132 1",
                      "read 21 132 1", "read 21 133 1", "read 21 49 12", "read 40 132 1",
                      "read 40 133 1", "read 40 49 12", "read 64 132 1", "read 64 133 1"};
    AddReset(expected, "3");
    Add(expected, {"write 3 288 2", "write 9 64 0", "read 9 68 1", "write 9 0 0"});
    AddReset(expected, "21");
    Add(expected, {"write 21 288 62"});
    AddReset(expected, "40");
    AddReset(expected, "64");
    Add(expected, {"read 3 1 12", "read 21 1 12", "read 40 1 12", "read 64 1 12"});
    EXPECT_EQ(Sent(), expected);
    for (const auto& [address, model] : actual) {
        EXPECT_EQ(Site().Panel(address).ActualModel(), model) << address;
        EXPECT_TRUE(Site().Panel(address).Present());
    }
    EXPECT_EQ(other.ActualModel(), Models::Q7100);
    EXPECT_EQ(other.Model(), Models::P5000) << "the configured model stays";
    const auto told = [this] { return TraceLines().filter(Text(", REPORTS ")); };
    EXPECT_EQ(told(), QStringList()) << "a P5000 reports nothing else";
    Site().Panel(21).setModel(Models::Q6200XT);
    Site().Panel(64).setModel(Models::P5500 + 1);
    engine->SynchroGeneraleBus();
    ASSERT_EQ(told().size(), 2);
    EXPECT_TRUE(told()[0].endsWith(Text(" PANEL 21 IS SET UP AS Q6200XT, REPORTS Q7000")));
    EXPECT_TRUE(told()[1].endsWith(Text(" PANEL 64 IS SET UP AS 6, REPORTS P5500")));
}

TEST_F(Synchro, SilenceCostsThreeQuestionsAndNoMore) {
    PanelClass& silent = AddPanel(5, Models::Q7100);
    PanelClass& late = Put(6, Models::Q6200XT);
    for (PanelClass* panel : {&silent, &late})
        for (int counter = 0; counter < 3; ++counter)
            panel->setErrCptr(counter, 2);
    int questions = 0;
    link->answer = [&](const QByteArray& frame) {
        return quint8(frame[0]) == 6 && ++questions < 3 ? QByteArray() : Answer(frame);
    };
    engine->setRun(true);
    EXPECT_EQ(Sent(),
              (Lines{"read 5 132 1", "read 5 132 1", "read 5 132 1", "read 6 132 1", "read 6 132 1",
                     "read 6 132 1", "write 6 64 0", "read 6 68 1", "write 6 0 0"}));
    EXPECT_EQ(link->waitedMs, (3 + 2) * 1028);
    EXPECT_FALSE(silent.Present());
    EXPECT_EQ(silent.ActualModel(), 0);
    EXPECT_EQ(silent.ErrCptr(1) + silent.ErrCptr(2), 0);
    EXPECT_TRUE(late.Present());
    EXPECT_EQ(Counters(late), (QList<int>{0, 0, 0}));
    EXPECT_EQ(Ids(), QList<int>{0x00FE0004});
    late.setActive(false);
    for (const int polls : {3, 1}) {
        silent.setNextPoll(clock.Now() - 1);
        Rounds(polls);
        EXPECT_EQ(Ids().mid(1), QList<int>{0x05FF0100}) << "once";
    }
}

TEST_F(Synchro, AModuleThatDiesHalfWayHoldsUpNobody) {
    for (const int address : {5, 6}) {
        Put(address, Models::Q7100);
        modules[address][4] = 1;
    }
    modules[5][144] = 9;
    inFrame = [this](const QByteArray& frame) {
        if (Frames::Said(frame) == "write 5 20 0")
            modules.Remove(5);
    };
    engine->setRun(true);
    Lines expected = {"read 5 132 1", "read 5 133 1", "read 5 49 12",
                      "read 6 132 1", "read 6 133 1", "read 6 49 12"};
    AddReset(expected, "5");
    AddReset(expected, "6");
    Add(expected, {"read 5 1 12", "read 6 1 12"});
    EXPECT_EQ(Sent(), expected);
    EXPECT_EQ(Fields(ChannelEvents()), TextList({"6/4 0 1 -1"}));
    EXPECT_TRUE(Site().Panel(5).Present()) << "its next polls tell the loss";
    EXPECT_EQ(Site().Panel(5).ErrCptr(0), 0);
}

TEST_F(Synchro, StandingStatesBecomeEventsWithTheirQualifiers) {
    const int standing[] = {1, 3, 5, 0, 2, 4};
    const int qualifiers[] = {0, 1, 1, 1, 2, 1};
    for (const auto& [address, model] : {std::pair(5, Models::Q7100),
                                         {6, Models::P5500},
                                         {7, Models::Q6200XT},
                                         {8, Models::Q7000}}) {
        Put(address, model);
        for (int i = 0; i < 6; ++i) {
            modules[address][1 + i] = quint16(standing[i]);
            modules[address][49 + i] = quint16(qualifiers[i]);
        }
    }
    modules[5][12] = 1;
    modules[5][60] = 1;
    // The qualifiers of module 8 can't be read; those of module 5 are read ahead of the reset.
    link->answer = [this](const QByteArray& frame) {
        if (Frames::Said(frame) == "write 5 67 2")
            modules[5][49] = 1;
        return Frames::Said(frame) == "read 8 49 12" ? QByteArray() : Answer(frame);
    };
    for (int number = 1; number <= 24; ++number)
        Site().Panel(7).Channel(number).setState(3);
    engine->setRun(true);
    EXPECT_EQ(Fields(ChannelEvents()),
              TextList({"5/1 0 1 -1", "5/2 1 3 -1", "5/3 1 0 -1", "5/5 2 2 -1", "5/6 1 4 -1",
                        "5/12 1 1 -1", "6/1 0 1 -1", "6/2 0 3 -1", "6/3 0 0 -1", "6/5 0 2 -1",
                        "6/6 0 4 -1", "8/1 0 1 -1", "8/2 0 3 -1", "8/3 0 0 -1", "8/5 0 2 -1",
                        "8/6 0 4 -1"}));
    for (int number = 1; number <= 24; ++number)
        EXPECT_EQ(Site().Panel(7).Channel(number).State(), 0) << number;
    const QStringList traced = TraceLines().filter(Text("SYNCHRO"));
    ASSERT_EQ(traced.size(), 16);
    EXPECT_EQ(traced[0].mid(27, 38), Text("SYNCHRO 05010001 P05-C01 State  ACTIVE"));
    EXPECT_EQ(Site().Panel(5).Channel(6).State(), 4);
    EXPECT_EQ(horn->starts, 0);
}

TEST_F(Synchro, StandingStatesAreMirroredEvenOutOfOrder) {
    Put(5, Models::Q7100).Channel(1).setOutOfOrder(true);
    Put(6, Models::Q7100);
    for (const qint16 channel : {1, 2}) {
        modules[5][channel] = 1;
        Site().Mirrors().Add(5, channel, 6, qint16(3 + channel), MirrorClass::Permanent);
    }
    engine->setRun(true);
    EXPECT_EQ(ChannelEvents().size(), 1);
    EXPECT_EQ(Waiting(), TextList({"6:0014=0003", "6:0015=0003"}));
}

TEST_F(Synchro, TheConsoleIsEmptiedAheadOfTheFirstAlarm) {
    Put(5, Models::Q7100);
    modules[5][3] = 1;
    Forms::Load(Text("wRunAlarms"));
    console->rows = {{Text("12 2024-03-14 10:00:00"), 0x05010001}};
    QList<int> rows;
    QObject::connect(engine.get(), &wPolling::BusEvent,
                     [&] { rows += AlarmConsole::Loaded()->RowCount(); });
    engine->setRun(true);
    EXPECT_EQ(rows, (QList<int>{1, 0})) << "the start of the bus, then the alarm";

    // A console that isn't there is loaded, but not put in front of anybody.
    console.reset();
    log.clear();
    engine->SynchroGeneraleBus();
    EXPECT_NE(console, nullptr);
    EXPECT_EQ(log, QStringList());
}

TEST_F(Synchro, RunsWithTheFirstStartThatSucceeds) {
    Put(5, Models::Q6200XT);
    link->setPortOpen(false);
    link->canOpen = false;
    engine->setRun(true);
    EXPECT_EQ(link->sent.size() + events.size(), 0);
    EXPECT_FALSE(engine->Run());
    EXPECT_EQ(Boxes(), TextList({"Serial port COM1 cannot be opened."}));
    link->canOpen = true;
    const qsizetype before = TraceLines().size();
    // A second touch of the button, from the yield inside.
    QTimer::singleShot(0, engine.get(), [this] { engine->setRun(!engine->Run()); });
    engine->setRun(true);
    EXPECT_EQ(Sent(), (Lines{"read 5 132 1", "write 5 64 0", "read 5 68 1", "write 5 0 0"}));
    const QStringList lines = TraceLines().mid(before);
    ASSERT_EQ(lines.size(), 3);
    EXPECT_TRUE(lines[0].contains(Text("COMM   START")));
    EXPECT_EQ(lines[1], Text("2024-03-15 12:00:00 SYNCHR         ******** SYSTEM  COMM   SYNCHR ") +
                            QString(26, u'*') + u' ' + QString(39, u'*'));
    EXPECT_TRUE(lines[2].contains(Text("REINIT")));
    EXPECT_TRUE(engine->Run());
    Forget();
    // A start of a bus that runs is told again and changes nothing else.
    engine->setRun(true);
    EXPECT_TRUE(TraceLines().last().contains(Text("COMM   START")));
    engine->setRun(false);
    engine->setRun(true);
    EXPECT_EQ(link->sent.size(), 0);
}

TEST_F(Synchro, ANoticeAndTheMarksStandMeanwhile) {
    Put(5, Models::Q6200XT);
    QStringList steps;
    Messages::InstallNotice([&](const QString& text) {
        EXPECT_EQ(text, GetText(30015));
        steps += Text("notice");
        return Messages::ShownNotice{[&] { steps += Text("gone"); }, nullptr};
    });
    QObject::connect(engine.get(), &wPolling::Synchronising,
                     [&](bool on) { steps += on ? Text("on") : Text("off"); });
    QTimer::singleShot(0, [&] { steps += Text("yield"); });
    inFrame = [&](const QByteArray&) {
        steps += Text("frame");
        ASSERT_NE(QGuiApplication::overrideCursor(), nullptr);
        EXPECT_EQ(QGuiApplication::overrideCursor()->shape(), Qt::WaitCursor);
    };
    engine->SynchroGeneraleBus();
    EXPECT_EQ(steps.mid(0, 7),
              TextList({"notice", "yield", "on", "frame", "frame", "frame", "frame"}));
    EXPECT_EQ(steps.size(), 9);
    EXPECT_TRUE(steps.contains(Text("off")) && steps.contains(Text("gone")));
    EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);

    // A trace that can't be written stops nothing; opening a folder as a file closes it.
    Forget();
    ASSERT_TRUE(QDir().mkpath(Path(Text("Trace/20240316.log"))));
    clock.Set(2024, 3, 16);
    EXPECT_ANY_THROW(Trace::OpenToday());
    engine->SynchroGeneraleBus();
    EXPECT_EQ(link->sent.size(), 4);
    EXPECT_TRUE(Boxes().value(0).contains(Text("Function : SynchroGeneraleBus")));
}

TEST_F(Synchro, AnEndInTheMiddleIsTheEnd) {
    Put(5, Models::Q7100);
    Put(6, Models::Q7100);
    modules[6][2] = 1;
    for (const std::string moment : {"read 6 132 1", "write 5 67 2", "read 5 1 12"}) {
        Load();
        console.reset();
        inFrame = [&](const QByteArray& frame) {
            if (Frames::Said(frame) == moment)
                engine->Form_Unload();
        };
        engine->setRun(true);
        EXPECT_EQ(Sent().back(), moment) << "nothing goes out behind it";
        EXPECT_FALSE(link->PortOpen());
        EXPECT_EQ(ChannelEvents().size(), 0);
        EXPECT_EQ(console != nullptr, moment == "read 5 1 12") << moment;
    }
    // In the yield ahead of the first exchange the port stays closed.
    Load();
    console.reset();
    const qsizetype lines = TraceLines().size();
    QTimer::singleShot(0, [this] { engine->Form_Unload(); });
    engine->SynchroGeneraleBus();
    EXPECT_FALSE(link->PortOpen());
    EXPECT_EQ(link->sent.size(), 0);
    EXPECT_EQ(TraceLines().size(), lines);
    EXPECT_EQ(console, nullptr);
}

/// A running bus with a receipt in its queue, on which the technician orders the synchronisation.
class SynchroMemory : public Synchro {
protected:
    SynchroMemory() {
        engine->setRun(true);
        Put(Address, Models::Q7100);
        Forget();
    }

    static constexpr int Address = 5;

    QByteArray Answer(const QByteArray& frame) override {
        return memory.Answer(frame, [this](const auto& other) { return Synchro::Answer(other); });
    }

    EventMemory memory{modules, Address};
};

TEST_F(SynchroMemory, AWaitingReceiptDropsNothingThatComesLater) {
    memory.Happen(2);
    Rounds(1);
    ASSERT_EQ(engine->Commands().Count(), 1);
    engine->SendCommand(Write(Address, 66, {1}));
    memory.Happen(3);
    engine->SynchroGeneraleBus();
    EXPECT_TRUE(memory.waiting.isEmpty());
    EXPECT_EQ(Waiting(), TextList({"5:0042=0001"})) << "other commands stay";
    memory.Happen(2);
    Rounds(4);
    EXPECT_EQ(EventMemory::Clocks(events), (QList<int>{1, 2, 6, 7}));
    EXPECT_TRUE(memory.waiting.isEmpty());
}

TEST_F(SynchroMemory, AnOrderThatIsLostBringsNoEventTwiceAndLosesNone) {
    memory.Happen(2);
    Rounds(1);
    memory.Happen(1);
    memory.deaf = 1;
    engine->SynchroGeneraleBus();
    EXPECT_EQ(memory.waiting.size(), 3);
    Rounds(4);
    memory.ExpectAll(events);
    memory.Happen(2);
    Rounds(1);
    memory.mute = 1;
    engine->SynchroGeneraleBus();
    memory.Happen(2);
    Rounds(4);
    memory.ExpectAll(events);
}

} // namespace
