#include "bus/Engine.h"

#include "platform/ServiceManager.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QRegularExpression>
#include <QScopeGuard>

namespace {

class Cycle : public Engine {
protected:
    Cycle() { Start(); }

    /// Addresses polled in so many rounds.
    QList<int> Polled(int count) {
        link->sent.clear();
        turns.clear();
        Rounds(count);
        return Addresses(3);
    }
    /// Seconds until the panel is due.
    int DueIn(const PanelClass& panel) const {
        return int(std::round((panel.NextPoll() - clock.Now()) * 86400));
    }
    QList<int> CountersAndDue(const PanelClass& panel) const {
        return Counters(panel) << DueIn(panel);
    }
};

TEST_F(Cycle, PollsEachModelByItsRegisters) {
    // The last model is of a later file: polled by nothing.
    for (int model = Models::Q7100; model <= Models::P5500 + 1; ++model)
        AddModule(9 + model, model);
    AddModule(20, Models::None);
    AddModule(21, Models::Q7100).setActive(false);
    Rounds(6);
    EXPECT_EQ(Sent(), (Lines{"read 10 144 1", "read 11 68 1", "read 12 144 1", "read 13 1 12",
                             "read 14 1 12"}));
    EXPECT_EQ(engine->ErrorText(10), Text("0000    00    00    11:59:59"));
    EXPECT_FALSE(engine->ErrorText(15).isEmpty());
    EXPECT_TRUE(engine->ErrorText(20).isEmpty());
}

TEST_F(Cycle, WithoutPanelSixtyFourEachTurnPollsAll) {
    for (const int address : {1, 2, 63})
        AddModule(address, Models::Q7100);
    EXPECT_EQ(Polled(6), (QList<int>{2, 63, 1, 2, 63, 1}));
    EXPECT_EQ(turns, (QList<int>{1, 1}));
    // A turn in which nobody was due ends without a word.
    for (const int address : {1, 2, 63})
        Site().Panel(address).setNextPoll(clock.Now() + 1);
    clock.Advance(90000);
    rounds.clear();
    Rounds(4);
    EXPECT_EQ(turns.size(), 2);
    EXPECT_EQ(rounds, QList<int>(4, 0));
    EXPECT_EQ(engine->LastRound(), Text("12:01:30"));
}

TEST_F(Cycle, PanelOneWaitsBehindAGoodPanelSixtyFour) {
    // Alone, each is polled in every round.
    for (const int address : {1, 2, 64}) {
        AddModule(address, Models::Q7100);
        EXPECT_EQ(Polled(3), QList<int>(3, address));
        Site().Panel(address).setActive(false);
    }
    for (const int address : {1, 2, 64})
        Site().Panel(address).setActive(true);
    EXPECT_EQ(Polled(6), (QList<int>{2, 64, 2, 64, 2, 64}));
    EXPECT_EQ(turns.size(), 3);
    EXPECT_EQ(engine->PolledPanel(), 64);
    // With 64 missing the search runs on to 1.
    Site().Panel(64).setNextPoll(clock.Now() + 1);
    EXPECT_EQ(Polled(4), (QList<int>{2, 1, 2, 1}));
}

TEST_F(Cycle, DeclaresAPanelMissingAndFindsItAgain) {
    PanelClass& panel = AddModule(5, Models::Q7100);
    modules.Remove(5);
    QStringList moves;
    QObject::connect(engine.get(), &wPolling::PanelMove,
                     [&](int address, bool present, int number, int id) {
                         EXPECT_EQ(address, 5);
                         EXPECT_EQ(panel.Present(), present) << "stored ahead of the signal";
                         moves += Text("%1 %2 %3").arg(present).arg(number).arg(id, 0, 16);
                     });
    Rounds(2);
    EXPECT_EQ(Counters(panel), (QList<int>{2, 2, 0}));
    EXPECT_TRUE(panel.Present());
    Rounds(1);
    EXPECT_EQ(CountersAndDue(panel), (QList<int>{3, 2, 1, 60}));
    EXPECT_EQ(engine->ErrorText(5).left(16), Text("0003    02    01"));
    EXPECT_EQ(Polled(3), QList<int>()) << "not due";
    for (const auto& [seconds, counted] :
         {std::pair(60, QList<int>{4, 2, 2, 60}), {60, {5, 2, 3, 600}}}) {
        clock.Advance(seconds * 1000 + 100);
        EXPECT_EQ(Polled(3), QList<int>{5});
        EXPECT_EQ(CountersAndDue(panel), counted);
    }
    clock.Advance(599000);
    EXPECT_EQ(Polled(3), QList<int>());
    EXPECT_EQ(moves, TextList({"0 2 5ff0100"})) << "told once";

    modules[5];
    clock.Advance(2000);
    EXPECT_EQ(Polled(1), QList<int>{5});
    EXPECT_EQ(Counters(panel), (QList<int>{5, 1, 0}));
    EXPECT_LT(panel.NextPoll(), clock.Now());

    // One failure right after the return isn't yet a loss.
    modules.Remove(5);
    Rounds(1);
    EXPECT_TRUE(panel.Present());
    modules[5];
    Rounds(4);
    EXPECT_EQ(Counters(panel), (QList<int>{6, 0, 0}));
    EXPECT_EQ(moves.mid(1), TextList({"1 3 5ff0101"}));

    // The counters wrap.
    panel.setErrCptr(0, 31999);
    panel.setErrCptr(1, 2);
    panel.setErrCptr(2, 31999);
    engine->AddError(5);
    EXPECT_EQ(CountersAndDue(panel), (QList<int>{0, 2, 0, 60}));
}

TEST_F(Cycle, ReinitClearsAllAndTracesIt) {
    for (const int address : {1, 63}) {
        PanelClass& panel = AddModule(address, Models::Q7100);
        panel.setPresent(false);
        panel.setNextPoll(clock.Now() + 1);
        for (int counter = 0; counter < 3; ++counter)
            panel.setErrCptr(counter, 7);
    }
    engine->ReinitComm();
    for (const int address : {1, 63}) {
        EXPECT_EQ(CountersAndDue(Site().Panel(address)), (QList<int>{0, 0, 0, -1}));
        EXPECT_FALSE(Site().Panel(address).Present());
    }
    EXPECT_EQ(TraceLines().last(),
              Text("2024-03-15 12:00:00 REINIT         ******** SYSTEM  COMM   REINIT ") +
                  QString(26, u'*') + u' ' + QString(39, u'*'));
    // A panel that was missing is told as present by its next good poll.
    Rounds(2);
    EXPECT_EQ(events.size(), 2);
}

TEST_F(Cycle, OpensTheLinkAsTheSiteSays) {
    PanelClass& panel = AddModule(5, Models::Q7100);
    for (const auto& [settings, port] :
         {std::pair("", 0), {"COM3", 3}, {"rubbish", 0}, {"COM", 0}}) {
        Site().setBusSettings(Text(settings));
        engine->ReinitComm();
        EXPECT_FALSE(link->PortOpen());
        EXPECT_EQ(Boxes(), QStringList(Text("Serial port COM%1 cannot be opened.").arg(port)));
    }
    // The cycle goes on: the panel is reported missing, without a box at each poll.
    Rounds(3);
    EXPECT_FALSE(panel.Present());
    Site().setBusSettings(Text("COM12:19200,E,7,2"));
    engine->ReinitComm();
    EXPECT_EQ(link->CommPort(), 12);
    EXPECT_EQ(link->Settings(), Text("19200,E,7,2"));
    EXPECT_TRUE(link->PortOpen());
    Rounds(1);
    EXPECT_TRUE(panel.Present());
}

TEST_F(Cycle, TheTraceTellsWhatTheLineTookWhenItWasOpened) {
    using Answer = platform::LineFeatures::Answer;
    const auto notes = [this] {
        engine->ConfigCommPort();
        return TraceLines().filter(QRegularExpression(Text("LATENCY|RS485"))).join(u'|');
    };
    EXPECT_EQ(notes(), QString());
    link->features = {Answer::Taken, Answer::Refused};
    EXPECT_EQ(notes().remove(Text("2024-03-15 12:00:00 ")),
              Text("COM1 LOW LATENCY ON|COM1 RS485 REFUSED"));
    EXPECT_TRUE(link->PortOpen());
}

TEST_F(Cycle, TheTimerDrivesTheRoundsUntilTheStop) {
    AddModule(5, Models::Q7100);
    // Channel 0, qualifier 3, code 14 is in no list: the trace can't word it, and nothing stops.
    modules[5][144] = 1;
    modules[5][146] = 0xF3E0;
    engine->RunComm();
    EXPECT_EQ(Boxes().size(), 1);
    modules[5][144] = 0;
    const auto roundsWithin = [&](int milliseconds, int enough) {
        rounds.clear();
        const QDeadlineTimer end(milliseconds);
        while (!end.hasExpired() && rounds.size() < enough)
            QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
        return rounds.size();
    };
    EXPECT_GE(roundsWithin(60000, 3), 3);
    engine->setRun(false);
    EXPECT_EQ(roundsWithin(120, 1), 0);
    engine->setRun(true);
    EXPECT_GE(roundsWithin(60000, 2), 2);
}

// A bus that runs shows its life by its rounds alone: with these gone the second's tick is silent.
TEST_F(Cycle, SignsOfLifeComeFromTheRoundsAndOfAStoppedBusFromTheTick) {
    int beats = 0;
    platform::ServiceManager manager(
        {[&](const QByteArray& line) { beats += line == "WATCHDOG=1" ? 1 : 0; }, {}, 1000});
    platform::ServiceManager::Install(&manager);
    const auto back = qScopeGuard([] { platform::ServiceManager::Install(nullptr); });
    manager.Ready();
    const auto beatsOf = [&](auto&& work) {
        clock.Advance(60000);
        beats = 0;
        work();
        return beats;
    };
    EXPECT_EQ(beatsOf([&] { engine->tmrMidnight_Timer(); }), 0);
    EXPECT_EQ(beatsOf([&] { Rounds(1); }), 1) << "nobody is due";
    // Exchanges without a round, as of a synchronisation.
    EXPECT_GT(beatsOf([&] { GetModuleType(*link, 9); }), 0);
    engine->setRun(false);
    EXPECT_EQ(beatsOf([&] { engine->tmrMidnight_Timer(); }), 1);
}

TEST_F(Cycle, AClockSetBackSilencesNobody) {
    AddModule(5, Models::Q7100);
    PanelClass& missing = AddModule(6, Models::Q7100);
    modules.Remove(6);
    Rounds(6);
    EXPECT_EQ(DueIn(missing), 60);
    engine->SendCommand(Write(5, 67, {2}, clock.Now() + platform::OneMinute / 2));
    Rounds(1);
    clock.Set(clock.Now() - 1.0 / 24);
    Rounds(1);
    EXPECT_LE(DueIn(missing), 60);
    EXPECT_GE(DueIn(missing), 55);
    EXPECT_EQ(Polled(2), (QList<int>{5, 5}));
    clock.Advance(31000);
    link->sent.clear();
    Rounds(1);
    EXPECT_EQ(Addresses(6), QList<int>{5}) << "nor does a command wait for an hour";
    clock.Advance(30000);
    EXPECT_TRUE(Polled(2).contains(6));
}

} // namespace
