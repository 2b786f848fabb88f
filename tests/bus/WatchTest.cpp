#include "bus/Engine.h"

#include "core/Forms.h"
#include "support/FakeConsole.h"
#include "support/Frames.h"

#include <QCoreApplication>
#include <QMouseEvent>
#include <QThread>
#include <csignal>

using Faults::Kind;

namespace {

QString Detail(Kind kind) {
    for (const Faults::Fault& fault : Faults::Standing()) {
        if (fault.kind == kind)
            return fault.detail;
    }
    return Text("none");
}

class Watch : public Engine {
protected:
    Watch() { Start(); }

    /// The states that a change brought, in their order.
    void Listen() {
        QObject::connect(engine.get(), &wPolling::StateChanged,
                         [this] { states += engine->State(); });
    }
    /// Minutes of rounds, one each ten seconds.
    void Minutes(int count) {
        for (int i = 0; i < 6 * count; ++i) {
            clock.Advance(10000);
            Rounds(4);
            engine->tmrReactiv_Timer();
        }
    }

    QList<BusState> states;
};

TEST_F(Watch, TheFirstReadingEndsWhenEachPanelWasAsked) {
    engine->setRun(false);
    EXPECT_EQ(engine->State(), BusState::Stopped);
    AddModule(5, Models::Q7100);
    AddModule(6, Models::P5500);
    AddModule(7, Models::Q6200XT).setActive(false);
    AddModule(8, 6); // a model of a later file
    modules.Remove(6);
    Listen();
    engine->setRun(true);
    Rounds(1);
    EXPECT_EQ(engine->State(), BusState::FirstReading);
    Rounds(8);
    EXPECT_EQ(states,
              (QList<BusState>{BusState::FirstReading, BusState::Running, BusState::Running}))
        << "asked, then missing";
    EXPECT_EQ(engine->MissingPanels(), QList<int>{6});
    EXPECT_FALSE(engine->BusLost());

    // A panel that is known as missing waits for its next try, and needs no new reading.
    engine->setRun(false);
    engine->setRun(true);
    Rounds(3);
    EXPECT_EQ(engine->State(), BusState::Running);
    modules.Remove(5);
    Rounds(6);
    EXPECT_TRUE(engine->BusLost());

    // So does a site that is loaded while the bus runs.
    Global::setConfiguration(std::make_unique<ConfigClass>());
    PanelClass& panel = Site().Panel(9);
    panel.setModel(Models::Q7100);
    panel.setActive(true);
    EXPECT_EQ(engine->State(), BusState::FirstReading);
    EXPECT_EQ(engine->MissingPanels(), QList<int>());
    Rounds(1);
    EXPECT_EQ(engine->State(), BusState::Running);
    EXPECT_EQ(engine->MissingPanels(), QList<int>{9});
    EXPECT_FALSE(engine->BusLost()) << "one panel is no bus";
}

TEST_F(Watch, ALostPortIsOneCauseAndIsFoundAgain) {
    AddModule(5, Models::Q7100);
    Rounds(1);
    Listen();
    link->canOpen = false;
    link->setPortOpen(false);
    engine->SendCommand(Write(5, 67, {2}));
    Rounds(6);
    EXPECT_EQ(engine->State(), BusState::PortLost);
    EXPECT_TRUE(engine->BusLost());
    ASSERT_EQ(engine->Commands().Count(), 1);
    EXPECT_EQ(engine->Commands().Item(1)->ErrorCount(), 0) << "no try is burnt";
    link->canOpen = true;
    engine->tmrReactiv_Timer();
    Rounds(2);
    EXPECT_EQ(engine->State(), BusState::Running);
    EXPECT_EQ(modules[5].value(67), 2);
    EXPECT_EQ(states.first(), BusState::PortLost);
    EXPECT_EQ(states.last(), BusState::Running);
}

TEST_F(Watch, ABusThatStartsByItselfWaitsForItsPort) {
    engine->setRun(false);
    link->setPortOpen(false);
    link->canOpen = false;
    AddModule(5, Models::Q6200XT);
    Forget();
    engine->RunWhenPortComes();
    engine->tmrReactiv_Timer();
    EXPECT_EQ(engine->State(), BusState::WaitsForPort);
    EXPECT_EQ(boxes, QStringList());
    link->canOpen = true;
    engine->tmrReactiv_Timer();
    EXPECT_TRUE(engine->Run());
    EXPECT_EQ(events.size(), 1);
    Rounds(1);
    EXPECT_EQ(engine->State(), BusState::Running);

    // Who stops a bus that waits has decided.
    engine->setRun(false);
    link->setPortOpen(false);
    link->canOpen = false;
    engine->RunWhenPortComes();
    engine->setRun(false);
    link->canOpen = true;
    engine->tmrReactiv_Timer();
    EXPECT_EQ(engine->State(), BusState::Stopped);
    engine->RunWhenPortComes();
    EXPECT_TRUE(engine->Run()) << "a port that is there is taken at once";
}

TEST_F(Watch, AnErrorOfTheRoundStopsTheBusAloud) {
    AddModule(5, Models::Q7100);
    const auto fails = QObject::connect(engine.get(), &wPolling::RoundDone, [] {
        throw platform::RunTimeError(platform::errors::Subscript);
    });
    Forget();
    engine->RunComm();
    EXPECT_FALSE(engine->Run());
    EXPECT_EQ(engine->State(), BusState::Stopped);
    EXPECT_TRUE(Faults::Stands(Kind::RoundStopped));
    EXPECT_EQ(Global::Get().currentPriority, 99);
    EXPECT_EQ(boxes.size(), 1);
    EXPECT_EQ(Ids(), QList<int>{0x00FE0005}) << "the record tells it too";
    QObject::disconnect(fails);
    engine->setRun(true);
    EXPECT_FALSE(Faults::Stands(Kind::RoundStopped));
    link->sent.clear();
    Rounds(2);
    EXPECT_EQ(link->sent.size(), 2);
}

// Channel 0, qualifier 3, code 14 is in no list: the trace can't word it.
TEST_F(Watch, AnUnknownCodeStopsNobody) {
    AddModule(5, Models::Q7100);
    AddModule(6, Models::Q7100);
    modules[5][144] = 1;
    modules[5][146] = 0xF3E0;
    engine->RunComm();
    EXPECT_EQ(boxes.size(), 1);
    EXPECT_TRUE(engine->Run());
    const auto later = link->sent.size();
    for (int i = 0; i < 6000 && link->sent.size() < later + 2; ++i) {
        QCoreApplication::processEvents();
        QThread::msleep(5);
    }
    EXPECT_GE(link->sent.size(), later + 2) << "the timer goes on by itself";
}

TEST_F(Watch, APanelThatTheCycleDoesntReachIsTold) {
    for (const int address : {1, 2, 64})
        AddModule(address, Models::Q7100);
    Minutes(1);
    EXPECT_EQ(engine->State(), BusState::FirstReading);
    Minutes(1);
    EXPECT_EQ(Detail(Kind::PanelNotPolled), Text("1"));
    EXPECT_EQ(engine->State(), BusState::Running) << "told as such";

    // Missing panels wait for their next try: 64 does, and 1 is polled in its place.
    modules.Remove(64);
    Minutes(12);
    EXPECT_EQ(engine->MissingPanels(), QList<int>{64});
    EXPECT_FALSE(Faults::Stands(Kind::PanelNotPolled));
    modules[64];
    Minutes(12);
    EXPECT_TRUE(Faults::Stands(Kind::PanelNotPolled));
    engine->setRun(false);
    engine->tmrReactiv_Timer();
    EXPECT_FALSE(Faults::Stands(Kind::PanelNotPolled)) << "a stopped bus polls nobody";
}

TEST_F(Watch, EveryPanelStartsAsALossUntold) {
    const auto configure = [](int address) -> PanelClass& {
        PanelClass& panel = Site().Panel(address);
        panel.setModel(Models::Q7100);
        panel.setActive(true);
        return panel;
    };
    modules[5];
    configure(5);
    configure(6);
    Rounds(8);
    EXPECT_EQ(Ids(), QList<int>{0x06FF0100});
    modules[6];
    clock.Advance(61000);
    Rounds(3);
    EXPECT_EQ(Ids().mid(1), QList<int>{0x06FF0101}) << "the return from a loss that was told";
    EXPECT_EQ(engine->MissingPanels(), QList<int>());
}

TEST_F(Watch, ACommandGivenUpStandsUntilOneIsTaken) {
    engine->SendCommand(Write(7, 67, {2}));
    engine->SendCommand(Write(9, 0x13, {3}));
    Rounds(3);
    EXPECT_EQ(Detail(Kind::CommandGivenUp), Text("P07:0043 P09:0013"));
    modules[7];
    engine->SendCommand(Write(7, 66, {1}));
    Rounds(1);
    EXPECT_EQ(Detail(Kind::CommandGivenUp), Text("P09:0013"));
    clock.Advance(590000);
    engine->tmrReactiv_Timer();
    EXPECT_TRUE(Faults::Stands(Kind::CommandGivenUp));
    clock.Advance(20000);
    engine->tmrReactiv_Timer();
    EXPECT_FALSE(Faults::Stands(Kind::CommandGivenUp));
}

// A dead module costs more than half a second a command; input must not wait for all of them.
TEST_F(Watch, ALongQueueIsPartedAndGoesOnWhereItStopped) {
    AddModule(5, Models::Q7100);
    for (int registerNo = 17; registerNo <= 28; ++registerNo)
        engine->SendCommand(Write(9, registerNo, {3}));
    engine->SendCommand(Write(5, 67, {2}));
    qint64 longest = 0;
    int ticks = 0;
    bool done = false;
    QObject::connect(engine.get(), &wPolling::RoundDone, [&] { done = true; });
    for (; !done && ticks < 100; ++ticks) {
        const qint64 before = clock.MonotonicMs();
        engine->RunComm();
        longest = std::max(longest, clock.MonotonicMs() - before);
    }
    EXPECT_LE(longest, CommFunctions::WriteDeadline + CommFunctions::FrameGap);
    const QList<int> writes = Addresses(6);
    EXPECT_EQ(writes, QList<int>(12, 9) + QList<int>{5}) << "each once, in order";
    EXPECT_EQ(engine->Commands().Count(), 12) << "purged when the walk was through";

    // A stop in the middle of a walk settles what was carried out.
    modules[9];
    engine->RunComm();
    engine->setRun(false);
    engine->RunComm();
    const int left = engine->Commands().Count();
    EXPECT_GT(left, 0);
    EXPECT_LT(left, 12);
    engine->setRun(true);
    link->sent.clear();
    Rounds(1);
    EXPECT_EQ(Addresses(6).size(), left);
}

TEST_F(Watch, AClockSetBackIsToldUntilItsTimesAreOver) {
    engine->tmrMidnight_Timer();
    clock.Set(clock.Now() - platform::OneMinute * 60);
    engine->tmrMidnight_Timer();
    EXPECT_TRUE(Faults::Stands(Kind::ClockSetBack));
    clock.Advance(3590000);
    engine->tmrReactiv_Timer();
    EXPECT_TRUE(Faults::Stands(Kind::ClockSetBack));
    clock.Advance(20000);
    engine->tmrReactiv_Timer();
    EXPECT_FALSE(Faults::Stands(Kind::ClockSetBack));
    clock.Set(clock.Now() - 30);
    engine->tmrMidnight_Timer();
    clock.Advance(7210000);
    engine->tmrReactiv_Timer();
    EXPECT_FALSE(Faults::Stands(Kind::ClockSetBack)) << "a clock that was a month ahead";
}

TEST_F(Watch, AFillingDiskIsTold) {
    const auto look = [this](qint64 free) {
        platform::OverrideSpace(platform::Space{free, 100'000'000});
        engine->tmrReactiv_Timer();
        return Detail(Kind::DiskNearlyFull) + u'/' + Detail(Kind::DiskFull);
    };
    EXPECT_EQ(look(5'000'000), Text("none/none"));
    EXPECT_EQ(look(4'999'000), Text("4 %/none"));
    EXPECT_EQ(look(5'900'000), Text("5 %/none")) << "doesn't flicker";
    EXPECT_EQ(look(1'000), Text("none/"));
    EXPECT_EQ(look(6'100'000), Text("none/none"));
    platform::OverrideSpace(platform::Space{2'000'000, 100'000'000});
    Load();
    EXPECT_EQ(Detail(Kind::DiskNearlyFull), Text("2 %")) << "at the start already";
}

TEST_F(Watch, AStartThatSpansMidnightDoesntMissIt) {
    engine = nullptr;
    auto next = std::make_unique<FakeLink>();
    engine = std::make_unique<wPolling>(std::move(next));
    clock.Set(2024, 3, 16, 0, 0, 5);
    engine->Form_Load(clock.Now() - platform::OneMinute);
    engine->tmrMidnight_Timer();
    EXPECT_TRUE(TraceLines().last().contains(Text("COMMAND P00:0121 0000")));
    const auto lines = TraceLines().size();
    engine->tmrMidnight_Timer();
    EXPECT_EQ(TraceLines().size(), lines);
}

TEST_F(Watch, ASignalEndsTheSynchronisationAfterItsExchange) {
    const platform::ShutdownWatch signals;
    for (int address = 1; address <= 11; ++address)
        AddPanel(address, Models::Q7100);
    engine->SynchroGeneraleBus();
    const auto whole = link->sent.size();
    EXPECT_EQ(whole, 33) << "three questions each";
    for (const bool midnight : {false, true}) {
        link->sent.clear();
        link->answer = [this](const QByteArray& frame) {
            if (link->sent.size() == 4)
                std::raise(SIGTERM);
            return modules.Answer(frame);
        };
        if (midnight)
            engine->MidnightSynchro();
        else
            engine->SynchroGeneraleBus();
        EXPECT_LE(link->sent.size(), 5) << midnight;
        EXPECT_TRUE(platform::ShutdownWatch::Pending());
    }
    // A midnight at the end of the program: what was kept would set the clocks at the next start.
    link->answer = [this](const QByteArray& frame) { return modules.Answer(frame); };
    engine->tmrMidnight_Timer();
    clock.Advance(86400000);
    link->sent.clear();
    engine->tmrMidnight_Timer();
    EXPECT_EQ(engine->Commands().Count(), 0);
    EXPECT_EQ(Addresses(6), QList<int>{0});
}

// What was touched while nothing could answer; the second half of a touch comes later.
TEST_F(Watch, TouchesMadeWhileTheBusSynchronisesAreThrownAway) {
    class Target : public QObject {
    public:
        int seen = 0;
        bool event(QEvent* event) override {
            seen += event->type() == QEvent::User ? 0 : 1;
            return true;
        }
    } target;
    const auto touch = [&](QEvent::Type type) {
        QCoreApplication::postEvent(&target,
                                    new QMouseEvent(type, QPointF(), QPointF(), Qt::LeftButton,
                                                    Qt::LeftButton, Qt::NoModifier));
    };
    AddModule(5, Models::Q6200XT);
    bool once = true;
    link->answer = [&](const QByteArray& frame) {
        if (std::exchange(once, false)) {
            for (const auto type :
                 {QEvent::MouseButtonPress, QEvent::MouseButtonRelease, QEvent::MouseButtonPress})
                touch(type);
        }
        return modules.Answer(frame);
    };
    engine->SynchroGeneraleBus();
    touch(QEvent::MouseButtonRelease);
    QCoreApplication::processEvents();
    EXPECT_EQ(target.seen, 0);
    touch(QEvent::MouseButtonPress);
    touch(QEvent::MouseButtonRelease);
    QCoreApplication::processEvents();
    EXPECT_EQ(target.seen, 2) << "the next touch is taken";
}

} // namespace
