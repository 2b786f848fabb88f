#include "bus/Engine.h"

#include <QCoreApplication>
#include <QMouseEvent>
#include <csignal>

using Faults::Kind;

namespace {

QString Detail(Kind kind) {
    for (const Faults::Fault& fault : Faults::Standing())
        if (fault.kind == kind)
            return fault.detail;
    return Text("none");
}

class Watch : public Engine {
protected:
    Watch() { Start(); }

    /// Minutes of rounds, one each ten seconds.
    void Minutes(int count) {
        for (int i = 0; i < 6 * count; ++i) {
            clock.Advance(10000);
            Rounds(4);
            engine->tmrReactiv_Timer();
        }
    }
    /// The detail of a fault after some seconds; "none" if it doesn't stand.
    QString After(int seconds, Kind kind) {
        clock.Advance(seconds * qint64(1000));
        engine->tmrReactiv_Timer();
        return Detail(kind);
    }
    void TakePort(bool there) {
        link->canOpen = there;
        if (!there)
            link->setPortOpen(false);
    }
};

TEST_F(Watch, TheFirstReadingEndsWhenEachPanelWasAsked) {
    engine->setRun(false);
    AddModule(5, Models::Q7100);
    AddModule(6, Models::P5500);
    AddModule(7, Models::Q6200XT).setActive(false);
    AddModule(8, 6); // a model of a later file
    modules.Remove(6);
    stateChanges.clear();
    engine->setRun(true);
    Rounds(1);
    EXPECT_EQ(engine->State(), BusState::FirstReading);
    Rounds(8);
    EXPECT_EQ(stateChanges,
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

    // A site that is loaded while the bus runs is read first; its panels are losses untold.
    Global::setConfiguration(std::make_unique<ConfigClass>());
    Forget();
    Site().Panel(9).setModel(Models::Q7100);
    Site().Panel(9).setActive(true);
    EXPECT_EQ(engine->State(), BusState::FirstReading);
    EXPECT_EQ(engine->MissingPanels(), QList<int>());
    Rounds(1);
    EXPECT_EQ(engine->State(), BusState::Running);
    EXPECT_EQ(engine->MissingPanels(), QList<int>{9});
    EXPECT_FALSE(engine->BusLost()) << "one panel is no bus";
    Rounds(2);
    modules[9];
    clock.Advance(61000);
    Rounds(1);
    EXPECT_EQ(Ids(), (QList<int>{0x09FF0100, 0x09FF0101}));
}

TEST_F(Watch, ALostPortIsOneCauseAndIsFoundAgain) {
    PanelClass& panel = AddModule(5, Models::Q7100);
    Rounds(1);
    stateChanges.clear();
    TakePort(false);
    engine->SendCommand(Write(5, 67, {2}));
    Rounds(6);
    engine->tmrReactiv_Timer();
    EXPECT_EQ(engine->State(), BusState::PortLost);
    EXPECT_TRUE(engine->BusLost());
    EXPECT_EQ(engine->Commands().Item(1)->ErrorCount(), 0) << "no try is burnt";
    panel.setNextPoll(clock.Now() + 1);
    TakePort(true);
    engine->tmrReactiv_Timer();
    EXPECT_LT(panel.NextPoll(), clock.Now()) << "what went missing is asked at once";
    Rounds(2);
    EXPECT_EQ(modules[5].value(67), 2);
    EXPECT_EQ(stateChanges.first(), BusState::PortLost);
    EXPECT_EQ(stateChanges.last(), BusState::Running);

    engine->setRun(false);
    link->setPortOpen(false);
    engine->tmrReactiv_Timer();
    EXPECT_FALSE(link->PortOpen()) << "not for a bus at rest";
}

TEST_F(Watch, ABusThatStartsByItselfWaitsForItsPort) {
    engine->setRun(false);
    TakePort(false);
    AddModule(5, Models::Q6200XT);
    Forget();
    engine->RunWhenPortComes();
    engine->tmrReactiv_Timer();
    engine->setRun(true);
    EXPECT_EQ(Boxes().size(), 1);
    EXPECT_EQ(engine->State(), BusState::WaitsForPort) << "also behind a start in vain";
    TakePort(true);
    engine->tmrReactiv_Timer();
    EXPECT_TRUE(engine->Run());
    EXPECT_EQ(events.size(), 1);
    Rounds(1);
    EXPECT_EQ(engine->State(), BusState::Running);

    // Who stops a bus that waits has decided.
    engine->setRun(false);
    TakePort(false);
    engine->RunWhenPortComes();
    engine->setRun(false);
    TakePort(true);
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
    EXPECT_EQ(engine->State(), BusState::Stopped);
    EXPECT_TRUE(Faults::Stands(Kind::RoundStopped));
    EXPECT_EQ(Global::Get().currentPriority, 99);
    EXPECT_EQ(Boxes().size(), 1);
    EXPECT_EQ(Ids(), QList<int>{0x00FE0005}) << "the record tells it too";
    QObject::disconnect(fails);
    engine->setRun(true);
    EXPECT_FALSE(Faults::Stands(Kind::RoundStopped));
    link->sent.clear();
    Rounds(2);
    EXPECT_EQ(link->sent.size(), 2);
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

    // Nobody knows how to ask one of a model of later.
    Site().Panel(2).setModel(Models::P5500 + 1);
    Minutes(2);
    EXPECT_EQ(Detail(Kind::PanelNotPolled), Text("2"));
    EXPECT_FALSE(wPolling::IsWatched(2));
    Site().Panel(2).setModel(Models::Q7100);
    Minutes(1);
    EXPECT_FALSE(Faults::Stands(Kind::PanelNotPolled));
    modules[64];
    Minutes(12);
    EXPECT_TRUE(Faults::Stands(Kind::PanelNotPolled));
    engine->setRun(false);
    engine->tmrReactiv_Timer();
    EXPECT_FALSE(Faults::Stands(Kind::PanelNotPolled)) << "a stopped bus polls nobody";
}

TEST_F(Watch, ACommandGivenUpStandsUntilOneIsTaken) {
    engine->SendCommand(Write(7, 67, {2}));
    engine->SendCommand(Write(9, 0x13, {3}));
    Rounds(3);
    EXPECT_EQ(Detail(Kind::CommandGivenUp), Text("P07:0043 P09:0013"));
    modules[7];
    engine->SendCommand(Write(7, 66, {1}));
    Rounds(1);
    EXPECT_EQ(After(590, Kind::CommandGivenUp), Text("P09:0013"));
    EXPECT_EQ(After(20, Kind::CommandGivenUp), Text("none"));
}

// A dead module costs more than half a second a command; input must not wait for all of them.
TEST_F(Watch, ALongQueueIsPartedAndGoesOnWhereItStopped) {
    AddModule(5, Models::Q7100);
    for (int registerNo = 17; registerNo <= 28; ++registerNo)
        engine->SendCommand(Write(9, registerNo, {3}));
    engine->SendCommand(Write(5, 67, {2}));
    qint64 longest = 0;
    rounds.clear();
    for (int ticks = 0; rounds.isEmpty() && ticks < 100; ++ticks) {
        const qint64 before = clock.MonotonicMs();
        engine->RunComm();
        longest = std::max(longest, clock.MonotonicMs() - before);
    }
    EXPECT_LE(longest, CommFunctions::WriteDeadline + CommFunctions::FrameGap);
    EXPECT_EQ(Addresses(6), QList<int>(12, 9) + QList<int>{5}) << "each once, in order";
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
    const auto setBack = [this](platform::DateTime time) {
        engine->tmrMidnight_Timer();
        clock.Set(clock.Now() - time);
        engine->tmrMidnight_Timer();
        EXPECT_TRUE(Faults::Stands(Kind::ClockSetBack));
    };
    setBack(platform::OneMinute * 60);
    EXPECT_NE(After(3590, Kind::ClockSetBack), Text("none"));
    EXPECT_EQ(After(20, Kind::ClockSetBack), Text("none"));
    setBack(30);
    EXPECT_EQ(After(7210, Kind::ClockSetBack), Text("none")) << "it was a month ahead";
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
    engine = std::make_unique<wPolling>(std::make_unique<FakeLink>());
    clock.Set(2024, 3, 16, 0, 0, 5);
    engine->Form_Load(clock.Now() - platform::OneMinute);
    engine->tmrMidnight_Timer();
    engine->tmrMidnight_Timer();
    EXPECT_EQ(TraceLines().filter(Text("COMMAND P00:0121 0000")).size(), 1);
}

TEST_F(Watch, ASignalEndsTheSynchronisationAfterItsExchange) {
    const platform::ShutdownWatch signals;
    for (int address = 1; address <= 11; ++address)
        AddPanel(address, Models::Q7100);
    engine->SynchroGeneraleBus();
    // A slow machine may poll between them.
    EXPECT_GE(link->sent.size(), 33) << "three questions each";
    for (const bool midnight : {false, true}) {
        link->sent.clear();
        link->answer = [this](const QByteArray& frame) {
            if (link->sent.size() == 4)
                std::raise(SIGTERM);
            return modules.Answer(frame);
        };
        midnight ? engine->MidnightSynchro() : engine->SynchroGeneraleBus();
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
    const auto touch = [&](std::initializer_list<QEvent::Type> types) {
        for (const QEvent::Type type : types)
            QCoreApplication::postEvent(&target,
                                        new QMouseEvent(type, QPointF(), QPointF(), Qt::LeftButton,
                                                        Qt::LeftButton, Qt::NoModifier));
    };
    constexpr auto Press = QEvent::MouseButtonPress;
    constexpr auto Release = QEvent::MouseButtonRelease;
    AddModule(5, Models::Q6200XT);
    link->answer = [&](const QByteArray& frame) {
        if (link->sent.size() == 1)
            touch({Press, Release, Press});
        return modules.Answer(frame);
    };
    engine->SynchroGeneraleBus();
    touch({Release});
    QCoreApplication::processEvents();
    EXPECT_EQ(target.seen, 0);
    touch({Press, Release});
    QCoreApplication::processEvents();
    EXPECT_EQ(target.seen, 2) << "the next touch is taken";
}

} // namespace
