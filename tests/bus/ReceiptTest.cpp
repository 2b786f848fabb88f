#include "bus/EventMemory.h"

namespace {

class Receipt : public Engine {
protected:
    static constexpr int Address = 1;

    Receipt() {
        Start();
        AddModule(Address, Models::Q7100);
        link->answer = [this](const QByteArray& frame) { return Answer(frame); };
    }
    QByteArray Answer(const QByteArray& frame) {
        return memory.Answer(frame, [this](const auto& other) { return modules.Answer(other); });
    }
    /// Number of words that a frame reads of the memory; 0 for other frames.
    static int ReadWords(const QByteArray& frame) {
        return frame[1] == 3 && FakeModules::WordAt(frame, 2) == 146 ? FakeModules::WordAt(frame, 4)
                                                                     : 0;
    }

    EventMemory memory{modules, Address};
};

TEST_F(Receipt, OneThatDoesntArriveIsSentAgain) {
    for (const int lost : {1, 2}) {
        memory.Happen(2);
        memory.deaf = lost;
        Rounds(2);
        memory.Happen(1);
        Rounds(5);
        memory.ExpectAll(events);
    }
    // One that is given up brings no event twice.
    memory.Happen(2);
    memory.deaf = 4;
    Rounds(12);
    memory.Happen(2);
    Rounds(4);
    EXPECT_EQ(givenUp.size(), 1);
    memory.ExpectAll(events);
}

TEST_F(Receipt, OneThatWasObeyedDropsNothingElse) {
    for (const int lost : {1, 2, 3}) {
        memory.Happen(2);
        Rounds(1);
        memory.Happen(3);
        memory.mute = lost;
        Rounds(8);
        memory.mute = 0;
        Rounds(6);
        SCOPED_TRACE(lost);
        memory.ExpectAll(events);
    }
}

// The module was switched off and on while the receipt waited: another event stands in its memory.
TEST_F(Receipt, OneThatHasWaitedLongDropsNoOtherEvent) {
    for (const bool stopped : {false, true}) {
        memory.Happen(1);
        Rounds(1);
        memory.waiting.clear();
        memory.Happen(1);
        engine->setRun(!stopped);
        engine->setRun(true);
        clock.Advance(stopped ? 0 : 5000);
        Rounds(3);
        SCOPED_TRACE(stopped);
        memory.ExpectAll(events);
    }
}

// On a slow line a long reply never fits its deadline, and its rest comes behind it.
TEST_F(Receipt, AReadThatFailsIsTriedWithHalfAsMany) {
    int tooLong = 0;
    link->answer = [&](const QByteArray& frame) {
        if (ReadWords(frame) <= 40)
            return Answer(frame);
        ++tooLong;
        return Answer(frame).left(100);
    };
    memory.Happen(150);
    Rounds(14);
    memory.ExpectAll(events);
    EXPECT_EQ(tooLong, 2) << "62 and 31, then it is known";
    memory.Happen(62);
    Rounds(8);
    memory.ExpectAll(events);
    EXPECT_EQ(tooLong, 4) << "tried anew when all was read";
    EXPECT_TRUE(Site().Panel(Address).Present());
}

// What a receipt stood for is still known when the next reads get smaller.
TEST_F(Receipt, SmallerReadsBringNoEventTwice) {
    memory.Happen(40);
    memory.deaf = 3;
    Rounds(1);
    bool longReads = false;
    link->answer = [&](const QByteArray& frame) {
        return !longReads && ReadWords(frame) > 40 && memory.deaf <= 0 ? QByteArray()
                                                                       : Answer(frame);
    };
    Rounds(20);
    longReads = true;
    memory.Happen(5);
    Rounds(10);
    memory.ExpectAll(events);
}

TEST_F(Receipt, AMemoryThatCantBeReadIsTold) {
    Site().Panel(Address).setErrCptr(1, 2);
    bool readable = false;
    link->answer = [&](const QByteArray& frame) {
        return !readable && ReadWords(frame) > 0 ? QByteArray() : Answer(frame);
    };
    memory.Happen(20);
    Rounds(9);
    readable = true;
    Rounds(1);
    EXPECT_FALSE(events.isEmpty());
    readable = false;
    Rounds(9);
    EXPECT_FALSE(Faults::Stands(Faults::Kind::MemoryUnreadable)) << "a part was read meanwhile";
    Rounds(1);
    EXPECT_TRUE(Faults::Stands(Faults::Kind::MemoryUnreadable));
    EXPECT_EQ(Faults::Standing().value(0).detail, Text("1"));
    EXPECT_TRUE(Site().Panel(Address).Present()) << "it tells its count: it is there";
    readable = true;
    Rounds(40);
    memory.ExpectAll(events);
    EXPECT_TRUE(Faults::Standing().isEmpty());
}

} // namespace
