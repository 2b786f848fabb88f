#pragma once

#include <QList>
#include <QString>
#include <functional>
#include <optional>

namespace platform {

/// A device that a cable goes to: a serial line or a printer.
struct PortDevice {
    /// Where the system has it now, such as "/dev/ttyUSB0".
    QString path;
    /// A name under which the same device is found again after it was unplugged, such as
    /// "/dev/korvanelle/rs485-A50285BI-if00-port0" by the rules of the program, else
    /// "/dev/serial/by-id/usb-FTDI_..."; empty when it has none.
    QString stablePath;
    QString maker;
    QString description;
    QString serialNumber;

    /// What a setting is to hold for it.
    QString BestPath() const { return stablePath.isEmpty() ? path : stablePath; }
};

/// What stands between the program and a device.
struct PortUse {
    enum class State {
        Free,
        Own,       ///< this program has it open
        Taken,     ///< another program has it open
        Forbidden, ///< this user may not open it
        Absent,    ///< it isn't there, or doesn't answer
    };
    State state = State::Free;
    /// Name of the other program, when the system tells it.
    QString program;
};

/// Folders of the system, and what lists its serial lines without their stable names; tests put
/// others in their place.
struct PortRoots {
    QString dev = QStringLiteral("/dev");
    QString sys = QStringLiteral("/sys");
    QString proc = QStringLiteral("/proc");
    std::function<QList<PortDevice>()> serial;
};

/// The serial lines and printers of a machine.
class Ports {
public:
    explicit Ports(PortRoots roots = {});

    /// Serial lines, those that can be unplugged first.
    QList<PortDevice> SerialDevices() const;
    /// Printers that are wired straight to the machine, on USB ahead of parallel ones.
    QList<PortDevice> PrinterDevices() const;
    /// Who has a device. A device that nobody has is opened for a moment, as only that tells of a
    /// program of another user; one that somebody has is left alone.
    PortUse UseOf(const QString& path) const;

    /// True when two paths lead to the same device, or would if it were there.
    static bool SameDevice(const QString& one, const QString& other);

    /// Those of this machine, until a test puts others in their place.
    static Ports Current();
    static void Override(std::optional<PortRoots> roots);

private:
    QString StablePath(const QString& path) const;
    PortDevice PrinterAt(const QString& path) const;

    PortRoots roots_;
};

} // namespace platform
