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
    /// Writes without waiting: what the device doesn't take at once is on its way until Advance has
    /// brought it out. Bytes written meanwhile go behind it, with a time of their own. 0 says
    /// nothing of what is on its way.
    virtual int Write(const QByteArray& bytes) = 0;
    /// Something written is still in the machine.
    virtual bool IsBusy() const = 0;
    /// Goes on with what is on its way, without waiting. ETIMEDOUT when its time is over: the rest
    /// is given up.
    virtual int Advance() = 0;
    /// The device took some of what was written last, whatever became of the rest.
    virtual bool HasBegun() const = 0;
    /// Waits for what is on its way within the rest of its time, then gives it up.
    virtual void Close() = 0;

    /// What the system says of an error number.
    static QString ErrorText(int number);
};

/// The machine's port: a serial line, a parallel printer or a named pipe that somebody reads.
/// `devicePath` gives the device of a port name at each opening.
std::unique_ptr<PrinterPort> MakePrinterPort(std::function<QString(const QString&)> devicePath);

} // namespace platform
