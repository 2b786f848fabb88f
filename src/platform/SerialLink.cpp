#include "platform/SerialLink.h"

#include "platform/Clock.h"
#include "platform/RunTimeError.h"

#include <QElapsedTimer>
#include <QFileInfo>
#include <QSerialPort>
#include <QStringList>
#include <poll.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <utility>

namespace platform {

namespace {

// What a noisy line may heap up while nobody takes it; the longest reply is a quarter of it.
constexpr int InBufferSize = 1024;
constexpr int OutputTimeoutMs = 1000;

struct LineSettings {
    qint32 speed;
    QSerialPort::Parity parity;
    QSerialPort::DataBits dataBits;
    QSerialPort::StopBits stopBits;
};

QSerialPort::Parity ParityOf(const QString& letter) {
    static const QHash<QString, QSerialPort::Parity> parities = {
        {QStringLiteral("N"), QSerialPort::NoParity},
        {QStringLiteral("E"), QSerialPort::EvenParity},
        {QStringLiteral("O"), QSerialPort::OddParity},
        {QStringLiteral("M"), QSerialPort::MarkParity},
        {QStringLiteral("S"), QSerialPort::SpaceParity}};
    const auto found = parities.constFind(letter.toUpper());
    if (found == parities.constEnd())
        throw RunTimeError(errors::PortUnavailable);
    return *found;
}

// Throws for what isn't a setting of a serial line. One and a half stop bits are one, but the
// system doesn't offer them.
LineSettings Parse(const QString& settings) {
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
    return {speed, ParityOf(parts[1]), QSerialPort::DataBits(dataBits),
            oneStop ? QSerialPort::OneStop : QSerialPort::TwoStop};
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
    explicit SerialPort(std::function<QString(int)> devicePath)
        : devicePath_(std::move(devicePath)) {
        port_.setReadBufferSize(InBufferSize);
        // The event loop reads as well; it is to notice a device that goes between two exchanges,
        // and not to come back to it for ever.
        QObject::connect(&port_, &QSerialPort::errorOccurred, &port_,
                         [this](QSerialPort::SerialPortError error) { NoteError(error); });
    }

    int CommPort() const override { return commPort_; }
    void setCommPort(int number) override { commPort_ = number; }
    QString Settings() const override { return settings_; }
    void setSettings(const QString& settings) override {
        settings_ = settings;
        if (PortOpen() && !Apply(Parse(settings)))
            throw RunTimeError(errors::PortUnavailable);
    }

    bool PortOpen() const override { return port_.isOpen() && !gone_; }
    void setPortOpen(bool open) override;
    void setRTSEnable(bool on) override {
        // Some adapters drive the line's direction by themselves and refuse.
        if (PortOpen())
            port_.setRequestToSend(on);
    }
    void ClearBuffers() override;
    void Output(const QByteArray& bytes) override;
    int InBufferCount() override;
    QByteArray Input() override;
    void WaitForInput(int count, qint64 deadlineMs) override;

private:
    bool Apply(const LineSettings& line);
    void NoteError(QSerialPort::SerialPortError error);
    bool DeviceIsGone() const;
    bool Receive(int milliseconds);
    bool CloseIfGone();

    std::function<QString(int)> devicePath_;
    QSerialPort port_;
    int commPort_ = 1;
    QString settings_ = QStringLiteral("9600,N,8,1");
    bool gone_ = false; // the device went away while open; the port closes at the next chance
};

void SerialPort::setPortOpen(bool open) {
    if (open == PortOpen())
        return;
    if (port_.isOpen())
        port_.close();
    gone_ = false;
    if (!open)
        return;
    const LineSettings line = Parse(settings_);
    const QString device = devicePath_(commPort_);
    // A link is resolved here: its name needn't be one that a device can have.
    const QString resolved = QFileInfo(device).canonicalFilePath();
    port_.setPortName(resolved.isEmpty() ? device : resolved);
    if (!port_.open(QIODevice::ReadWrite))
        throw RunTimeError(errors::PortUnavailable);
    gone_ = false;
    if (Apply(line))
        return;
    port_.close();
    throw RunTimeError(errors::PortUnavailable);
}

bool SerialPort::Apply(const LineSettings& line) {
    if (!port_.setBaudRate(line.speed) || !port_.setFlowControl(QSerialPort::NoFlowControl))
        return false;
    // Where a program stands in for the line, bytes go as they are and the system refuses any
    // other frame than eight bits without parity.
    if (IsPseudoTerminal(int(port_.handle())))
        return true;
    return port_.setParity(line.parity) && port_.setDataBits(line.dataBits) &&
           port_.setStopBits(line.stopBits);
}

// The kind of an error is taken from the last system call and says little; whether the device
// hung up says more.
void SerialPort::NoteError(QSerialPort::SerialPortError error) {
    if (error == QSerialPort::NoError || gone_ || !DeviceIsGone())
        return;
    gone_ = true;
    QMetaObject::invokeMethod(
        &port_, [this] { CloseIfGone(); }, Qt::QueuedConnection);
}

bool SerialPort::DeviceIsGone() const {
    pollfd state = {int(port_.handle()), POLLIN, 0};
    return port_.isOpen() && poll(&state, 1, 0) > 0 &&
           (state.revents & (POLLHUP | POLLERR | POLLNVAL)) != 0;
}

bool SerialPort::CloseIfGone() {
    if (gone_ && port_.isOpen())
        port_.close();
    return gone_;
}

bool SerialPort::Receive(int milliseconds) {
    if (port_.bytesAvailable() >= InBufferSize)
        return false;
    return port_.waitForReadyRead(milliseconds);
}

void SerialPort::ClearBuffers() {
    if (PortOpen())
        port_.clear(QSerialPort::AllDirections);
}

void SerialPort::Output(const QByteArray& bytes) {
    CloseIfGone();
    if (!PortOpen())
        throw RunTimeError(errors::PortNotOpen);
    port_.write(bytes);
    QElapsedTimer timer;
    timer.start();
    while (port_.bytesToWrite() > 0 && timer.elapsed() < OutputTimeoutMs) {
        if (!port_.waitForBytesWritten(OutputTimeoutMs - int(timer.elapsed())))
            break;
    }
    // What a stuck device doesn't take is not to go out ahead of a later frame.
    if (port_.bytesToWrite() > 0)
        port_.clear(QSerialPort::Output);
    CloseIfGone();
}

int SerialPort::InBufferCount() {
    if (PortOpen())
        Receive(0);
    CloseIfGone();
    return PortOpen() ? int(port_.bytesAvailable()) : 0;
}

QByteArray SerialPort::Input() {
    return InBufferCount() > 0 ? port_.readAll() : QByteArray();
}

void SerialPort::WaitForInput(int count, qint64 deadlineMs) {
    const int wanted = qMin(count, InBufferSize);
    const qint64 allowed = deadlineMs - Clock::Current().MonotonicMs();
    // The real time bounds the wait as well: an installed clock may stand still.
    QElapsedTimer timer;
    timer.start();
    while (PortOpen() && port_.bytesAvailable() < wanted) {
        const qint64 left =
            qMin(deadlineMs - Clock::Current().MonotonicMs(), allowed - timer.elapsed());
        if (!Receive(int(qMax<qint64>(0, left))) || left <= 0)
            break;
    }
    CloseIfGone();
}

} // namespace

std::unique_ptr<SerialLink> MakeSerialPort(std::function<QString(int)> devicePath) {
    return std::make_unique<SerialPort>(std::move(devicePath));
}

} // namespace platform
