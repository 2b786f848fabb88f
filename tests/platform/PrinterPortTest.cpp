#include "platform/PrinterPort.h"
#include "platform/Terminal.h"
#include "platform/TestFiles.h"

#include <QElapsedTimer>
#include <QTemporaryDir>
#include <cerrno>
#include <chrono>
#include <gtest/gtest.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <termios.h>
#include <thread>

using namespace platform;

namespace {

constexpr int ShortTimeout = 150;
/// Room for a busy machine, ms.
constexpr int Slack = 50000;

const QString Com = Text("COM1");
const QString Lpt = Text("LPT1");

class PrinterPortTest : public ::testing::Test {
protected:
    /// The far end of a terminal that the port is opened on.
    int OpenCom() {
        const int far = OpenTerminal(device_);
        EXPECT_EQ(port_->Open(Com), 0);
        return far;
    }
    /// The reader of a pipe that the port is opened on.
    int OpenLpt() {
        device_ = folder_.filePath(Text("printer"));
        const QByteArray path = QFile::encodeName(device_);
        EXPECT_EQ(mkfifo(path.constData(), 0600), 0);
        EXPECT_EQ(port_->Open(Lpt), ENXIO) << "nobody reads";
        const int reader = open(path.constData(), O_RDONLY | O_NONBLOCK);
        EXPECT_EQ(port_->Open(Lpt), 0);
        return reader;
    }
    std::unique_ptr<PrinterPort> MakePort() {
        return MakePrinterPort([this](const QString& name) {
            return name == Text("missing") ? folder_.filePath(name) : device_;
        });
    }
    termios LineOfDevice() const {
        const Handle device(open(QFile::encodeName(device_).constData(), O_RDWR | O_NOCTTY));
        termios line{};
        EXPECT_EQ(tcgetattr(device.Number(), &line), 0);
        return line;
    }
    /// Writes more than the device takes: the call comes back, and the time runs out later.
    void ExpectStuck() {
        port_->SetWriteTimeout(ShortTimeout);
        QElapsedTimer timer;
        timer.start();
        EXPECT_EQ(port_->Write(QByteArray(1 << 20, 'x')), 0);
        EXPECT_TRUE(port_->IsBusy());
        EXPECT_TRUE(port_->HasBegun());
        EXPECT_EQ(AdvanceToTheEnd(), ETIMEDOUT);
        EXPECT_GE(timer.elapsed(), ShortTimeout - 1);
        EXPECT_FALSE(port_->IsBusy());
        EXPECT_EQ(port_->Write(QByteArray(1 << 20, 'y')), 0);
        port_->Close();
        EXPECT_FALSE(port_->IsOpen());
        EXPECT_FALSE(port_->IsBusy());
    }

    /// Gives the error that what is under way ends with.
    int AdvanceToTheEnd() {
        int error = 0;
        while (port_->IsBusy() && error == 0) {
            error = port_->Advance();
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        return error;
    }

    QTemporaryDir folder_;
    QString device_;
    std::unique_ptr<PrinterPort> port_ = MakePort();
};

} // namespace

TEST_F(PrinterPortTest, SetsTheLineAndSendsBytesAsTheyAre) {
    const Handle far(OpenCom());
    EXPECT_EQ(port_->CheckLine(), 0);
    EXPECT_EQ(port_->SetLine({1200, 1, 8, 2}), 0);
    termios line = LineOfDevice();
    EXPECT_EQ(cfgetospeed(&line), speed_t(B1200));
    // A pseudo-terminal always has eight bits and no parity, but keeps the other flags.
    EXPECT_EQ(line.c_cflag & (CSTOPB | PARODD | CRTSCTS), tcflag_t(CSTOPB | PARODD));
    EXPECT_EQ(line.c_iflag & (IXON | IXOFF | IXANY | ICRNL), 0U);
    EXPECT_EQ(line.c_oflag & OPOST, 0U);
    EXPECT_EQ(line.c_lflag & (ECHO | ICANON | ISIG), 0U);

    port_->SetWriteTimeout(2000);
    EXPECT_EQ(port_->Write(AllBytes()), 0);
    EXPECT_EQ(far.Take(256), AllBytes());

    EXPECT_EQ(port_->SetLine({19200, 0, 8, 0}), 0);
    line = LineOfDevice();
    EXPECT_EQ(cfgetospeed(&line), speed_t(B19200));
    EXPECT_EQ(line.c_cflag & (CSTOPB | PARODD), 0U);
}

TEST_F(PrinterPortTest, RefusesWhatNoLineHas) {
    const Handle far(OpenCom());
    ASSERT_EQ(port_->SetLine({4800, 0, 8, 0}), 0);
    const LineSettings rows[] = {{0, 0, 8, 0},    {4801, 0, 8, 0},  {9600, -1, 8, 0},
                                 {9600, 3, 8, 0}, {9600, 0, 4, 0},  {9600, 0, 9, 0},
                                 {9600, 0, 0, 0}, {9600, 0, 8, -2}, {9600, 0, 8, 3}};
    for (const LineSettings& row : rows)
        EXPECT_EQ(port_->SetLine(row), EINVAL);
    termios line = LineOfDevice();
    EXPECT_EQ(cfgetospeed(&line), speed_t(B4800));

    const Handle reader(OpenLpt());
    EXPECT_EQ(port_->CheckLine(), ENOTTY);
    EXPECT_EQ(port_->SetLine({9600, 0, 8, 0}), ENOTTY);
}

TEST_F(PrinterPortTest, AStuckTerminalOrPipeIsNotWaitedFor) {
    const Handle far(OpenCom());
    ASSERT_EQ(port_->SetLine(LineSettings()), 0);
    ExpectStuck();
    ASSERT_EQ(port_->Open(Com), 0) << "and may be tried again";
    const Handle reader(OpenLpt());
    ExpectStuck();
}

// The program was busy elsewhere for longer than a line may take.
TEST_F(PrinterPortTest, ATimeWithoutALookIsNotThePrintersFault) {
    const Handle reader(OpenLpt());
    port_->SetWriteTimeout(ShortTimeout);
    EXPECT_EQ(port_->Write(QByteArray(1 << 20, 'x')), 0);
    std::this_thread::sleep_for(std::chrono::milliseconds(2 * ShortTimeout));
    EXPECT_FALSE(reader.Take(1).isEmpty());
    EXPECT_EQ(port_->Advance(), 0);
    EXPECT_TRUE(port_->IsBusy());
    EXPECT_EQ(AdvanceToTheEnd(), ETIMEDOUT);
    EXPECT_EQ(reader.Take(1 << 16).size(), 1 << 16);
    EXPECT_EQ(port_->Write("next"), 0);
    EXPECT_FALSE(port_->IsBusy()) << "what was given up isn't printed late";
}

TEST_F(PrinterPortTest, WaitsForASlowReader) {
    const Handle reader(OpenLpt());
    port_->SetWriteTimeout(60000);
    const QByteArray bytes = AllBytes().repeated(1000);
    QByteArray taken;
    std::thread printer([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        taken = reader.Take(bytes.size());
    });
    EXPECT_EQ(port_->Write(bytes), 0);
    EXPECT_EQ(AdvanceToTheEnd(), 0);
    printer.join();
    EXPECT_TRUE(taken == bytes);
}

TEST_F(PrinterPortTest, APrinterThatIsNotThereCostsNoTime) {
    QElapsedTimer timer;
    timer.start();
    EXPECT_EQ(port_->Open(Text("missing")), ENOENT);
    EXPECT_FALSE(port_->IsOpen());
    Handle(OpenLpt()).Close();
    port_->SetWriteTimeout(60000);
    EXPECT_EQ(port_->Write("x"), EPIPE) << "the reader went";
    Handle(OpenCom()).Close();
    EXPECT_EQ(port_->Write("x"), EIO) << "the adapter was pulled out";
    port_->Close();
    EXPECT_LT(timer.elapsed(), Slack);
    EXPECT_EQ(PrinterPort::ErrorText(ENOENT), Text("No such file or directory"));
}

TEST_F(PrinterPortTest, ADeviceOfOneUserIsSharedWithinTheProgram) {
    const Handle far(OpenCom());
    const QByteArray path = QFile::encodeName(device_);
    ASSERT_EQ(chmod(path.constData(), 0666), 0);
    ASSERT_EQ(port_->SetLine(LineSettings()), 0);
    Handle extra(open(path.constData(), O_RDWR | O_NOCTTY));
    ASSERT_EQ(ioctl(extra.Number(), TIOCEXCL), 0);
    // The system's master opens what is exclusive; others are told that it is busy.
    const uid_t user = geteuid();
    ASSERT_EQ(user == 0 ? seteuid(65534) : 0, 0);
    const auto second = MakePort();
    const int error = second->Open(Com);
    ASSERT_EQ(seteuid(user), 0);
    ASSERT_EQ(error, 0);
    port_->SetWriteTimeout(2000);
    second->SetWriteTimeout(2000);
    EXPECT_EQ(second->Write("tried"), 0);
    second->Close();
    EXPECT_EQ(port_->Write(" on"), 0);
    EXPECT_EQ(far.Take(8), QByteArray("tried on"));
    ioctl(extra.Number(), TIOCNXCL);
}
