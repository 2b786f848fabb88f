#include "platform/Processes.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <csignal>
#include <unistd.h>

namespace platform {

namespace {

/// The kernel keeps so many characters of a process's name.
constexpr int KernelNameLength = 15;

QByteArray ContentOf(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

bool HasName(const QString& folder, const QByteArray& name) {
    QByteArray known = ContentOf(folder + QStringLiteral("/comm"));
    if (known.endsWith('\n'))
        known.chop(1);
    if (known.size() < KernelNameLength)
        return known == name;
    // A long name is cut there; its end stands in the command.
    const QByteArray command = ContentOf(folder + QStringLiteral("/cmdline"));
    const QByteArray program = command.left(command.indexOf('\0'));
    return name.startsWith(known) && program.mid(program.lastIndexOf('/') + 1) == name;
}

} // namespace

bool KillProcess(const QString& name) {
    if (name.isEmpty())
        return false;
    const QDir processes(QStringLiteral("/proc"));
    for (const QString& entry : processes.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        bool isNumber = false;
        const int id = entry.toInt(&isNumber);
        if (isNumber && id > 1 && id != getpid() &&
            HasName(processes.filePath(entry), name.toLocal8Bit()))
            kill(id, SIGTERM);
    }
    return false;
}

bool StartProcess(const QString& command) {
    QStringList parts = QProcess::splitCommand(command);
    if (parts.isEmpty())
        return false;
    const QString program = parts.takeFirst();
    return QProcess::startDetached(program, parts);
}

} // namespace platform
