#include "platform/ShutdownWatch.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QGuiApplication>
#include <QSocketNotifier>
#include <QTimer>
#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace platform {

namespace {

constexpr std::array<int, 3> WatchedSignals = {SIGTERM, SIGINT, SIGHUP};

// Set for the one watch that is alive; a signal handler has no other way to it.
std::array<int, 2> signalPipe = {-1, -1};
std::array<struct sigaction, WatchedSignals.size()> formerActions = {};

volatile std::sig_atomic_t pending = 0;

extern "C" void PassSignalOn(int number) {
    const int keptErrno = errno;
    pending = 1;
    const char byte = static_cast<char>(number);
    // A full pipe holds requests enough; what doesn't fit may be dropped.
    [[maybe_unused]] const ssize_t written = write(signalPipe[1], &byte, 1);
    errno = keptErrno;
}

void InstallHandlers() {
    for (size_t i = 0; i < WatchedSignals.size(); ++i) {
        struct sigaction action = {};
        action.sa_handler = PassSignalOn;
        action.sa_flags = SA_RESTART;
        sigemptyset(&action.sa_mask);
        sigaction(WatchedSignals[i], &action, &formerActions[i]);
        // Started detached from its terminal: the hang-up is to stay ignored.
        if (WatchedSignals[i] == SIGHUP && formerActions[i].sa_handler == SIG_IGN)
            sigaction(SIGHUP, &formerActions[i], nullptr);
    }
}

void RestoreHandlers() {
    for (size_t i = 0; i < WatchedSignals.size(); ++i)
        sigaction(WatchedSignals[i], &formerActions[i], nullptr);
}

} // namespace

ShutdownWatch::ShutdownWatch(QObject* parent)
    : QObject(parent) {
    Q_ASSERT(signalPipe[0] < 0);
    pending = 0;
    if (pipe2(signalPipe.data(), O_CLOEXEC | O_NONBLOCK) == 0) {
        notifier_ = std::make_unique<QSocketNotifier>(signalPipe[0], QSocketNotifier::Read);
        connect(notifier_.get(), &QSocketNotifier::activated, this, &ShutdownWatch::ReadSignal);
        InstallHandlers();
    }
    if (qGuiApp != nullptr)
        connect(
            qGuiApp, &QGuiApplication::commitDataRequest, this,
            [this] { Q_EMIT Requested(UnloadMode::System); }, Qt::DirectConnection);
    // The bus may answer slowly; the first screen doesn't wait for it.
    QTimer::singleShot(0, this, &ShutdownWatch::WatchSystem);
}

ShutdownWatch::~ShutdownWatch() {
    if (!notifier_)
        return;
    RestoreHandlers();
    notifier_.reset();
    close(signalPipe[0]);
    close(signalPipe[1]);
    signalPipe = {-1, -1};
    pending = 0;
}

bool ShutdownWatch::Pending() {
    return pending != 0;
}

void ShutdownWatch::WatchSystem() {
    QDBusConnection bus = QDBusConnection::systemBus();
    if (!bus.isConnected() || bus.interface() == nullptr)
        return;
    bus.connect(QStringLiteral("org.freedesktop.login1"), QStringLiteral("/org/freedesktop/login1"),
                QStringLiteral("org.freedesktop.login1.Manager"),
                QStringLiteral("PrepareForShutdown"), this, SLOT(SystemGoesDown(bool)));
}

void ShutdownWatch::SystemGoesDown(bool starting) {
    systemGoesDown_ = starting;
}

void ShutdownWatch::ReadSignal() {
    char number = 0;
    while (read(signalPipe[0], &number, 1) == 1) {
        const bool system = number == SIGHUP || (number == SIGTERM && systemGoesDown_);
        Q_EMIT Requested(system ? UnloadMode::System : UnloadMode::TaskManager);
    }
}

} // namespace platform
