#pragma once

#include "bus/Engine.h"

#include <numeric>

/// The event memory of a module of the Q family, whose receipts can go astray.
class EventMemory {
public:
    EventMemory(FakeModules& modules, int address)
        : modules_(modules)
        , address_(address) {}

    void Happen(int count) {
        for (int i = 0; i < count; ++i)
            waiting += ++happened_;
    }
    /// The module's reply; what isn't of the memory is answered by `others`.
    template <class Others> QByteArray Answer(const QByteArray& frame, Others&& others) {
        if (frame[1] == 6 && FakeModules::WordAt(frame, 2) == 288) {
            ++receipts;
            if (deaf-- > 0)
                return {};
            waiting = waiting.mid(FakeModules::WordAt(frame, 4));
            return mute-- > 0 ? QByteArray() : WithCrc(frame.left(6));
        }
        modules_[address_][144] = quint16(waiting.size());
        for (qsizetype i = 0; i < 62; ++i) {
            modules_[address_][int(146 + 2 * i)] = i < waiting.size() ? 0x1010 : 0;
            modules_[address_][int(147 + 2 * i)] = quint16(waiting.value(i));
        }
        return others(frame);
    }
    /// Panel clocks of the events that were routed: the numbers of what happened.
    static QList<int> Clocks(const QList<EventClass>& events) {
        QList<int> clocks;
        for (const EventClass& event : events)
            if (Family::IsChannel(event.Chnl()))
                clocks += event.Clock();
        return clocks;
    }
    /// Everything that happened came, in its order, once.
    void ExpectAll(const QList<EventClass>& events) const {
        QList<int> numbers(happened_);
        std::iota(numbers.begin(), numbers.end(), 1);
        EXPECT_EQ(Clocks(events), numbers);
        EXPECT_TRUE(waiting.isEmpty());
    }

    QList<int> waiting;
    int receipts = 0;
    int deaf = 0; // receipts that don't arrive
    int mute = 0; // receipts that are obeyed but whose reply is lost

private:
    FakeModules& modules_;
    int address_;
    int happened_ = 0;
};
