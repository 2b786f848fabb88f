// What the machine has to plug into, on folders that stand in for those of the system.

#include "platform/Ports.h"
#include "platform/TestFiles.h"

#include <QDir>
#include <QProcess>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <unistd.h>

using namespace platform;

namespace {

class PortsTest : public ::testing::Test {
protected:
    PortsTest() {
        roots.dev = Made(Text("dev"));
        roots.sys = Made(Text("sys"));
        roots.serial = [this] { return lines; };
    }

    QString Made(const QString& folder) const {
        QDir(folder_.path()).mkpath(folder);
        return folder_.filePath(folder);
    }
    QString File(const QString& name, const QByteArray& bytes = {}) const {
        Made(QFileInfo(name).path());
        PutBytes(folder_.filePath(name), bytes);
        return folder_.filePath(name);
    }

    PortRoots roots;
    QList<PortDevice> lines;

private:
    QTemporaryDir folder_;
};

} // namespace

TEST_F(PortsTest, ALineThatCanBeUnpluggedComesFirstUnderItsLastingName) {
    const QString usb = File(Text("dev/ttyUSB10"));
    lines = {{File(Text("dev/ttyS10")), {}, {}, {}, {}},
             {File(Text("dev/ttyS2")), {}, {}, {}, {}},
             {usb, {}, Text("FTDI"), Text("RS485"), Text("A1")}};
    const QString name = Made(Text("dev/serial/by-id")) + Text("/usb-FTDI-A1");
    QFile::link(Text("../../ttyUSB10"), name);
    const QList<PortDevice> found = Ports(roots).SerialDevices();
    ASSERT_EQ(found.size(), 3);
    EXPECT_EQ(found[0].path, usb);
    EXPECT_EQ(found[0].BestPath(), name);
    EXPECT_EQ(found[1].BestPath(), roots.dev + Text("/ttyS2")) << "ahead of ttyS10";
    EXPECT_TRUE(Ports::SameDevice(name, usb));
    EXPECT_FALSE(Ports::SameDevice(usb, found[1].path));
    const QString own = Made(Text("dev/korvanelle")) + Text("/rs485-A1");
    QFile::link(Text("../ttyUSB10"), own);
    EXPECT_EQ(Ports(roots).SerialDevices()[0].BestPath(), own);
}

TEST_F(PortsTest, PrintersTellWhatTheyAre) {
    for (const char* name : {"dev/lp0", "dev/usb/lp1", "dev/usb/lp0"})
        File(Text(name));
    const QString usb = Text("sys/devices/usb1/1-2");
    File(usb + Text("/1-2:1.0/ieee1284_id"), "MFG:EPSON;CMD:ESCPL2;MDL:LX-350;CLS:X;\n");
    File(usb + Text("/serial"), "Q3ZY\n");
    Made(Text("sys/class/usbmisc/lp0"));
    QFile::link(Text("../../../devices/usb1/1-2/1-2:1.0"),
                roots.sys + Text("/class/usbmisc/lp0/device"));
    const QList<PortDevice> found = Ports(roots).PrinterDevices();
    ASSERT_EQ(found.size(), 3);
    EXPECT_EQ(found[0].maker + u' ' + found[0].description + u' ' + found[0].serialNumber,
              Text("EPSON LX-350 Q3ZY"));
    EXPECT_EQ(found[1].path, roots.dev + Text("/usb/lp1"));
    EXPECT_EQ(found[2].path, roots.dev + Text("/lp0"));
    EXPECT_TRUE(found[2].maker.isEmpty()) << "the parallel port isn't the USB printer lp0";
}

TEST_F(PortsTest, TellsWhoHasADevice) {
    const Ports ports(roots);
    const QString device = File(Text("dev/ttyS0"));
    using State = PortUse::State;
    EXPECT_EQ(ports.UseOf(device).state, State::Free);
    EXPECT_EQ(ports.UseOf(roots.dev + Text("/none")).state, State::Absent);

    const QString link = roots.dev + Text("/link");
    QFile::link(device, link);
    QProcess other;
    other.setStandardInputFile(device);
    other.start(Text("sleep"), {Text("60")});
    ASSERT_TRUE(other.waitForStarted());
    const PortUse use = ports.UseOf(link);
    EXPECT_EQ(use.state, State::Taken) << "whatever name leads to it";
    EXPECT_EQ(use.program, Text("sleep"));
    other.kill();
    other.waitForFinished();

    QFile own(device);
    ASSERT_TRUE(own.open(QIODevice::ReadOnly));
    EXPECT_EQ(ports.UseOf(device).state, State::Own);
    own.close();
    if (geteuid() != 0) {
        own.setPermissions(QFileDevice::Permissions());
        EXPECT_EQ(ports.UseOf(device).state, State::Forbidden);
    }
}
