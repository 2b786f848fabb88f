#include "bus/CommandClass.h"

#include "platform/RunTimeError.h"
#include "support/Bench.h"

namespace {

CommandPtr Write(qint16 module, qint32 registerNo, const Words& values, DateTime when = 0) {
    return std::make_shared<CommandClass>(module, registerNo, values, when);
}

TEST(Command, QueueDropsWhatAlreadyWaits) {
    CommandClasses queue;
    const CommandPtr first = Write(5, 67, {2}, 45000);
    first->ErrorInc();
    queue.Add(first);
    queue.Add(Write(5, 67, {2}, 99999));
    ASSERT_EQ(queue.Count(), 1);
    EXPECT_EQ(queue.Item(1), first) << "the older one keeps its time and its errors";

    const CommandPtr read = Write(5, 67, {2});
    read->setCmdType(CommandTypes::Read);
    for (const CommandPtr& other : {Write(5, 67, {1}), Write(5, 67, {2, 0}), Write(6, 67, {2}),
                                    Write(5, 66, {2}), read})
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

class CommandText : public QuietBench {};

TEST_F(CommandText, KeepsACommandOverARestart) {
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

TEST_F(CommandText, RefusesWhatIsNoCommand) {
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
