#pragma once

#include <QObject>
#include <memory>

class QSocketNotifier;

namespace platform {

/// Why the program is asked to end from outside.
enum class UnloadMode {
    Code = 1,       ///< the program itself
    System = 2,     ///< session end or system shutdown
    TaskManager = 3 ///< a signal to this process
};

/// Turns the system's requests to end into one signal on the event loop: SIGTERM and SIGINT as
/// the task manager's, the end of the session, SIGHUP and a system on its way down as the
/// system's. One at a time in a process; the former signal handlers come back with its end.
class ShutdownWatch : public QObject {
    Q_OBJECT
public:
    explicit ShutdownWatch(QObject* parent = nullptr);
    ~ShutdownWatch() override;

    /// A signal that asks for the end has come, told by `Requested` or not yet: for what runs long
    /// without the event loop.
    static bool Pending();

Q_SIGNALS:
    void Requested(platform::UnloadMode mode);

private Q_SLOTS:
    void SystemGoesDown(bool starting);

private:
    void WatchSystem();
    void ReadSignal();

    std::unique_ptr<QSocketNotifier> notifier_;
    bool systemGoesDown_ = false;
};

} // namespace platform
