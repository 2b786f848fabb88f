#pragma once

#include <QByteArray>
#include <QString>
#include <functional>
#include <memory>

namespace platform {

/// Line parameters of a serial printer.
struct LineSettings {
    int speed = 9600;
    /// 0 none, 1 odd, 2 even.
    int parity = 0;
    int dataBits = 8;
    /// 0 one, 1 one and a half, 2 two.
    int stopBits = 0;
};

/// A port that a printer is wired straight to, opened by name, written to within a time. Every
/// operation gives 0 or the system's error number.
class PrinterPort {
public:
    virtual ~PrinterPort() = default;

    /// Opens the device of a port name such as "COM2" or "LPT1", without waiting for anything.
    virtual int Open(const QString& portName) = 0;
    virtual bool IsOpen() const = 0;
    /// Fails on a device that has no line to set.
    virtual int CheckLine() = 0;
    /// Sets speed, parity, data and stop bits, and no handshake. EINVAL for values that no line
    /// has; the line then stays as it is.
    virtual int SetLine(const LineSettings& line) = 0;
    /// Longest time of a write and its way out of the machine, ms.
    virtual void SetWriteTimeout(int milliseconds) = 0;
    virtual int Write(const QByteArray& bytes) = 0;
    /// Waits for what is written within the rest of the write's time, then gives up what is left:
    /// a stuck printer must not hold up the bus.
    virtual void Close() = 0;

    /// What the system says of an error number.
    static QString ErrorText(int number);
};

/// The machine's port: a serial line, a parallel printer or a named pipe that somebody reads.
/// `devicePath` gives the device of a port name at each opening.
std::unique_ptr<PrinterPort> MakePrinterPort(std::function<QString(const QString&)> devicePath);

} // namespace platform
