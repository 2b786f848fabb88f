#include "platform/PrinterPort.h"

#include "platform/Clock.h"

#include <QFile>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

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
/// Rest between two looks at what still has to leave the machine, ms.
constexpr int DrainStep = 5;

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
        : devicePath_(std::move(devicePath)) {}
    ~DevicePort() override { DevicePort::Close(); }

    int Open(const QString& portName) override {
        Close();
        const QByteArray path = QFile::encodeName(devicePath_(portName));
        file_ = ::open(path.constData(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
        if (file_ < 0 && (errno == EACCES || errno == EINVAL))
            file_ = ::open(path.constData(), O_WRONLY | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
        return file_ < 0 ? errno : 0;
    }

    bool IsOpen() const override { return file_ >= 0; }

    int SetLine(const LineSettings& line) override {
        termios settings{};
        if (::tcgetattr(file_, &settings) != 0)
            return errno;
        speed_t code = B9600;
        const int dataBits = line.dataBits - FirstDataBits;
        if (SpeedCode(line.speed, code) != 0 || dataBits < 0 || dataBits >= 4)
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
        const qint64 deadline = Clock::Current().MonotonicMs() + timeout_;
        deadline_ = deadline;
        qsizetype done = 0;
        while (done < bytes.size()) {
            const ssize_t written =
                ::write(file_, bytes.constData() + done, size_t(bytes.size() - done));
            if (written > 0) {
                done += written;
                continue;
            }
            if (written < 0 && errno != EAGAIN && errno != EINTR)
                return errno;
            const qint64 left = deadline - Clock::Current().MonotonicMs();
            pollfd waiting{file_, POLLOUT, 0};
            if (left <= 0 || ::poll(&waiting, 1, int(left)) == 0)
                return ETIMEDOUT;
        }
        return 0;
    }

    void Close() override {
        if (file_ < 0)
            return;
        int queued = 0;
        while (::ioctl(file_, TIOCOUTQ, &queued) == 0 && queued > 0) {
            if (Clock::Current().MonotonicMs() >= deadline_) {
                ::tcflush(file_, TCOFLUSH);
                break;
            }
            Clock::Current().Sleep(DrainStep);
        }
        ::close(file_);
        file_ = -1;
    }

private:
    std::function<QString(const QString&)> devicePath_;
    int file_ = -1;
    int timeout_ = 0;
    qint64 deadline_ = 0;
};

} // namespace

QString PrinterPort::ErrorText(int number) {
    return QString::fromLocal8Bit(std::strerror(number));
}

std::unique_ptr<PrinterPort> MakePrinterPort(std::function<QString(const QString&)> devicePath) {
    return std::make_unique<DevicePort>(std::move(devicePath));
}

} // namespace platform
