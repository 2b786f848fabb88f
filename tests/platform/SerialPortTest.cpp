#include "platform/Clock.h"
#include "platform/SerialLink.h"
#include "platform/Terminal.h"
#include "platform/TestFiles.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QTimer>
#include <cerrno>
#include <chrono>
#include <ctime>
#include <gtest/gtest.h>
#include <linux/serial.h>
#include <sys/ioctl.h>
#include <thread>

using namespace platform;

namespace {

/// Far end of a line: the master side of a pseudo-terminal, reached under a link's name.
class FarEnd {
public:
    explicit FarEnd(QString link)
        : link_(std::move(link)) {
        QFile::link(name_, link_);
    }
    ~FarEnd() { Vanish(); }
    FarEnd(const FarEnd&) = delete;
    FarEnd& operator=(const FarEnd&) = delete;

    /// The name goes first: the system gives the terminal's number to the next that asks.
    void Vanish() {
        if (handle_.Number() >= 0)
            QFile::remove(link_);
        handle_.Close();
    }
    void Send(const QByteArray& bytes) const {
        EXPECT_EQ(write(handle_.Number(), bytes.constData(), size_t(bytes.size())), bytes.size());
    }
    QByteArray Take(qsizetype count) const { return handle_.Take(count); }

private:
    QString link_;
    QString name_;
    Handle handle_{OpenTerminal(name_)};
};

/// A deadline that no test waits out, and what is surely less on a machine under load, ms.
constexpr int LongDeadline = 60000;
constexpr int Soon = 50000;

class SerialPortTest : public ::testing::Test {
protected:
    static qint64 In(int milliseconds) { return Clock::Current().MonotonicMs() + milliseconds; }
    QTemporaryDir folder_;
    QString link_ = folder_.filePath(Text("COM3"));
    std::unique_ptr<SerialLink> port_ =
        MakeSerialPort([this](int number) { return folder_.filePath(Text("COM%1").arg(number)); });

    void OpenPort() {
        port_->setCommPort(3);
        port_->setPortOpen(true);
        ASSERT_TRUE(port_->PortOpen());
    }
};

/// A driver with what a pseudo-terminal doesn't have. All else goes to the system.
struct Driver {
    int flagError = 0;
    bool keepsFlag = true;
    int directionError = 0;
    int flags = ASYNC_SPD_HI;
    serial_rs485 direction = {};
    int requestsToSend = 0;

    int Control(int handle, unsigned long request, void* argument) {
        auto* state = static_cast<serial_struct*>(argument);
        auto* mode = static_cast<serial_rs485*>(argument);
        switch (request) {
        case TIOCGSERIAL:
            state->flags = flags;
            return flagError == ENOTTY ? ENOTTY : 0;
        case TIOCSSERIAL:
            if (flagError == 0 && keepsFlag)
                flags = state->flags;
            return flagError;
        case TIOCGRS485:
            *mode = direction;
            return 0;
        case TIOCSRS485:
            if (directionError == 0)
                direction = *mode;
            return directionError;
        case TIOCMBIS:
            ++requestsToSend;
            return 0;
        default:
            return SystemControl(handle, request, argument);
        }
    }
};

const QByteArray AnyBytes("\x01\x03\x00\x0A\x0D\x11\x13\x04\x1A\x7F\xFF", 11);

} // namespace

TEST_F(SerialPortTest, ExchangesBytesAsTheyAre) {
    const FarEnd far(link_);
    OpenPort();
    port_->setRTSEnable(true);
    EXPECT_TRUE(port_->PortOpen());
    std::thread panel([&] {
        EXPECT_EQ(far.Take(AnyBytes.size()), AnyBytes);
        far.Send(AnyBytes.left(4));
        std::this_thread::sleep_for(std::chrono::milliseconds(30));
        far.Send(AnyBytes.mid(4) + "surplus");
    });
    port_->Output(AnyBytes);
    port_->WaitForInput(int(AnyBytes.size()), In(LongDeadline));
    panel.join();
    QElapsedTimer timer;
    timer.start();
    port_->WaitForInput(3, In(LongDeadline));
    EXPECT_LT(timer.elapsed(), Soon);
    EXPECT_EQ(port_->InBufferCount(), AnyBytes.size() + 7);
    EXPECT_EQ(port_->Input(), AnyBytes + "surplus");
    EXPECT_EQ(port_->Input(), QByteArray());
}

TEST_F(SerialPortTest, EmptiesBuffersAndBoundsNoise) {
    const FarEnd far(link_);
    OpenPort();
    far.Send("late reply of the frame before");
    port_->ClearBuffers();
    EXPECT_EQ(port_->InBufferCount(), 0);
    far.Send(QByteArray(3000, '~'));
    QElapsedTimer timer;
    timer.start();
    port_->WaitForInput(5000, In(LongDeadline));
    EXPECT_LT(timer.elapsed(), Soon);
    EXPECT_LE(port_->InBufferCount(), 1024);
    port_->ClearBuffers();
    EXPECT_EQ(port_->InBufferCount(), 0);
}

TEST_F(SerialPortTest, WaitsOutTheDeadlineWithoutEventsOrWork) {
    const FarEnd far(link_);
    OpenPort();
    bool eventRan = false;
    QTimer::singleShot(0, qApp, [&] { eventRan = true; });
    const clock_t before = clock();
    QElapsedTimer timer;
    timer.start();
    port_->WaitForInput(1, In(150));
    EXPECT_GE(timer.elapsed(), 150);
    EXPECT_LT(timer.elapsed(), Soon);
    EXPECT_LT(clock() - before, CLOCKS_PER_SEC / 20);
    EXPECT_FALSE(eventRan);
    QCoreApplication::processEvents();

    const TestClock standing;
    port_->WaitForInput(1, In(50));
}

TEST_F(SerialPortTest, ClosesWhenTheDeviceGoesAndOpensAgainWhenItReturns) {
    for (const bool byEventLoop : {false, true}) {
        FarEnd far(link_);
        OpenPort();
        far.Vanish();
        QElapsedTimer timer;
        timer.start();
        if (byEventLoop) {
            while (port_->PortOpen() && timer.elapsed() < LongDeadline)
                QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
        } else {
            port_->WaitForInput(8, In(LongDeadline));
        }
        EXPECT_LT(timer.elapsed(), Soon);
        EXPECT_FALSE(port_->PortOpen());
        EXPECT_EQ(port_->InBufferCount(), 0);
        EXPECT_EQ(ErrorOf([&] { port_->Output("x"); }), errors::PortNotOpen);
        EXPECT_EQ(ErrorOf([&] { port_->setPortOpen(true); }), errors::PortUnavailable);
    }
    const FarEnd back(link_);
    OpenPort();
    port_->Output("again");
    EXPECT_EQ(back.Take(5), QByteArray("again"));
    // The line is its own meanwhile.
    const auto other = MakeSerialPort([this](int) { return link_; });
    EXPECT_EQ(ErrorOf([&] { other->setPortOpen(true); }), errors::PortUnavailable);
    port_->setPortOpen(false);
    EXPECT_EQ(ErrorOf([&] { other->setPortOpen(true); }), 0);
}

TEST_F(SerialPortTest, RefusesWhatIsNoSettingOrNoDevice) {
    const FarEnd far(link_);
    const auto opens = [this](const char* settings) {
        port_->setSettings(Text(settings));
        const int error = ErrorOf([&] { port_->setPortOpen(true); });
        EXPECT_EQ(port_->PortOpen(), error == 0);
        port_->setPortOpen(false);
        return error;
    };
    port_->setCommPort(3);
    for (const char* good : {"9600,N,8,1", "19200,e,7,2", "4800,O,8,1", "115200,m,8,1", "300,S,8,1",
                             " 9600 , n , 8 , 1 "})
        EXPECT_EQ(opens(good), 0) << good;
    for (const char* bad : {"", "9600", "9600,N,8", "9600,X,8,1", "9600,N,9,1", "9600,N,8,1.5",
                            "0,N,8,1", "fast,N,8,1", "9600,N,8,1,1"})
        EXPECT_EQ(opens(bad), errors::PortUnavailable) << bad;
    port_->setCommPort(4);
    EXPECT_EQ(opens("9600,N,8,1"), errors::PortUnavailable);
    PutBytes(folder_.filePath(Text("COM5")), "a plain file");
    port_->setCommPort(5);
    EXPECT_EQ(opens("9600,N,8,1"), errors::PortUnavailable);
    OpenPort();
    EXPECT_EQ(ErrorOf([&] { port_->setSettings(Text("9600,N,8,3")); }), errors::PortUnavailable);
}

TEST_F(SerialPortTest, AsksTheDriverForLowLatencyAndBearsARefusal) {
    using Answer = LineFeatures::Answer;
    const FarEnd far(link_);
    const QString sys = folder_.filePath(Text("sys"));
    const QString timer = Text("%1/class/tty/%2/device/latency_timer")
                              .arg(sys, QFileInfo(QFileInfo(link_).canonicalFilePath()).fileName());
    Driver driver;
    SerialSetup setup;
    setup.sys = sys;
    setup.control = [&](auto... words) { return driver.Control(words...); };
    port_ = MakeSerialPort([this](int) { return link_; }, setup);
    const auto answer = [&] {
        OpenPort();
        port_->setPortOpen(false);
        return port_->Features().lowLatency;
    };
    EXPECT_EQ(answer(), Answer::Taken);
    EXPECT_EQ(driver.flags, ASYNC_SPD_HI | ASYNC_LOW_LATENCY) << "and nothing else";
    driver.flags = 0;
    for (const auto& [error, expected] : {std::pair(EPERM, Answer::Refused),
                                          {ENOTTY, Answer::NotOffered},
                                          {0, Answer::NotOffered}}) {
        driver.flagError = error;
        driver.keepsFlag = false;
        EXPECT_EQ(answer(), expected) << error;
    }
    QDir().mkpath(QFileInfo(timer).path());
    PutBytes(timer, "16\n");
    EXPECT_EQ(answer(), Answer::Taken);
    EXPECT_EQ(BytesOf(timer), "1");
}

TEST_F(SerialPortTest, LetsTheDriverSwitchTheDirectionWhileThePortIsOpen) {
    using Answer = LineFeatures::Answer;
    const FarEnd far(link_);
    Driver driver;
    driver.direction.flags = SER_RS485_RTS_AFTER_SEND | SER_RS485_RX_DURING_TX;
    driver.direction.delay_rts_after_send = 2;
    const quint32 found = driver.direction.flags;
    bool asked = true;
    SerialSetup setup;
    setup.isRs485 = [&](int number) { return asked && number == 3; };
    setup.control = [&](auto... words) { return driver.Control(words...); };
    port_ = MakeSerialPort([this](int) { return link_; }, setup);
    OpenPort();
    EXPECT_EQ(port_->Features().rs485, Answer::Taken);
    EXPECT_EQ(driver.direction.flags, SER_RS485_ENABLED | SER_RS485_RTS_AFTER_SEND)
        << "with the polarity of the board, and without the own frame";
    EXPECT_EQ(driver.direction.delay_rts_after_send, 2U);
    port_->setRTSEnable(true);
    EXPECT_EQ(driver.requestsToSend, 0) << "the line is the driver's";
    port_->setPortOpen(false);
    EXPECT_EQ(driver.direction.flags, found);

    driver.directionError = ENOTTY;
    OpenPort();
    EXPECT_EQ(port_->Features().rs485, Answer::Refused);
    port_->setRTSEnable(true);
    port_->setRTSEnable(true);
    EXPECT_EQ(driver.requestsToSend, 1);
    port_->setPortOpen(false);
    asked = false;
    driver.directionError = 0;
    OpenPort();
    EXPECT_EQ(port_->Features().rs485, Answer::NotOffered);
    EXPECT_EQ(driver.direction.flags, found);
}
