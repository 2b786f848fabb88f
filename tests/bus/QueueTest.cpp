#include "bus/Engine.h"

#include <QCoreApplication>
#include <QMetaObject>

namespace {

const QString Pending = Text("PendingCommands");

class Queue : public Engine {
protected:
    Queue() { Start(); }
    /// Works in the yield behind each exchange.
    void BetweenExchanges(const std::function<void()>& work) {
        link->answer = [this, work](const QByteArray& frame) {
            QMetaObject::invokeMethod(engine.get(), work, Qt::QueuedConnection);
            return modules.Answer(frame);
        };
    }
    /// Trace lines since the start of the bus.
    QStringList NewTrace() const { return TraceLines().mid(before); }
    qsizetype before = 0;

    void SetUp() override { before = TraceLines().size(); }
};

TEST_F(Queue, SendsInOrderAndTracesEachCommand) {
    AddModule(7, Models::Q7100);
    for (const qint16 value : {3, 0, 3})
        engine->SendCommand(Write(7, 19, {value}));
    engine->SendCommand(Write(7, 25, {1, -1, 0x1234}));
    engine->SendCommand(Write(0, 289, {0}));
    Rounds(1);
    EXPECT_EQ(Sent(), (Lines{"write 7 19 3", "write 7 19 0", "writes 7 25 1 65535 4660",
                             "write 0 289 0", "read 7 144 1"}));
    EXPECT_EQ(engine->Commands().Count(), 0);
    EXPECT_EQ(NewTrace(), TextList({"2024-03-15 12:00:00 WRITE  COMMAND P07:0013 0003",
                                    "2024-03-15 12:00:00 WRITE  COMMAND P07:0013 0000",
                                    "2024-03-15 12:00:00 WRITE  COMMAND P07:0019 0001 FFFF 1234",
                                    "2024-03-15 12:00:00 WRITE  COMMAND P00:0121 0000"}));

    // A broadcast rests twice.
    CommandClass command(0, 289, {0});
    const qint64 start = clock.MonotonicMs();
    engine->TraiteCommande(command);
    EXPECT_EQ(clock.MonotonicMs() - start, 50);
    EXPECT_EQ(command.CmdType(), CommandTypes::Done);
    EXPECT_DOUBLE_EQ(command.SendTime(), clock.Now() - 0.050 / 86400) << "stamped when sent";
}

TEST_F(Queue, GivesACommandUpInTheThirdRound) {
    AddModule(7, Models::Q7100);
    engine->SendCommand(Write(9, 67, {2, 3}, clock.Now()));
    engine->SendCommand(Write(7, 67, {2}));
    Rounds(1);
    EXPECT_EQ(Addresses(16), QList<int>{9});
    EXPECT_EQ(Addresses(6), QList<int>{7}) << "the missing panel doesn't hold up the others";
    EXPECT_EQ(Waiting(), TextList({"9:0043=0002,0003"}));
    EXPECT_EQ(engine->Commands().Item(1)->ErrorCount(), 1);
    Rounds(1);
    EXPECT_EQ(givenUp, QList<int>());
    Rounds(2);
    EXPECT_EQ(givenUp, QList<int>{67});
    EXPECT_EQ(engine->Commands().Count(), 0);
    EXPECT_EQ(Addresses(16), (QList<int>{9, 9, 9}));
    const QStringList trace = NewTrace();
    ASSERT_EQ(trace.size(), 6);
    EXPECT_TRUE(trace[5].endsWith(Text("FAULT BEGINS COMMAND GIVEN UP P09:0043")));
    EXPECT_EQ(trace[3], Text("2024-03-15 12:00:00 WRITE  COMMAND P09:0043 0002 0003"));
    EXPECT_EQ(trace[4], Text("2024-03-15 12:00:00 WRITE  ERROR   P09:0043 00020003"));
}

TEST_F(Queue, TellsOfAReadAndOfAnUnknownKindGivenUp) {
    const CommandPtr read = Write(7, 146, Words(30, 0x1111), clock.Now());
    read->setCmdType(CommandTypes::Read);
    engine->SendCommand(read);
    Rounds(3);
    const QStringList trace = NewTrace();
    ASSERT_EQ(trace.size(), 5);
    EXPECT_TRUE(trace[0].startsWith(Text("2024-03-15 12:00:00 READ   COMMAND P07:0092 1")));
    EXPECT_TRUE(trace[3].startsWith(Text("2024-03-15 12:00:00 READ ERROR   P07:0092 1111")));
    EXPECT_EQ(trace[0].size(), 80);
    EXPECT_EQ(trace[3].size(), 80);

    CommandClass unknown(7, 1, {5}, clock.Now());
    unknown.setCmdType(9);
    link->sent.clear();
    engine->TraiteCommande(unknown);
    EXPECT_EQ(unknown.CmdType(), CommandTypes::Done);
    EXPECT_EQ(link->sent.size(), 0);
    EXPECT_TRUE(NewTrace().last().endsWith(Text(" CMD??? COMMAND P07:0001 0005")));
}

TEST_F(Queue, AReadOfStatesStoresThoseItWasMadeWith) {
    PanelClass& panel = AddModule(7, Models::Q7100);
    modules[7][1] = 4;
    CommandClass read(7, 1, Words(20, 3));
    read.setCmdType(CommandTypes::Read);
    engine->TraiteCommande(read);
    EXPECT_EQ(panel.Channel(1).State(), 3);
    EXPECT_EQ(panel.Channel(12).State(), 3);
    EXPECT_EQ(panel.Channel(13).State(), 0) << "the panel has twelve channels";

    modules.Remove(7);
    CommandClass failed(7, 1, {1});
    failed.setCmdType(CommandTypes::Read);
    engine->TraiteCommande(failed);
    EXPECT_EQ(panel.Channel(1).State(), 3);
    EXPECT_EQ(failed.ErrorCount(), 1);
}

TEST_F(Queue, WaitsForTheTimeOfACommand) {
    AddModule(7, Models::Q7100);
    engine->SendCommand(Write(7, 67, {2}, clock.Now() + platform::OneMinute));
    Rounds(3);
    EXPECT_EQ(Addresses(6), QList<int>());
    EXPECT_EQ(NewTrace(), QStringList());
    EXPECT_EQ(engine->Commands().Item(1)->ErrorCount(), 0);
    clock.Advance(60000);
    Rounds(1);
    EXPECT_EQ(Addresses(6), QList<int>{7});
}

TEST_F(Queue, AnUnloadInAYieldEndsTheRoundAndStoresTheRest) {
    AddModule(7, Models::Q7100);
    BetweenExchanges([this] { engine->Form_Unload(); });
    engine->SendCommand(Write(7, 67, {2}));
    engine->SendCommand(Write(7, 66, {1}));
    engine->SendCommand(Write(8, 25, {-1, 16}, clock.Now() + 1));
    Rounds(1);
    EXPECT_EQ(link->sent.size(), 1) << "neither the next command nor a poll";
    EXPECT_FALSE(link->PortOpen());
    EXPECT_FALSE(engine->Run());
    EXPECT_TRUE(engine->IsClosing());
    // What was sent isn't sent again by the next start.
    EXPECT_EQ(Stored(Pending, Text("1")), Text("2|7|0042|00:00:00|0001"));
    EXPECT_EQ(Stored(Pending, Text("2")), Text("2|8|0019|2024-03-16 12:00:00|FFFF|0010"));
    EXPECT_EQ(Stored(Pending, Text("3")), Text("none"));

    // The tick that was under way and a second unload find nothing to do.
    IniDeleteSection(Pending);
    Rounds(2);
    engine->Form_Unload();
    EXPECT_EQ(link->sent.size(), 1);
    EXPECT_EQ(Stored(Pending, Text("1")), Text("none"));
}

TEST_F(Queue, AnUnloadInTheLastYieldPollsNobody) {
    AddModule(7, Models::Q7100);
    BetweenExchanges([this] { engine->Form_Unload(); });
    engine->SendCommand(Write(7, 67, {2}));
    Rounds(1);
    EXPECT_EQ(link->sent.size(), 1);
    EXPECT_FALSE(engine->Run());
    EXPECT_EQ(Stored(Pending, Text("1")), Text("none"));
}

TEST_F(Queue, ComesBackAfterARestart) {
    engine->SendCommand(Write(7, 67, {2}, clock.Now()));
    engine->SendCommand(Write(0, 289, {0}));
    engine->Form_Unload();
    // The battery of the clock is empty.
    clock.Set(2000, 1, 1);
    Load();
    EXPECT_EQ(Waiting(), TextList({"7:0043=0002", "0:0121=0000"}));
    Rounds(2);
    EXPECT_EQ(link->sent.size(), 0) << "a bus at rest";
    engine->setRun(true);
    modules[7];
    Forget();
    Rounds(1);
    EXPECT_EQ(Addresses(6), (QList<int>{7, 0}));

    // Damaged texts are told and dropped, a double is dropped as ever.
    int number = 0;
    for (const char* text : {"2|7|0043|00:00:00|0002", "", "rubbish", "2|7|0043|00:00:00|0002",
                             "2|300|0043|00:00:00|0002", "2|7|0042|nonsense|0001"})
        IniWrite(Pending, QString::number(++number), Text(text));
    Load();
    EXPECT_EQ(Waiting(), TextList({"7:0043=0002", "7:0042=0001"}));
    EXPECT_EQ(Boxes().size(), 2);
    QStringList keys;
    EXPECT_EQ(IniReadKeys(keys, Pending), 0) << "nothing comes back at the next start";
}

TEST_F(Queue, AStopAStartAndACommandInAYieldDontNestRounds) {
    int depth = 0;
    modules[7];
    BetweenExchanges([&] {
        EXPECT_EQ(++depth, 1);
        if (link->sent.size() == 1)
            engine->SendCommand(Write(7, 66, {1}));
        engine->setRun(false);
        engine->setRun(true);
        engine->RunComm();
        --depth;
    });
    rounds.clear();
    engine->SendCommand(Write(7, 67, {2}));
    Rounds(1);
    EXPECT_EQ(rounds.size(), 1);
    EXPECT_EQ(Sent(), (Lines{"write 7 67 2", "write 7 66 1"}));
    EXPECT_EQ(engine->Commands().Count(), 0);
}

TEST_F(Queue, DropsWhatAlreadyWaits) {
    CommandClasses queue;
    const CommandPtr first = Write(5, 67, {2}, 45000);
    first->ErrorInc();
    queue.Add(first);
    queue.Add(Write(5, 67, {2}, 99999));
    ASSERT_EQ(queue.Count(), 1);
    EXPECT_EQ(queue.Item(1), first) << "the older one keeps its time and its errors";

    const CommandPtr read = Write(5, 67, {2});
    read->setCmdType(CommandTypes::Read);
    for (const CommandPtr& other :
         {Write(5, 67, {1}), Write(5, 67, {2, 0}), Write(6, 67, {2}), Write(5, 66, {2}), read})
        queue.Add(other);
    EXPECT_EQ(queue.Count(), 6);

    // One that was carried out is no longer the same kind: its repetition is a new command.
    first->setCmdType(CommandTypes::Done);
    queue.Add(Write(5, 67, {2}));
    EXPECT_EQ(queue.Count(), 7);

    queue.Remove(2);
    EXPECT_EQ(queue.Item(2)->ValuesCount(), 2);
    for (const int position : {0, 7, -1}) {
        EXPECT_THROW((void)queue.Item(position), platform::RunTimeError);
        EXPECT_THROW(queue.Remove(position), platform::RunTimeError);
    }
    // The values of a command grow and keep their content.
    EXPECT_THROW((void)first->Value(1), platform::RunTimeError);
    first->setValue(2, -1);
    EXPECT_EQ(first->Values(), (Words{2, 0, -1}));
    EXPECT_THROW(first->setValue(-1, 1), platform::RunTimeError);
}

TEST_F(Queue, KeepsACommandOverARestart) {
    const CommandPtr command = Write(7, 288, {62, -1, 0}, clock.Now());
    EXPECT_EQ(command->ToText(), Text("2|7|0120|2024-03-15 12:00:00|003E|FFFF|0000"));
    const CommandPtr back = CommandClass::FromText(command->ToText());
    EXPECT_TRUE(back->SameAs(*command));
    EXPECT_DOUBLE_EQ(back->SendTime(), clock.Now());
    EXPECT_EQ(back->ErrorCount(), 0);

    const CommandPtr soon = CommandClass::FromText(Write(0, 289, {0})->ToText());
    EXPECT_EQ(soon->SendTime(), 0);
    EXPECT_EQ(soon->Module(), 0);
    // A time that another locale wrote can't hold a command back.
    EXPECT_EQ(CommandClass::FromText(Text("2|7|0043|15.3.2099 noon|0002"))->SendTime(), 0);
}

TEST_F(Queue, RefusesWhatIsNoCommand) {
    const QByteArray tooMany = "2|7|0043|00:00:00" + QByteArray("|0001").repeated(125);
    for (const char* text :
         {"", "|", "2", "2|7|0043", "2|7|0043|00:00:00", "x|7|0043|00:00:00|0002",
          "2||0043|00:00:00|0002", "2|7|00G3|00:00:00|0002", "2|7|0043|00:00:00|",
          "2|7|0043|00:00:00|0002|zz", "2|65|0043|00:00:00|0002", "2|256|0043|00:00:00|0002",
          "2|-1|0043|00:00:00|0002", "2|99999999999|0043|00:00:00|0002", "2|7|10120|00:00:00|0002",
          "2|7|-43|00:00:00|0002", "2|7|0043|00:00:00|10002", tooMany.constData()})
        EXPECT_THROW(CommandClass::FromText(Text(text)), platform::RunTimeError) << text;
}

} // namespace
