#include "platform/PrinterPort.h"

#include "platform/Clock.h"

#include <QFile>
#include <QList>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>
#include <utility>

namespace platform {

namespace {

struct Speed {
    int bitsPerSecond;
    speed_t code;
};
constexpr Speed Speeds[] = {
    {300, B300},   {600, B600},     {1200, B1200},   {2400, B2400},   {4800, B4800},
    {9600, B9600}, {19200, B19200}, {38400, B38400}, {57600, B57600}, {115200, B115200},
};
constexpr tcflag_t DataBits[] = {CS5, CS6, CS7, CS8};
constexpr int FirstDataBits = 5;
/// Parities and stop bits of LineSettings count from 0 to this.
constexpr int LastChoice = 2;
/// Rest between two looks at a device that is to be closed, ms.
constexpr int BusyStep = 5;

int SpeedCode(int bitsPerSecond, speed_t& code) {
    for (const Speed& speed : Speeds) {
        if (speed.bitsPerSecond == bitsPerSecond) {
            code = speed.code;
            return 0;
        }
    }
    return EINVAL;
}

class DevicePort : public PrinterPort {
public:
    explicit DevicePort(std::function<QString(const QString&)> devicePath)
        : devicePath_(std::move(devicePath)) {
        Ports() += this;
    }
    ~DevicePort() override {
        DevicePort::Close();
        Ports().removeOne(this);
    }
    DevicePort(const DevicePort&) = delete;
    DevicePort& operator=(const DevicePort&) = delete;

    int Open(const QString& portName) override {
        Close();
        hasBegun_ = false;
        // A pipe whose reader has gone gives an error, not the end of the program.
        std::signal(SIGPIPE, SIG_IGN);
        // For writing only: a pipe without a reader then is a printer that isn't there.
        path_ = QFile::encodeName(devicePath_(portName));
        file_ = ::open(path_.constData(), O_WRONLY | O_APPEND | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
        int error = file_ < 0 ? errno : 0;
        if (error == EBUSY && Share())
            error = 0;
        return error;
    }

    bool IsOpen() const override { return file_ >= 0; }

    int CheckLine() override {
        termios settings{};
        return ::tcgetattr(file_, &settings) == 0 ? 0 : errno;
    }

    int SetLine(const LineSettings& line) override {
        termios settings{};
        if (::tcgetattr(file_, &settings) != 0)
            return errno;
        speed_t code = B9600;
        const int dataBits = line.dataBits - FirstDataBits;
        if (SpeedCode(line.speed, code) != 0 || dataBits < 0 ||
            dataBits >= int(std::size(DataBits)))
            return EINVAL;
        if (line.parity < 0 || line.parity > LastChoice || line.stopBits < 0 ||
            line.stopBits > LastChoice)
            return EINVAL;
        ::cfmakeraw(&settings);
        settings.c_cflag &= tcflag_t(~(CSIZE | CSTOPB | PARENB | PARODD | CRTSCTS));
        settings.c_cflag |= CLOCAL | CREAD | DataBits[dataBits];
        if (line.stopBits != 0)
            settings.c_cflag |= CSTOPB;
        if (line.parity != 0)
            settings.c_cflag |= PARENB | (line.parity == 1 ? PARODD : 0);
        settings.c_iflag &= tcflag_t(~(IXON | IXOFF | IXANY));
        ::cfsetspeed(&settings, code);
        return ::tcsetattr(file_, TCSANOW, &settings) == 0 ? 0 : errno;
    }

    void SetWriteTimeout(int milliseconds) override { timeout_ = milliseconds; }

    int Write(const QByteArray& bytes) override {
        lastLook_ = Clock::Current().MonotonicMs();
        deadline_ = lastLook_ + timeout_;
        hasBegun_ = false;
        waiting_ += bytes;
        return Advance();
    }

    bool IsBusy() const override { return isBusy_; }
    bool HasBegun() const override { return hasBegun_; }

    int Advance() override {
        isBusy_ = false;
        const qsizetype before = waiting_.size();
        if (const int error = SendWaiting()) {
            waiting_.clear();
            return error;
        }
        if (waiting_.isEmpty() && !IsUnderWay())
            return 0;
        const qint64 now = Clock::Current().MonotonicMs();
        // A printer that takes more isn't to blame for a time in which nobody offered it any.
        const bool lookedAway = now - std::exchange(lastLook_, now) > timeout_ / 4;
        if (lookedAway && waiting_.size() < before)
            deadline_ = now + timeout_;
        if (now >= deadline_) {
            GiveUp();
            return ETIMEDOUT;
        }
        isBusy_ = true;
        return 0;
    }

    void Close() override {
        if (file_ < 0)
            return;
        while (isBusy_ && Advance() == 0)
            Clock::Current().Sleep(BusyStep);
        ::close(file_);
        file_ = -1;
    }

private:
    /// As much as the device takes now. Gives 0 or the system's error.
    int SendWaiting() {
        while (!waiting_.isEmpty()) {
            const ssize_t written = ::write(file_, waiting_.constData(), size_t(waiting_.size()));
            if (written > 0) {
                waiting_.remove(0, written);
                hasBegun_ = true;
                continue;
            }
            if (written < 0 && errno == EINTR)
                continue;
            return written < 0 && errno != EAGAIN ? errno : 0;
        }
        return 0;
    }

    /// What the device took hasn't left the machine. Where no line tells that, a printer on USB is
    /// ready again when it has taken what was written; its close drops the rest.
    bool IsUnderWay() const {
        int queued = 0;
        if (::ioctl(file_, TIOCOUTQ, &queued) == 0)
            return queued > 0;
        pollfd state{file_, POLLOUT, 0};
        return ::poll(&state, 1, 0) == 0;
    }

    /// The close of a line would wait for what is in it.
    void GiveUp() {
        waiting_.clear();
        ::tcflush(file_, TCOFLUSH);
    }

    static QList<DevicePort*>& Ports() {
        static QList<DevicePort*> ports;
        return ports;
    }

    /// A parallel port is opened once at a time. Where another port object of the program holds
    /// it, both use the same file, as a port tried out while it prints.
    bool Share() {
        for (const DevicePort* port : std::as_const(Ports())) {
            if (port->IsOpen() && port->path_ == path_) {
                file_ = ::fcntl(port->file_, F_DUPFD_CLOEXEC, 0);
                return IsOpen();
            }
        }
        return false;
    }

    std::function<QString(const QString&)> devicePath_;
    QByteArray path_;
    int file_ = -1;
    int timeout_ = 0;
    qint64 deadline_ = 0; // of the last write
    qint64 lastLook_ = 0;
    QByteArray waiting_; // not taken by the device yet
    bool isBusy_ = false;
    bool hasBegun_ = false;
};

} // namespace

QString PrinterPort::ErrorText(int number) {
    return QString::fromLocal8Bit(std::strerror(number));
}

std::unique_ptr<PrinterPort> MakePrinterPort(std::function<QString(const QString&)> devicePath) {
    return std::make_unique<DevicePort>(std::move(devicePath));
}

} // namespace platform
