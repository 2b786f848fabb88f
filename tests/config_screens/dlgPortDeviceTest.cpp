// What the operator sees of the machine's devices, and which of them can be chosen for a port.

#include "config_screens/dlgPortDevice.h"
#include "support/ConfigScreensFixture.h"

namespace {

class PortDeviceTest : public ConfigScreensTest {
protected:
    /// Asks for the device of COM1 and lets `act` work on the dialog.
    std::optional<QString> Ask(const QString& present, const Script::Step& act) {
        script.On(FormNames::dlgPortDevice, act);
        return AskPortDevice(PortPurpose::Bus, "COM1", present);
    }
    static QListWidget* List() { return Find<QListWidget>(FormNames::dlgPortDevice, "lstDevices"); }
    static void Choose(int row) {
        List()->setCurrentRow(row);
        Tap(FormNames::dlgPortDevice, "imgControl_1");
    }
    static void Cancel() { Tap(FormNames::dlgPortDevice, "imgControl_0"); }
};

} // namespace

TEST_F(PortDeviceTest, ADeviceIsChosenByItsLastingName) {
    const QString adapter = ports.AddSerial("ttyUSB0", "FTDI");
    const QString built = ports.AddSerial("ttyS0");
    const auto device = Ask(built, [&] {
        EXPECT_EQ(List()->item(0)->text(), QStringLiteral("FTDI\n") + ports.Lasting(adapter) +
                                               QStringLiteral("  \u2013  free"));
        EXPECT_EQ(List()->currentRow(), 1) << "the device that the port means now";
        Choose(0);
    });
    EXPECT_EQ(device, ports.Lasting(adapter));
    EXPECT_EQ(Ask(adapter, [] { Choose(0); }), adapter) << "the name in use is as good";
    // What is plugged in later is listed again.
    const QString gone = ports.Path("ttyUSB7");
    const auto none = Ask(gone, [&] {
        EXPECT_EQ(List()->currentItem()->text(), gone + "\nnot there");
        ports.AddSerial("ttyUSB7");
        Tap(FormNames::dlgPortDevice, "imgControl_2");
        EXPECT_FALSE(List()->findItems(gone + "\nfree", Qt::MatchExactly).isEmpty());
        Cancel();
    });
    EXPECT_EQ(none, std::nullopt);
}

TEST_F(PortDeviceTest, BusAndPrinterNeverShare) {
    const QString device = ports.AddSerial("ttyS3");
    Site().setPrtSettings("COM2:9600,N,8,1");
    SLVfonctions::setDevicePath("COM2", device);
    const auto none = Ask(QString(), [&] {
        EXPECT_TRUE(List()->item(0)->text().endsWith(GetText(630223)));
        Choose(0);
        EXPECT_EQ(boxes.last(), GetText(630231));
        Cancel();
    });
    EXPECT_EQ(none, std::nullopt);
    EXPECT_TRUE(IsOfOtherPurpose(PortPurpose::Bus, device));
    Site().setBusSettings("COM2:9600,N,8,1");
    Site().setPrtSettings(QString());
    EXPECT_TRUE(IsOfOtherPurpose(PortPurpose::Printer, device));
    EXPECT_FALSE(IsOfOtherPurpose(PortPurpose::Bus, device));
}
