#pragma once

#include "simulator/Bus.h"
#include "support/FakeLink.h"

#include <QHash>
#include <QList>
#include <functional>
#include <random>

/// What a Q-family module put into its memory and what the engine makes of it: `ID` above the 20
/// bits of the module's clock.
using EventKey = qint64;

/// Sixteen modules of all models at the far end of a line, and what happens to them.
class Plant {
public:
    static constexpr int Modules = 16;
    static constexpr int Channels = 12;
    /// The last one is the display of the mirrors.
    static Sim::Model ModelOf(int address);
    static bool HasMemory(int address) { return address <= 10; }

    Plant();

    /// Called for each event as it goes into a module's memory, those but that the engine takes for
    /// no event.
    std::function<void(int address, EventKey key)> onRaised;

    /// The line to the modules; the plant keeps hold of it.
    std::unique_ptr<FakeLink> MakeLink();
    /// The adapter is pulled out or put back.
    void SetPlugged(bool plugged);
    /// A contact changes, a key is pressed, or a link gets or loses a fault, as time has it.
    void Advance();
    /// Every link is good; nothing happens any more.
    void Calm();
    /// What the wiring of a module without a memory shows.
    int State(int address, int channel);
    quint32 ClockOf(int address) { return bus_.Find(address)->module->Clock(); }
    bool IsMuted(int address) { return bus_.Find(address)->faults.muted; }

    int faults = 0;
    /// Most events that a memory held; from 200 on it drops the oldest.
    int mostWaiting = 0;

private:
    QByteArray Answer(const QByteArray& frame);
    void Watch(int address, const std::function<void()>& change);
    void Happen();
    void Trouble();
    int Random(int below) { return int(random_() % unsigned(below)); }

    Sim::Bus bus_;
    std::mt19937 random_{24};
    FakeLink* link_ = nullptr;
    bool calm_ = false;
    qint64 nextHappening_ = 0;
    qint64 nextTrouble_ = 0;
    /// By address: events of the memory that were told.
    QHash<int, int> told_;
    /// By address: when a link is good again.
    QHash<int, qint64> until_;
};
