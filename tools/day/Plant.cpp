#include "day/Plant.h"

#include "support/SimulatedLine.h"

namespace {

using SimulatedLine::CountRegister;
using SimulatedLine::MemoryRegister;
using SimulatedLine::ReceiptRegister;

/// Events of a memory that can be read at a time.
constexpr int Readable = 71;
/// Of contacts and keys, one change of which is more than one event, and of troubles on the line.
constexpr int ChangesAMinute = 40;
/// One in so many receipts that a module has taken is not answered.
constexpr int LostReceipts = 50;
constexpr int TroublesAMinute = 3;
constexpr int Minute = 60000;

qint64 Now() {
    return platform::Clock::Current().MonotonicMs();
}

/// 0 for what the engine makes no event of: the horn was silenced at the module.
EventKey KeyOf(int address, int head, int low) {
    const bool ofPanel = head >> 12 == 15;
    const int code = (head >> 4) & 15;
    if (ofPanel && code == 1)
        return 0;
    const int id = (address << 24) | ((ofPanel ? 0 : head >> 12) << 16) | (head & 0xF00) |
                   (code == 5 ? 0 : code);
    return (EventKey(id) << 20) | ((head & 15) << 16) | low;
}

} // namespace

Sim::Model Plant::ModelOf(int address) {
    using enum Sim::Model;
    if (address <= 10)
        return address <= 6 ? Q7100 : Q7000;
    if (address == Modules)
        return Q6200XT;
    return address <= 13 ? P5000 : P5500;
}

Plant::Plant()
    : bus_([] { return Sim::Milliseconds(Now()); }, 5) {
    for (int address = 1; address <= Modules; ++address)
        bus_.Add(address, ModelOf(address), "module");
}

std::unique_ptr<FakeLink> Plant::MakeLink() {
    auto link = std::make_unique<FakeLink>();
    link_ = link.get();
    link_->answer = [this](const QByteArray& frame) {
        link_->sent.clear();
        return Answer(frame);
    };
    return link;
}

void Plant::SetPlugged(bool plugged) {
    link_->canOpen = plugged;
    if (!plugged)
        link_->setPortOpen(false);
}

/// Tells what a change, a frame or a hand on the module, has put into its memory, as soon as it is
/// in the part that can be read.
void Plant::Watch(int address, const std::function<void()>& change) {
    Sim::Module& module = *bus_.Find(address)->module;
    const int before = module.Read(CountRegister);
    change();
    const int after = module.Read(CountRegister);
    mostWaiting = qMax(mostWaiting, after);
    int& told = told_[address];
    told = qMax(0, told - qMax(0, before - after));
    for (; told < qMin(after, Readable); ++told) {
        const EventKey key = KeyOf(address, module.Read(quint16(MemoryRegister + 2 * told)),
                                   module.Read(quint16(MemoryRegister + 2 * told + 1)));
        if (key != 0)
            onRaised(address, key);
    }
}

QByteArray Plant::Answer(const QByteArray& frame) {
    const std::optional<Sim::Request> request = SimulatedLine::RequestOf(frame);
    if (!request)
        return {};
    std::optional<Sim::Reply> reply;
    const auto handle = [&] { reply = bus_.Handle(*request); };
    if (HasMemory(request->address) && request->address > 0)
        Watch(request->address, handle);
    else
        handle();
    // Nobody but the module knows of a receipt whose reply is lost.
    if (!calm_ && request->first == ReceiptRegister && Random(LostReceipts) == 0)
        reply.reset();
    return SimulatedLine::BytesOf(reply);
}

void Plant::Advance() {
    if (calm_)
        return;
    for (auto until = until_.begin(); until != until_.end();) {
        if (Now() < until.value()) {
            ++until;
            continue;
        }
        bus_.Find(until.key())->faults = {};
        until = until_.erase(until);
    }
    if (Now() >= nextHappening_) {
        nextHappening_ = Now() + 100 + Random(2 * (Minute / ChangesAMinute - 100));
        Happen();
    }
    if (Now() >= nextTrouble_) {
        nextTrouble_ = Now() + Random(2 * Minute / TroublesAMinute);
        Trouble();
    }
}

/// The modules' clocks have tenths: two events of one moment could not be told apart.
void Plant::Happen() {
    const int address = 1 + Random(Modules - 1);
    platform::Clock::Current().Sleep(100);
    Sim::Module& module = *bus_.Find(address)->module;
    const auto change = [&] {
        if (Random(7) == 0)
            module.Acknowledge();
        else
            module.SetContact(1 + Random(Channels), Sim::Contact(qMax(0, Random(8) - 3)));
    };
    if (HasMemory(address))
        Watch(address, change);
    else
        change();
}

void Plant::Trouble() {
    ++faults;
    const int address = 1 + Random(Modules);
    Sim::LineFaults& faulty = bus_.Find(address)->faults;
    qint64 lasts = 1000 + Random(20000);
    const int kind = Random(SimulatedLine::Troubles);
    SimulatedLine::GiveTrouble(faulty, kind, [this](int below) { return Random(below); });
    if (kind == 0 && Random(10) == 0)
        lasts = qint64(10) * Minute;
    // What waits for the next reply goes as well: a missing module gives few.
    until_[address] = qMax(until_.value(address), Now() + lasts);
}

void Plant::Calm() {
    calm_ = true;
    for (int address = 1; address <= Modules; ++address)
        bus_.Find(address)->faults = {};
}

int Plant::State(int address, int channel) {
    return bus_.Find(address)->module->Read(quint16(channel));
}
