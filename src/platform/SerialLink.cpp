#include "platform/SerialLink.h"

#include "platform/Clock.h"
#include "platform/LineFeatures.h"
#include "platform/RunTimeError.h"

#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QSocketNotifier>
#include <QStringList>
#include <array>
#include <asm/termbits.h>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>
#include <utility>

namespace platform {

namespace {

// What a noisy line may heap up while nobody takes it; the longest reply is a quarter of it.
constexpr int InBufferSize = 1024;
constexpr int OutputTimeoutMs = 1000;
// How far, in percent, a device may be off the speed: more than that and the far end misreads.
constexpr int SpeedTolerance = 3;

constexpr tcflag_t FrameBits = CSIZE | PARENB | PARODD | CMSPAR | CSTOPB;

struct LineSettings {
    int speed;
    tcflag_t frame; // among FrameBits
};

tcflag_t ParityOf(const QString& letter) {
    static const QHash<QString, tcflag_t> parities = {
        {QStringLiteral("N"), 0},
        {QStringLiteral("E"), PARENB},
        {QStringLiteral("O"), PARENB | PARODD},
        {QStringLiteral("M"), PARENB | PARODD | CMSPAR},
        {QStringLiteral("S"), PARENB | CMSPAR}};
    const auto found = parities.constFind(letter.toUpper());
    if (found == parities.constEnd())
        throw RunTimeError(errors::PortUnavailable);
    return *found;
}

// Throws for what isn't a setting of a serial line. One and a half stop bits are one, but the
// system doesn't offer them.
LineSettings Parse(const QString& settings) {
    static constexpr std::array<tcflag_t, 4> DataBits = {CS5, CS6, CS7, CS8};
    QStringList parts = settings.split(QLatin1Char(','));
    if (parts.size() != 4)
        throw RunTimeError(errors::PortUnavailable);
    for (QString& part : parts)
        part = part.trimmed();
    const int speed = parts[0].toInt();
    const int dataBits = parts[2].toInt();
    const bool oneStop = parts[3] == QLatin1String("1");
    if (speed <= 0 || dataBits < 5 || dataBits > 8 || (!oneStop && parts[3] != QLatin1String("2")))
        throw RunTimeError(errors::PortUnavailable);
    return {speed,
            ParityOf(parts[1]) | DataBits[size_t(dataBits - 5)] | (oneStop ? 0 : tcflag_t(CSTOPB))};
}

// Slaves of pseudo-terminals have the device majors 136 to 143.
bool IsPseudoTerminal(int handle) {
    struct stat state = {};
    if (fstat(handle, &state) != 0)
        return false;
    const unsigned int number = major(state.st_rdev);
    return number >= 136 && number <= 143;
}

class SerialPort : public SerialLink {
public:
    SerialPort(std::function<QString(int)> devicePath, SerialSetup setup)
        : devicePath_(std::move(devicePath))
        , setup_(std::move(setup)) {}
    ~SerialPort() override { Close(); }
    SerialPort(const SerialPort&) = delete;
    SerialPort& operator=(const SerialPort&) = delete;

    int CommPort() const override { return commPort_; }
    void setCommPort(int number) override { commPort_ = number; }
    QString Settings() const override { return settings_; }
    void setSettings(const QString& settings) override {
        settings_ = settings;
        if (PortOpen() && !Apply(Parse(settings)))
            throw RunTimeError(errors::PortUnavailable);
    }

    bool PortOpen() const override { return handle_ >= 0; }
    void setPortOpen(bool open) override;
    LineFeatures Features() const override { return features_; }
    void setRTSEnable(bool on) override;
    void ClearBuffers() override;
    void Output(const QByteArray& bytes) override;
    int InBufferCount() override;
    QByteArray Input() override;
    void WaitForInput(int count, qint64 deadlineMs) override;

private:
    int Control(unsigned long request, void* argument) const {
        return setup_.control(handle_, request, argument);
    }
    bool TakeAlone() const;
    bool Apply(const LineSettings& line);
    void AskForFeatures(const QString& device);
    void Watch();
    void Close();
    bool Await(short events, qint64 milliseconds);
    bool Read(char* bytes, int room, int& got);
    void ReadIn();
    void Flush(int queue) const;

    std::function<QString(int)> devicePath_;
    SerialSetup setup_;
    int handle_ = -1;
    int commPort_ = 1;
    QString settings_ = QStringLiteral("9600,N,8,1");
    LineFeatures features_;
    Rs485Direction direction_;
    std::optional<bool> rts_; // as told since the opening
    std::unique_ptr<QSocketNotifier> notifier_;
    std::array<char, InBufferSize> received_ = {};
    int count_ = 0;
};

void SerialPort::setPortOpen(bool open) {
    if (open == PortOpen())
        return;
    Close();
    if (!open)
        return;
    const LineSettings line = Parse(settings_);
    const QString device = devicePath_(commPort_);
    handle_ =
        ::open(QFile::encodeName(device).constData(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    if (!PortOpen() || !TakeAlone() || !Apply(line)) {
        Close();
        throw RunTimeError(errors::PortUnavailable);
    }
    AskForFeatures(device);
    Watch();
}

// The first keeps out who comes later, the second also who has every right.
bool SerialPort::TakeAlone() const {
    return Control(TIOCEXCL, nullptr) == 0 && flock(handle_, LOCK_EX | LOCK_NB) == 0;
}

// A driver that can't do what it is told takes what it can, and says so when it is asked.
bool SerialPort::Apply(const LineSettings& line) {
    termios2 wanted = {};
    if (Control(TCGETS2, &wanted) != 0)
        return false;
    wanted.c_iflag = IGNPAR;
    wanted.c_oflag = 0;
    wanted.c_lflag = 0;
    wanted.c_cflag = (wanted.c_cflag & HUPCL) | CLOCAL | CREAD | line.frame | BOTHER |
                     (tcflag_t(BOTHER) << IBSHIFT);
    wanted.c_ispeed = wanted.c_ospeed = speed_t(line.speed);
    // With one byte as the least, a read that gives none is one from a device that has gone.
    wanted.c_cc[VMIN] = 1;
    wanted.c_cc[VTIME] = 0;
    termios2 taken = {};
    if (Control(TCSETS2, &wanted) != 0 || Control(TCGETS2, &taken) != 0)
        return false;
    // Where a program stands in for the line, bytes go as they are.
    if (IsPseudoTerminal(handle_))
        return true;
    const qint64 off = std::abs(qint64(taken.c_ospeed) - line.speed);
    return (taken.c_cflag & FrameBits) == line.frame &&
           off * 100 <= qint64(line.speed) * SpeedTolerance;
}

void SerialPort::AskForFeatures(const QString& device) {
    const QString name = QFileInfo(QFileInfo(device).canonicalFilePath()).fileName();
    features_ = {};
    features_.lowLatency = AskForLowLatency(
        setup_.control, handle_,
        QStringLiteral("%1/class/tty/%2/device/latency_timer").arg(setup_.sys, name));
    if (setup_.isRs485 && setup_.isRs485(commPort_))
        features_.rs485 = direction_.Take(setup_.control, handle_);
}

// A device that goes makes itself known as one that can be read. What a noisy line brings is taken
// as well, for the loop not to come back to it for ever; what there is no room for is dropped.
void SerialPort::Watch() {
    notifier_ = std::make_unique<QSocketNotifier>(handle_, QSocketNotifier::Read);
    QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(), [this] {
        std::array<char, InBufferSize> dropped = {};
        int got = 0;
        if (count_ < InBufferSize)
            ReadIn();
        else
            Read(dropped.data(), int(dropped.size()), got);
    });
}

void SerialPort::Close() {
    if (!PortOpen())
        return;
    if (notifier_) {
        notifier_->setEnabled(false);
        // The notifier itself may be who noticed.
        notifier_.release()->deleteLater();
    }
    direction_.Release(setup_.control, handle_);
    Control(TIOCNXCL, nullptr);
    ::close(std::exchange(handle_, -1));
    rts_.reset();
    count_ = 0;
}

// Some adapters drive the line's direction by themselves and refuse; on USB each request takes the
// time of a frame. So it is told once.
void SerialPort::setRTSEnable(bool on) {
    if (!PortOpen() || direction_.IsTaken() || rts_ == on)
        return;
    int line = TIOCM_RTS;
    Control(on ? TIOCMBIS : TIOCMBIC, &line);
    rts_ = on;
}

// The system takes the number of the queue in the place of an address.
void SerialPort::Flush(int queue) const {
    // NOLINTNEXTLINE(performance-no-int-to-ptr)
    Control(TCFLSH, reinterpret_cast<void*>(quintptr(queue)));
}

void SerialPort::ClearBuffers() {
    if (PortOpen())
        Flush(TCIOFLUSH);
    count_ = 0;
}

// False when the time has passed and when the device has gone, which closes the port. A signal ends
// the wait early.
bool SerialPort::Await(short events, qint64 milliseconds) {
    pollfd state = {handle_, events, 0};
    const int ready = poll(&state, 1, int(milliseconds));
    if (ready > 0 && (state.revents & (POLLHUP | POLLERR | POLLNVAL)) != 0)
        Close();
    return PortOpen() && (ready > 0 || (ready < 0 && errno == EINTR));
}

// False when there is nothing to read.
bool SerialPort::Read(char* bytes, int room, int& got) {
    const ssize_t result = ::read(handle_, bytes, size_t(room));
    got = int(qMax<ssize_t>(0, result));
    if (result < 0 && (errno == EAGAIN || errno == EINTR))
        return false;
    if (result <= 0)
        Await(POLLIN, 0);
    return result > 0;
}

void SerialPort::ReadIn() {
    int got = 0;
    int room = InBufferSize - count_;
    while (room > 0 && Read(received_.data() + count_, room, got)) {
        count_ += got;
        // Less than there is room for is all that there was.
        room = got < room ? 0 : InBufferSize - count_;
    }
}

void SerialPort::Output(const QByteArray& bytes) {
    if (!PortOpen())
        throw RunTimeError(errors::PortNotOpen);
    QElapsedTimer timer;
    timer.start();
    qsizetype sent = 0;
    while (sent < bytes.size()) {
        const ssize_t taken =
            ::write(handle_, bytes.constData() + sent, size_t(bytes.size() - sent));
        sent += qMax<ssize_t>(0, taken);
        const bool failed = taken < 0 && errno != EAGAIN && errno != EINTR;
        const qint64 left = failed ? 0 : OutputTimeoutMs - timer.elapsed();
        if (sent < bytes.size() && (!Await(POLLOUT, qMax<qint64>(0, left)) || left <= 0))
            break;
    }
    // What a stuck device doesn't take is not to go out ahead of a later frame.
    if (sent < bytes.size() && PortOpen())
        Flush(TCOFLUSH);
}

int SerialPort::InBufferCount() {
    if (PortOpen())
        ReadIn();
    return count_;
}

QByteArray SerialPort::Input() {
    const int count = InBufferCount();
    count_ = 0;
    return {received_.data(), count};
}

void SerialPort::WaitForInput(int count, qint64 deadlineMs) {
    const int wanted = qMin(count, InBufferSize);
    const qint64 allowed = deadlineMs - Clock::Current().MonotonicMs();
    // The real time bounds the wait as well: an installed clock may stand still.
    QElapsedTimer timer;
    timer.start();
    while (PortOpen() && count_ < wanted) {
        const qint64 left =
            qMin(deadlineMs - Clock::Current().MonotonicMs(), allowed - timer.elapsed());
        if (!Await(POLLIN, qMax<qint64>(0, left)))
            break;
        ReadIn();
        if (left <= 0)
            break;
    }
}

} // namespace

int SystemControl(int handle, unsigned long request, void* argument) {
    return ::ioctl(handle, request, argument) == 0 ? 0 : errno;
}

std::unique_ptr<SerialLink> MakeSerialPort(std::function<QString(int)> devicePath,
                                           SerialSetup setup) {
    return std::make_unique<SerialPort>(std::move(devicePath), std::move(setup));
}

} // namespace platform
