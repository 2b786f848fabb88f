#pragma once

#include <QByteArray>
#include <QString>
#include <functional>
#include <optional>

namespace platform {

/// Roads to what started the program; each can be replaced by a test.
struct ServiceRoads {
    /// Takes lines "NAME=value". Empty when nobody listens.
    std::function<void(const QByteArray&)> notify;
    /// Takes one line for the journal.
    std::function<void(const QByteArray&)> journal;
    /// A program that gives no sign of life for so long is ended and started again, ms; none when
    /// nobody waits for one.
    std::optional<qint64> patience;
    /// The process was ready before, with the program that this one has replaced: it is watched
    /// from the start.
    bool replaced = false;
};

/// The roads of this process: the service manager that started it, by libsystemd, and the standard
/// error stream. Where that leads to the journal, lines carry their priority.
ServiceRoads SystemRoads();

/// Whoever started the program and watches over it. Says nothing where nobody did.
class ServiceManager {
public:
    /// Those of the journal (syslog).
    enum class Priority { Error = 3, Warning = 4, Notice = 5, Information = 6 };

    explicit ServiceManager(ServiceRoads roads = SystemRoads());

    /// The program has come up: from now on a missing sign of life ends it.
    void Ready();
    /// A sign of life, where the work of the program is done and from no timer of its own: what
    /// hangs must be found. Cheap, at most four times in the patience one goes out. Before `Ready`
    /// and after `Stopping` it asks for so much more time instead.
    void Beat();
    /// One line on how the program does; the same line again goes out once.
    void Status(const QString& line);
    /// The program ends by itself.
    void Stopping();
    /// One line for the journal of the machine.
    void Log(Priority priority, const QString& line);

    /// The machine's own until another is installed, which the caller keeps alive; a null pointer
    /// brings it back.
    static ServiceManager& Current();
    static void Install(ServiceManager* manager);

private:
    enum class Stage { Starts, Runs, Stops };

    void Notify(const QByteArray& line) const;

    ServiceRoads roads_;
    Stage stage_ = Stage::Starts;
    std::optional<qint64> lastBeat_; // monotonic, ms
    QString status_;
};

} // namespace platform
