#pragma once

#include <QByteArray>
#include <QString>
#include <functional>
#include <memory>

namespace platform {

/// What an open device made of what it was asked for.
struct LineFeatures {
    enum class Answer {
        NotOffered, ///< the device doesn't have it, or it wasn't asked for
        Taken,
        Refused
    };
    /// Bytes are handed on as they come, not gathered.
    Answer lowLatency = Answer::NotOffered;
    /// The device switches the direction of a two-wire line by itself. Refused as well where the
    /// device doesn't have it: it was asked for by name.
    Answer rs485 = Answer::NotOffered;
};

/// A serial line with a byte buffer each way, worked without an event loop.
class SerialLink {
public:
    virtual ~SerialLink() = default;

    /// Port number as the site names it: 1 for "COM1".
    virtual int CommPort() const = 0;
    virtual void setCommPort(int number) = 0;
    /// "speed,parity letter,data bits,stop bits", such as "9600,N,8,1"; parity is N, E, O, M or
    /// S, stop bits 1 or 2. Takes effect at once when the port is open; throws RunTimeError
    /// `PortUnavailable` then when the device refuses them.
    virtual QString Settings() const = 0;
    virtual void setSettings(const QString& settings) = 0;

    /// False as well once an open device has gone.
    virtual bool PortOpen() const = 0;
    /// Opens or closes. Throws RunTimeError `PortUnavailable` when the device can't be opened or
    /// refuses the settings.
    virtual void setPortOpen(bool open) = 0;
    /// Those of the last opening.
    virtual LineFeatures Features() const { return {}; }

    virtual void setRTSEnable(bool on) = 0;
    /// Empties both buffers.
    virtual void ClearBuffers() = 0;
    /// Hands bytes to the line, returning when they are with the device or, when it takes none,
    /// after a second, dropping the rest. Throws RunTimeError `PortNotOpen`.
    virtual void Output(const QByteArray& bytes) = 0;
    /// Number of bytes received and not yet taken.
    virtual int InBufferCount() = 0;
    /// Takes all received bytes.
    virtual QByteArray Input() = 0;
    /// Waits until at least `count` bytes are there or the monotonic clock has passed
    /// `deadlineMs`; returns at once from a closed port and when the device goes. Never runs the
    /// event loop.
    virtual void WaitForInput(int count, qint64 deadlineMs) = 0;
};

/// A request to the driver of an open device, as ioctl has them: 0, or the number of the error.
using DeviceControl = std::function<int(int handle, unsigned long request, void* argument)>;
int SystemControl(int handle, unsigned long request, void* argument);

/// What a serial port is made with beside its devices; tests put others in the place of the
/// system's.
struct SerialSetup {
    /// True for a port number whose device is to switch the direction of a two-wire line; asked
    /// anew at each opening. None: no port's.
    std::function<bool(int)> isRs485;
    DeviceControl control = SystemControl;
    QString sys = QStringLiteral("/sys");
};

/// The machine's serial port, for itself alone while it is open. `devicePath` gives the device of a
/// port number; it is asked anew at each opening. The event loop, where it runs, is what notices a
/// device that goes between two exchanges.
std::unique_ptr<SerialLink> MakeSerialPort(std::function<QString(int)> devicePath,
                                           SerialSetup setup = {});

} // namespace platform
