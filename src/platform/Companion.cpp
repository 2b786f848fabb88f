#include "platform/Companion.h"

#include <QSignalBlocker>
#include <csignal>
#include <sys/prctl.h>

namespace platform {

namespace {
/// What is asked to end is killed after so many milliseconds.
constexpr int Patience = 2000;
} // namespace

Companion::Companion(QObject* parent)
    : QObject(parent) {
    process_.setStandardErrorFile(QProcess::nullDevice());
    process_.setChildProcessModifier([] { prctl(PR_SET_PDEATHSIG, SIGTERM); });
    connect(&process_, &QProcess::readyReadStandardOutput, this,
            [this] { process_.readAllStandardOutput(); });
    connect(&process_, &QProcess::finished, this, &Companion::Died);
}

Companion::~Companion() {
    End();
}

bool Companion::Start(const QString& program, const QStringList& arguments, int milliseconds) {
    End();
    const QSignalBlocker quiet(&process_);
    process_.start(program, arguments);
    if (process_.waitForReadyRead(milliseconds) && process_.readAllStandardOutput().contains('\n'))
        return true;
    process_.kill();
    process_.waitForFinished();
    return false;
}

bool Companion::Runs() const {
    return process_.state() == QProcess::Running;
}

void Companion::Tell(const QByteArray& line) {
    if (Runs())
        process_.write(line + '\n');
}

void Companion::End() {
    if (process_.state() == QProcess::NotRunning)
        return;
    const QSignalBlocker quiet(&process_);
    process_.terminate();
    if (process_.waitForFinished(Patience))
        return;
    process_.kill();
    process_.waitForFinished();
}

} // namespace platform
