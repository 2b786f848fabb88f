#include "platform/Ports.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSerialPortInfo>
#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <unistd.h>
#include <utility>

namespace platform {

namespace {

QList<PortDevice> SystemSerialLines() {
    QList<PortDevice> devices;
    for (const QSerialPortInfo& info : QSerialPortInfo::availablePorts())
        devices += {info.systemLocation(), QString(), info.manufacturer(), info.description(),
                    info.serialNumber()};
    return devices;
}

/// One line of a file of the system; empty when it can't be read.
QString LineOf(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readLine(4096)).trimmed()
                                          : QString();
}

QString DeviceOf(const QString& path) {
    const QString real = QFileInfo(path).canonicalFilePath();
    return real.isEmpty() ? QFileInfo(path).absoluteFilePath() : real;
}

/// The order in which people count: ttyS2 ahead of ttyS10.
bool CountsBefore(const QString& one, const QString& other) {
    static const QRegularExpression number(QStringLiteral("[0-9]*$"));
    const QString head = one.left(number.match(one).capturedStart());
    const QString otherHead = other.left(number.match(other).capturedStart());
    if (head != otherHead)
        return head < otherHead;
    return one.mid(head.size()).toInt() < other.mid(head.size()).toInt();
}

/// Names of a folder in that order.
QStringList Counted(const QString& folder, const QString& pattern) {
    QStringList names =
        QDir(folder).entryList({pattern}, QDir::System | QDir::Files | QDir::NoDotAndDotDot);
    std::sort(names.begin(), names.end(), CountsBefore);
    return names;
}

/// What a printer says of itself: "MFG:Maker;MDL:Model;...", or in long words.
QString FieldOf(const QString& identity, const QString& word) {
    const QRegularExpression field(QStringLiteral("(?:^|;)\\s*(?:%1)\\s*:\\s*([^;]*)").arg(word));
    return field.match(identity).captured(1).trimmed();
}

bool Holds(const QString& files, const QString& device) {
    // Another user's can't be listed; what is gone meanwhile lists nothing.
    for (const QString& file :
         QDir(files).entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot)) {
        if (QFile::symLinkTarget(files + u'/' + file) == device)
            return true;
    }
    return false;
}

} // namespace

Ports::Ports(PortRoots roots)
    : roots_(std::move(roots)) {
    if (!roots_.serial)
        roots_.serial = SystemSerialLines;
}

QString Ports::StablePath(const QString& path) const {
    // The own names come first: two adapters without a serial number share one by-id.
    for (const char* folder : {"/korvanelle", "/serial/by-id"}) {
        const QDir names(roots_.dev + QLatin1String(folder));
        for (const QString& name :
             names.entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot, QDir::Name)) {
            if (SameDevice(names.filePath(name), path))
                return names.filePath(name);
        }
    }
    return {};
}

QList<PortDevice> Ports::SerialDevices() const {
    QList<PortDevice> devices = roots_.serial();
    for (PortDevice& device : devices)
        device.stablePath = StablePath(device.path);
    std::sort(devices.begin(), devices.end(), [](const PortDevice& a, const PortDevice& b) {
        if (a.stablePath.isEmpty() != b.stablePath.isEmpty())
            return b.stablePath.isEmpty();
        return CountsBefore(a.path, b.path);
    });
    return devices;
}

/// The interface of a printer lies in the folder of its USB device, which knows maker and serial
/// number.
PortDevice Ports::PrinterAt(const QString& path) const {
    const QString interface = QFileInfo(roots_.sys + QStringLiteral("/class/usbmisc/") +
                                        QFileInfo(path).fileName() + QStringLiteral("/device"))
                                  .canonicalFilePath();
    PortDevice device;
    device.path = path;
    if (interface.isEmpty())
        return device;
    const QString identity = LineOf(interface + QStringLiteral("/ieee1284_id"));
    const QString usb = QFileInfo(interface).path();
    device.maker = FieldOf(identity, QStringLiteral("MFG|MANUFACTURER"));
    device.description = FieldOf(identity, QStringLiteral("MDL|MODEL"));
    device.serialNumber = LineOf(usb + QStringLiteral("/serial"));
    if (device.maker.isEmpty())
        device.maker = LineOf(usb + QStringLiteral("/manufacturer"));
    if (device.description.isEmpty())
        device.description = LineOf(usb + QStringLiteral("/product"));
    return device;
}

QList<PortDevice> Ports::PrinterDevices() const {
    QList<PortDevice> devices;
    const QString usb = roots_.dev + QStringLiteral("/usb");
    for (const QString& name : Counted(usb, QStringLiteral("lp*")))
        devices += PrinterAt(usb + u'/' + name);
    for (const QString& name : Counted(roots_.dev, QStringLiteral("lp*"))) {
        PortDevice device;
        device.path = roots_.dev + u'/' + name;
        devices += device;
    }
    return devices;
}

PortUse Ports::UseOf(const QString& path) const {
    using State = PortUse::State;
    const QString device = QFileInfo(path).canonicalFilePath();
    if (device.isEmpty())
        return {State::Absent, {}};
    const QString own = QString::number(QCoreApplication::applicationPid());
    if (Holds(roots_.proc + u'/' + own + QStringLiteral("/fd"), device))
        return {State::Own, {}};
    for (const QString& process :
         QDir(roots_.proc).entryList({QStringLiteral("[1-9]*")}, QDir::Dirs)) {
        const QString folder = roots_.proc + u'/' + process;
        if (process != own && Holds(folder + QStringLiteral("/fd"), device))
            return {State::Taken, LineOf(folder + QStringLiteral("/comm"))};
    }
    // Without a line for control, and without waiting for one. Where somebody has the device for
    // himself, the system refuses before it touches it.
    const int file = ::open(QFile::encodeName(device).constData(),
                            O_WRONLY | O_APPEND | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    if (file >= 0) {
        ::close(file);
        return {};
    }
    if (errno == EBUSY)
        return {State::Taken, {}};
    return {errno == EACCES || errno == EPERM ? State::Forbidden : State::Absent, {}};
}

bool Ports::SameDevice(const QString& one, const QString& other) {
    return DeviceOf(one) == DeviceOf(other);
}

static std::optional<PortRoots>& Overridden() {
    static std::optional<PortRoots> roots;
    return roots;
}

Ports Ports::Current() {
    return Ports(Overridden().value_or(PortRoots()));
}

void Ports::Override(std::optional<PortRoots> roots) {
    Overridden() = std::move(roots);
}

} // namespace platform
