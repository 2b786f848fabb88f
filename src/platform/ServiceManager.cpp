#include "platform/ServiceManager.h"

#include "platform/Clock.h"
#include "platform/Replacement.h"

#include <cstdint>
#include <cstdio>
#include <systemd/sd-daemon.h>

namespace platform {

namespace {

ServiceManager* installed = nullptr;

constexpr int BeatsInPatience = 4;
/// A start or an end that nobody told the patience of is given so much from one beat to the next.
constexpr qint64 UsualPatience = 60000;
constexpr qint64 MicrosecondsAMillisecond = 1000;

/// The stream holds one line for each message.
QByteArray OneLine(const QString& text) {
    return text.simplified().toUtf8();
}

void ToStandardError(const QByteArray& line) {
    std::fprintf(stderr, "%s\n", line.constData());
}

} // namespace

ServiceRoads SystemRoads() {
    ServiceRoads roads;
    if (!qEnvironmentVariableIsEmpty("NOTIFY_SOCKET"))
        roads.notify = [](const QByteArray& lines) { sd_notify(0, lines.constData()); };
    std::uint64_t microseconds = 0;
    if (sd_watchdog_enabled(0, &microseconds) > 0)
        roads.patience = qint64(microseconds) / MicrosecondsAMillisecond;
    roads.replaced = Replacement::Note().has_value();
    if (qEnvironmentVariableIsEmpty("JOURNAL_STREAM"))
        roads.journal = [](const QByteArray& line) { ToStandardError(line.mid(3)); };
    else
        roads.journal = ToStandardError;
    return roads;
}

ServiceManager::ServiceManager(ServiceRoads roads)
    : roads_(std::move(roads)) {}

void ServiceManager::Notify(const QByteArray& line) const {
    if (roads_.notify)
        roads_.notify(line);
}

void ServiceManager::Ready() {
    if (stage_ != Stage::Starts)
        return;
    stage_ = Stage::Runs;
    Notify("READY=1");
    lastBeat_.reset();
    Beat();
}

void ServiceManager::Beat() {
    const bool watched = stage_ == Stage::Runs || (stage_ == Stage::Starts && roads_.replaced);
    if (!roads_.notify || (watched && !roads_.patience))
        return;
    const qint64 patience = roads_.patience.value_or(UsualPatience);
    const qint64 now = Clock::Current().MonotonicMs();
    if (lastBeat_ && now - *lastBeat_ < patience / BeatsInPatience)
        return;
    lastBeat_ = now;
    if (watched)
        Notify("WATCHDOG=1");
    else
        Notify("EXTEND_TIMEOUT_USEC=" + QByteArray::number(patience * MicrosecondsAMillisecond));
}

void ServiceManager::Status(const QString& line) {
    if (line == status_)
        return;
    status_ = line;
    Notify("STATUS=" + OneLine(line));
}

void ServiceManager::Stopping() {
    if (stage_ == Stage::Stops)
        return;
    stage_ = Stage::Stops;
    lastBeat_.reset();
    Notify("STOPPING=1");
}

void ServiceManager::Log(Priority priority, const QString& line) {
    if (roads_.journal)
        roads_.journal('<' + QByteArray::number(int(priority)) + '>' + OneLine(line));
}

ServiceManager& ServiceManager::Current() {
    static ServiceManager system;
    return installed != nullptr ? *installed : system;
}

void ServiceManager::Install(ServiceManager* manager) {
    installed = manager;
}

} // namespace platform
