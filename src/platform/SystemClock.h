#pragma once

#include <QDBusConnection>
#include <QDateTime>
#include <QString>
#include <functional>
#include <memory>

namespace platform {

/// The clock of the machine, as somebody sets it. What reads the time goes through `Clock`, which
/// follows at once.
class SystemClock {
public:
    enum class Outcome {
        Done,
        Refused,       ///< this user may not set it
        KeptByNetwork, ///< the machine takes its time from the network
        Failed,        ///< anything else
    };
    struct Result {
        Outcome outcome = Outcome::Done;
        /// What the system says, in its own language; empty when done.
        QString words;
    };

    virtual ~SystemClock() = default;
    /// Sets date and time. Never asks anybody for a password, and gives up after some seconds.
    virtual Result Set(const QDateTime& when) = 0;
    /// Name of the zone that local times of the machine are in, and its distance from UTC at
    /// present, such as "Europe/Berlin (UTC+02:00)".
    virtual QString TimeZone() const = 0;

    /// The machine's own until another is installed, which the caller keeps alive; a null pointer
    /// brings it back.
    static SystemClock& Current();
    static void Install(SystemClock* clock);
};

/// Roads to the machine's clock; each can be replaced by a test.
struct ClockRoads {
    /// The message bus on which the service org.freedesktop.timedate1 is.
    std::function<QDBusConnection()> bus = &QDBusConnection::systemBus;
    /// Sets the clock without that service, to milliseconds since 1970 UTC. Gives 0 or the
    /// system's error number.
    std::function<int(qint64)> call;
};

/// The clock set by the service of the system, which also sets the clock that goes on while the
/// machine is off; where there is no such service, by a call of the system.
std::unique_ptr<SystemClock> MakeSystemClock(ClockRoads roads = {});

} // namespace platform
