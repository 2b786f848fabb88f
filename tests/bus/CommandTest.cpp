#include "bus/CommandClass.h"

#include "platform/RunTimeError.h"
#include "support/Bench.h"

namespace {

namespace errors = platform::errors;

template <class Body> int ErrorNumberOf(Body&& body) {
    try {
        body();
    } catch (const platform::RunTimeError& error) {
        return error.Number();
    }
    return 0;
}

CommandPtr Write(qint16 module, qint32 registerNo, const Words& values, DateTime when = 0) {
    return std::make_shared<CommandClass>(module, registerNo, values, when);
}

TEST(Command, ValuesGrowAndKeepTheirContent) {
    CommandClass command;
    EXPECT_EQ(ErrorNumberOf([&] { (void)command.Value(0); }), errors::Subscript);
    command.setValue(0, 7);
    command.setValue(3, -1);
    command.setValue(1, 5);
    EXPECT_EQ(command.Values(), (Words{7, 5, 0, -1}));
    EXPECT_EQ(ErrorNumberOf([&] { command.setValue(-1, 1); }), errors::Subscript);
}

TEST(Command, QueueDropsWhatAlreadyWaits) {
    CommandClasses queue;
    const CommandPtr first = Write(5, 67, {2}, 45000);
    first->ErrorInc();
    queue.Add(first);
    queue.Add(Write(5, 67, {2}, 99999));
    ASSERT_EQ(queue.Count(), 1);
    EXPECT_EQ(queue.Item(1), first) << "the older one keeps its time and its errors";

    queue.Add(Write(5, 67, {1}));
    queue.Add(Write(5, 67, {2, 0}));
    queue.Add(Write(6, 67, {2}));
    queue.Add(Write(5, 66, {2}));
    const CommandPtr read = Write(5, 67, {2});
    read->setCmdType(CommandTypes::Read);
    queue.Add(read);
    EXPECT_EQ(queue.Count(), 6);

    // One that was carried out is no longer the same kind: its repetition is a new command.
    first->setCmdType(CommandTypes::Done);
    queue.Add(Write(5, 67, {2}));
    EXPECT_EQ(queue.Count(), 7);

    queue.Remove(2);
    EXPECT_EQ(queue.Item(2)->ValuesCount(), 2);
    for (const int position : {0, 7, -1}) {
        EXPECT_EQ(ErrorNumberOf([&] { (void)queue.Item(position); }), errors::Subscript);
        EXPECT_EQ(ErrorNumberOf([&] { queue.Remove(position); }), errors::Subscript);
    }
}

class CommandText : public Bench {};

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
    for (const char* text :
         {"", "|", "2", "2|7|0043", "2|7|0043|00:00:00", "x|7|0043|00:00:00|0002",
          "2||0043|00:00:00|0002", "2|7|00G3|00:00:00|0002", "2|7|0043|00:00:00|",
          "2|7|0043|00:00:00|0002|zz", "2|65|0043|00:00:00|0002", "2|256|0043|00:00:00|0002",
          "2|-1|0043|00:00:00|0002", "2|99999999999|0043|00:00:00|0002", "2|7|10120|00:00:00|0002",
          "2|7|-43|00:00:00|0002", "2|7|0043|00:00:00|10002"}) {
        EXPECT_NE(ErrorNumberOf([&] { CommandClass::FromText(Text(text)); }), 0) << text;
    }
    const QString tooMany = Text("2|7|0043|00:00:00") + Text("|0001").repeated(125);
    EXPECT_NE(ErrorNumberOf([&] { CommandClass::FromText(tooMany); }), 0);
}

} // namespace
