#include "platform/SystemClock.h"

#include <QDBusMessage>
#include <QTimeZone>
#include <cerrno>
#include <cstring>
#include <ctime>
#include <utility>

namespace platform {

namespace {

/// The service is started by the first call; a slow disk takes its time, ms.
constexpr int Patience = 3000;
const QString Service = QStringLiteral("org.freedesktop.timedate1");

int SetByCall(qint64 milliseconds) {
    timespec time = {};
    time.tv_sec = time_t(milliseconds / 1000);
    time.tv_nsec = long(milliseconds % 1000) * 1'000'000;
    return clock_settime(CLOCK_REALTIME, &time) == 0 ? 0 : errno;
}

/// Errors that tell of a bus or service that isn't there, and nothing of the clock.
bool IsAbsent(const QString& error) {
    static const QStringList absent = {
        QStringLiteral("org.freedesktop.DBus.Error.ServiceUnknown"),
        QStringLiteral("org.freedesktop.DBus.Error.NameHasNoOwner"),
        QStringLiteral("org.freedesktop.DBus.Error.NoServer"),
        QStringLiteral("org.freedesktop.DBus.Error.Disconnected"),
        QStringLiteral("org.freedesktop.DBus.Error.UnknownObject"),
    };
    // What starts services says that this one can't be started.
    return absent.contains(error) ||
           error.startsWith(QLatin1String("org.freedesktop.DBus.Error.Spawn.")) ||
           error.startsWith(QLatin1String("org.freedesktop.systemd1."));
}

SystemClock::Outcome OutcomeOf(const QString& error) {
    if (error == Service + QLatin1String(".AutomaticTimeSyncEnabled"))
        return SystemClock::Outcome::KeptByNetwork;
    if (error == QLatin1String("org.freedesktop.DBus.Error.AccessDenied") ||
        error == QLatin1String("org.freedesktop.DBus.Error.InteractiveAuthorizationRequired"))
        return SystemClock::Outcome::Refused;
    return SystemClock::Outcome::Failed;
}

class MachineSystemClock : public SystemClock {
public:
    explicit MachineSystemClock(ClockRoads roads)
        : roads_(std::move(roads)) {
        if (!roads_.call)
            roads_.call = SetByCall;
    }

    Result Set(const QDateTime& when) override {
        const qint64 milliseconds = when.toMSecsSinceEpoch();
        const QDBusConnection bus = roads_.bus();
        if (!bus.isConnected())
            return ByCall(milliseconds);
        QDBusMessage request =
            QDBusMessage::createMethodCall(Service, QStringLiteral("/org/freedesktop/timedate1"),
                                           Service, QStringLiteral("SetTime"));
        constexpr bool Relative = false;
        constexpr bool Interactive = false;
        request << milliseconds * 1000 << Relative << Interactive;
        const QDBusMessage reply = bus.call(request, QDBus::Block, Patience);
        if (reply.type() != QDBusMessage::ErrorMessage)
            return {};
        if (IsAbsent(reply.errorName()))
            return ByCall(milliseconds);
        return {OutcomeOf(reply.errorName()), reply.errorMessage()};
    }

    QString TimeZone() const override {
        const QDateTime now = QDateTime::currentDateTime();
        const int minutes = now.offsetFromUtc() / 60;
        return QStringLiteral("%1 (UTC%2%3:%4)")
            .arg(QString::fromLatin1(QTimeZone::systemTimeZoneId()))
            .arg(QLatin1Char(minutes < 0 ? '-' : '+'))
            .arg(qAbs(minutes) / 60, 2, 10, QLatin1Char('0'))
            .arg(qAbs(minutes) % 60, 2, 10, QLatin1Char('0'));
    }

private:
    Result ByCall(qint64 milliseconds) const {
        const int error = roads_.call(milliseconds);
        if (error == 0)
            return {};
        return {error == EPERM ? Outcome::Refused : Outcome::Failed,
                QString::fromLocal8Bit(std::strerror(error))};
    }

    ClockRoads roads_;
};

SystemClock* installed = nullptr;

} // namespace

SystemClock& SystemClock::Current() {
    static const std::unique_ptr<SystemClock> machine = MakeSystemClock();
    return installed != nullptr ? *installed : *machine;
}

void SystemClock::Install(SystemClock* clock) {
    installed = clock;
}

std::unique_ptr<SystemClock> MakeSystemClock(ClockRoads roads) {
    return std::make_unique<MachineSystemClock>(std::move(roads));
}

} // namespace platform
