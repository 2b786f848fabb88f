#include "bus/Engine.h"

namespace {

/// A module of the Q family with its event memory, whose receipts can go astray.
class Receipt : public Engine {
protected:
    static constexpr int Address = 5;

    Receipt() {
        Start();
        AddModule(Address, Models::Q7100);
        link->answer = [this](const QByteArray& frame) { return Answer(frame); };
    }

    void Happen(int count) {
        for (int i = 0; i < count; ++i)
            memory += ++happened;
    }
    QByteArray Answer(const QByteArray& frame) {
        const int registerNo = FakeModules::WordAt(frame, 2);
        if (frame[1] == 6 && registerNo == 288) {
            ++receipts;
            if (deaf-- > 0)
                return {};
            memory = memory.mid(FakeModules::WordAt(frame, 4));
            return mute-- > 0 ? QByteArray() : WithCrc(frame.left(6));
        }
        modules[Address][144] = quint16(memory.size());
        for (qsizetype i = 0; i < 62; ++i) {
            modules[Address][int(146 + 2 * i)] = i < memory.size() ? 0x1010 : 0;
            modules[Address][int(147 + 2 * i)] = quint16(memory.value(i));
        }
        return modules.Answer(frame);
    }
    /// Panel clocks of the events that were routed: the numbers of what happened.
    QList<int> Clocks() const {
        QList<int> clocks;
        for (const EventClass& event : events)
            if (Family::IsChannel(event.Chnl()))
                clocks += event.Clock();
        return clocks;
    }
    QList<int> All() const {
        QList<int> numbers;
        for (int number = 1; number <= happened; ++number)
            numbers += number;
        return numbers;
    }

    QList<int> memory;
    int happened = 0;
    int receipts = 0;
    int deaf = 0; // receipts that don't arrive
    int mute = 0; // receipts that are obeyed but whose reply is lost
};

TEST_F(Receipt, ABurstComesInPortionsEachOnce) {
    Happen(150);
    Rounds(5);
    EXPECT_EQ(Clocks(), All());
    EXPECT_EQ(receipts, 3);
    EXPECT_TRUE(memory.isEmpty());
}

TEST_F(Receipt, OneThatDoesntArriveIsSentAgain) {
    for (const int lost : {1, 2}) {
        Happen(2);
        deaf = lost;
        Rounds(2);
        Happen(1);
        Rounds(5);
        EXPECT_EQ(Clocks(), All());
        EXPECT_TRUE(memory.isEmpty());
    }
}

TEST_F(Receipt, OneThatWasObeyedDropsNothingElse) {
    for (const int lost : {1, 2, 3}) {
        Happen(2);
        Rounds(1);
        Happen(3);
        mute = lost;
        Rounds(8);
        mute = 0;
        Rounds(6);
        EXPECT_EQ(Clocks(), All()) << lost;
        EXPECT_TRUE(memory.isEmpty());
    }
}

TEST_F(Receipt, OneThatIsGivenUpBringsNoEventTwice) {
    int givenUp = 0;
    QObject::connect(engine.get(), &wPolling::WriteError, [&] { ++givenUp; });
    Happen(2);
    deaf = 4;
    Rounds(12);
    Happen(2);
    Rounds(4);
    EXPECT_EQ(givenUp, 1);
    EXPECT_EQ(Clocks(), All());
    EXPECT_TRUE(memory.isEmpty());
}

// The module was switched off and on while the receipt waited: another event stands in its memory.
TEST_F(Receipt, OneThatHasWaitedLongDropsNoOtherEvent) {
    for (const bool stopped : {false, true}) {
        Happen(1);
        Rounds(1);
        memory.clear();
        Happen(1);
        if (stopped) {
            engine->setRun(false);
            engine->setRun(true);
        } else {
            clock.Advance(5000);
        }
        Rounds(3);
        EXPECT_EQ(Clocks(), All()) << stopped;
        EXPECT_TRUE(memory.isEmpty());
    }
}

// On a slow line a long reply never fits its deadline, and its rest comes behind it.
TEST_F(Receipt, AReadThatFailsIsTriedWithHalfAsMany) {
    int tooLong = 0;
    link->answer = [&](const QByteArray& frame) {
        const bool isRead = frame[1] == 3 && FakeModules::WordAt(frame, 2) == 146;
        if (isRead && FakeModules::WordAt(frame, 4) > 40) {
            ++tooLong;
            return Answer(frame).left(100);
        }
        return Answer(frame);
    };
    Happen(150);
    Rounds(14);
    EXPECT_EQ(Clocks(), All());
    EXPECT_EQ(tooLong, 2) << "62 and 31, then it is known";
    EXPECT_TRUE(memory.isEmpty());
    Happen(62);
    Rounds(8);
    EXPECT_EQ(Clocks(), All());
    EXPECT_EQ(tooLong, 4) << "tried anew when all was read";
    EXPECT_TRUE(Site().Panel(Address).Present());
}

// What a receipt stood for is still known when the next reads get smaller.
TEST_F(Receipt, SmallerReadsBringNoEventTwice) {
    Happen(40);
    deaf = 3;
    Rounds(1);
    bool longReads = false;
    link->answer = [&](const QByteArray& frame) {
        if (!longReads && frame[1] == 3 && FakeModules::WordAt(frame, 4) > 40 && deaf <= 0)
            return QByteArray();
        return Answer(frame);
    };
    Rounds(20);
    longReads = true;
    Happen(5);
    Rounds(10);
    EXPECT_EQ(Clocks(), All());
    EXPECT_TRUE(memory.isEmpty());
}

TEST_F(Receipt, AMemoryThatCantBeReadIsTold) {
    PanelClass& panel = Site().Panel(Address);
    panel.setErrCptr(1, 2);
    bool readable = false;
    link->answer = [&](const QByteArray& frame) {
        return !readable && FakeModules::WordAt(frame, 2) == 146 ? QByteArray() : Answer(frame);
    };
    Happen(3);
    Rounds(9);
    EXPECT_FALSE(Faults::Stands(Faults::Kind::MemoryUnreadable));
    Rounds(1);
    ASSERT_EQ(Faults::Standing().size(), 1);
    EXPECT_EQ(Faults::Standing()[0].kind, Faults::Kind::MemoryUnreadable);
    EXPECT_EQ(Faults::Standing()[0].detail, QStringLiteral("5"));
    EXPECT_TRUE(panel.Present()) << "it tells its count: it is there";
    EXPECT_TRUE(events.isEmpty());
    readable = true;
    Rounds(8);
    EXPECT_EQ(Clocks(), All());
    EXPECT_TRUE(Faults::Standing().isEmpty());
}

} // namespace
