#include "bus/BusWatch.h"

#include "core/Bytes.h"
#include "core/Faults.h"
#include "core/Global.h"
#include "model/ConfigClass.h"
#include "model/CurrentConfig.h"
#include "platform/Clock.h"
#include "platform/Volumes.h"

#include <QStringList>

using Faults::Kind;

namespace {

constexpr qint64 Minute = 60000;
constexpr qint64 UnpolledAfter = Minute;
constexpr qint64 GivenUpStands = 10 * Minute;
constexpr qint64 SetBackStands = 120 * Minute;
constexpr int UnreadableAfter = 10;

/// Below the first a disk is nearly full, from the second on it isn't any more, percent.
constexpr double NearlyFull = 5;
constexpr double EnoughAgain = 6;
/// Free bytes below which nothing of use can be written.
constexpr qint64 Full = 65536;

qint64 Now() {
    return platform::Clock::Current().MonotonicMs();
}

/// Sets a fault with its details, or clears it when there are none.
void Tell(Kind kind, const QStringList& details) {
    if (details.isEmpty())
        Faults::Clear(kind);
    else
        Faults::Set(kind, details.join(u' '));
}

} // namespace

bool BusWatch::IsDue(int address, DateTime now) {
    const PanelClass& panel = Global::Configuration().Panel(address);
    return panel.Model() >= 1 && panel.Active() && now > panel.NextPoll();
}

void BusWatch::Polled(int address) {
    dueSince_[address] = Now();
}

void BusWatch::PollingBegins() {
    dueSince_.clear();
    unpolled_.clear();
    Faults::Clear(Kind::PanelNotPolled);
}

void BusWatch::CheckPolls(bool polling) {
    if (!polling) {
        PollingBegins();
        return;
    }
    const DateTime now = DateTimes::Now();
    QStringList numbers;
    unpolled_.clear();
    for (int address = 1; address <= ConfigClass::PanelCount; ++address) {
        if (!IsDue(address, now)) {
            dueSince_.remove(address);
            continue;
        }
        if (!dueSince_.contains(address))
            dueSince_[address] = Now();
        if (Now() - dueSince_[address] < UnpolledAfter)
            continue;
        unpolled_.append(address);
        numbers.append(QString::number(address));
    }
    Tell(Kind::PanelNotPolled, numbers);
}

int BusWatch::ReadLimit(int address) const {
    return memories_.value(address).limit;
}

void BusWatch::MemoryRead(int address, int events, int waiting) {
    const auto memory = memories_.find(address);
    if (memory == memories_.end())
        return;
    memory->failures = 0;
    if (events >= waiting)
        memories_.erase(memory);
    TellMemories();
}

void BusWatch::MemoryFailed(int address, int events) {
    Memory& memory = memories_[address];
    memory.limit = Bytes::Greater(events / 2, 1);
    ++memory.failures;
    TellMemories();
}

void BusWatch::ForgetMemories() {
    memories_.clear();
    TellMemories();
}

void BusWatch::TellMemories() const {
    QStringList numbers;
    for (auto memory = memories_.cbegin(); memory != memories_.cend(); ++memory) {
        if (memory->failures >= UnreadableAfter)
            numbers.append(QString::number(memory.key()));
    }
    Tell(Kind::MemoryUnreadable, numbers);
}

void BusWatch::GivenUp(const CommandClass& command) {
    givenUp_[command.Module()] = {Global::Get().panelMark + Bytes::Padded(command.Module(), 2) +
                                      u':' + Bytes::Hex4(command.Address()),
                                  Now()};
    TellGivenUp();
}

void BusWatch::Taken(int module) {
    if (givenUp_.remove(module) > 0)
        TellGivenUp();
}

void BusWatch::CheckGivenUp() {
    const auto gone = [](const std::pair<const int&, Order&>& entry) {
        return Now() - entry.second.since >= GivenUpStands;
    };
    if (givenUp_.removeIf(gone) > 0)
        TellGivenUp();
}

void BusWatch::TellGivenUp() const {
    QStringList texts;
    for (const Order& order : givenUp_)
        texts.append(order.text);
    Tell(Kind::CommandGivenUp, texts);
}

void BusWatch::ClockWentBack(DateTime latest) {
    latest_ = Bytes::Greater(latest, latest_);
    wentBack_ = Now();
    Faults::Set(Kind::ClockSetBack);
}

void BusWatch::CheckClock() {
    if (latest_ == 0 || (DateTimes::Now() < latest_ && Now() - wentBack_ < SetBackStands))
        return;
    latest_ = 0;
    Faults::Clear(Kind::ClockSetBack);
}

void BusWatch::CheckDisk() {
    const std::optional<platform::Space> space =
        platform::SpaceOf(Global::InApplicationFolder(QString()));
    if (!space)
        return;
    if (space->free < Full) {
        Faults::Clear(Kind::DiskNearlyFull);
        Faults::Set(Kind::DiskFull);
        return;
    }
    Faults::Clear(Kind::DiskFull);
    const double percent = space->Percent();
    if (percent < NearlyFull || (percent < EnoughAgain && Faults::Stands(Kind::DiskNearlyFull)))
        Faults::Set(Kind::DiskNearlyFull, QStringLiteral("%1 %").arg(int(percent)));
    else
        Faults::Clear(Kind::DiskNearlyFull);
}
