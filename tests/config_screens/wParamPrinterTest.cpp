// The printer's screen against a named pipe, on which the events go out, and a pseudo-terminal.

#include "events/PrinterDefinition.h"
#include "support/ConfigScreensFixture.h"
#include "support/PipePrinter.h"

#include <cstdlib>
#include <optional>

namespace {

class ParamPrinterTest : public ConfigScreensTest {
protected:
    ParamPrinterTest()
        : ConfigScreensTest(FormNames::wParamPrinter) {
        WriteFile("matrix.prt", "[Reset]\nInit=1B 40\n[Colors]\n0=1B 72 06\n2=1B 72 04\n"
                                "[Styles]\nB=1B 45\nU=1B 2D 01\n");
        WriteFile("plain.prt", "[Reset]\nInit=\n");
        SLVfonctions::setDevicePath("LPT1", Path("paper"));
        paper.SwitchOn();
        Site().setPrtSettings("LPT1:");
        Site().setPrinterName("matrix");
        Site().setPrinterInitCode(1, "0BU");
        engine->dpPrinter().setPort("LPT1");
        engine->dpPrinter().setSettings(QString());
        Forms::Show(Form);
    }

    /// Takes a printer of the list, in their order.
    void TakePrinter(int row) {
        Forms::Show(Form);
        TapRow(Find<QListWidget>(Form, "lstPrinterName"), row);
        Leave(Messages::Yes);
    }
    /// Edits the second class; the last tap confirms or not.
    void EditClass(const QStringList& taps) {
        Tap(Form, "lblEscTitle_2");
        script.On(FormNames::dlgParamPrinter, [&] {
            for (const QString& name : taps)
                Tap(FormNames::dlgParamPrinter, name);
        });
        Tap(Form, "imgCharModif");
    }
    void ChangeField(const char* label, const QString& value) {
        Tap(Form, label);
        Choose(Form, "imgComModif", value);
    }
    void TestPrint() {
        Tap(Form, "cmdPrintTest");
        QCoreApplication::processEvents();
    }
    void LetTwoSecondsPass() {
        clock.Advance(2000);
        engine->Paper().Advance();
        QCoreApplication::processEvents();
    }
    /// What the printer of the events is set to.
    QString EventPort() {
        return engine->dpPrinter().Port() + u':' + engine->dpPrinter().Settings();
    }

    PipePrinter paper{Path("paper")};
};

} // namespace

TEST_F(ParamPrinterTest, AnEditedClassHoldsItsColourUntilThePrinterIsSelectedAgain) {
    EXPECT_EQ(Shown("lblEscCode_1"), "Green Bold Underlined");
    EditClass({"optGreen", "chkGras", "imgControl_0"});
    EXPECT_EQ(Shown("lblEscCode_2"), QString());
    EditClass({"optYellow", "chkGras", "optRed", "chkItalic", "imgControl_1"});
    EXPECT_EQ(Shown("lblEscCode_2"), "Yellow Bold") << "no red, no italic";
    Leave(Messages::Yes);
    EXPECT_EQ(Site().PrinterInitCode(2), "2B");
    EXPECT_EQ(Site().PrinterInitString(2), "1B 72 04");

    TakePrinter(0);
    EXPECT_EQ(Site().PrinterInitString(0), "1B 40");
    EXPECT_EQ(Site().PrinterInitString(1), "1B 72 06 1B 45 1B 2D 01");
    EXPECT_EQ(Site().PrinterInitString(2), "1B 72 04 1B 45");

    TakePrinter(1);
    EXPECT_EQ(Site().PrinterName() + Site().PrinterInitString(1), "plain");
    EXPECT_EQ(Site().PrinterInitCode(1), "0BU");
}

TEST_F(ParamPrinterTest, WithoutADefinitionNothingIsEdited) {
    QFile::remove(PrinterDefinition::PathOf("matrix"));
    Tap(Form, "imgCharModif");
    EXPECT_EQ(boxes.last(), GetText(30021));
    Leave(Messages::Cancel);
    EXPECT_EQ(Screen(Form), nullptr) << "nothing differs, nothing is asked";
    Forms::Show(Form);
    for (const char* button : {"imgCharModif", "imgChangePrinter"}) {
        Tap(Form, button);
        EXPECT_EQ(boxes.takeLast(), GetText(30019)) << button;
    }
    Leave(Messages::No);
    EXPECT_EQ(Site().PrinterName(), "matrix");
}

TEST_F(ParamPrinterTest, APortThatCannotBeReadIsNotTaken) {
    Leave(Messages::No);
    SLVfonctions::setDevicePath("COM5", Path("line"));
    QFile(Path("line")).open(QIODevice::WriteOnly);
    Site().setPrtSettings("COM5:9600,8,N,1");
    Forms::Show(Form);
    EXPECT_EQ(Shown("lblComSpeed") + Shown("lblComParity") + Shown("lblComBits"), "9600??????????");
    ChangeField("lblComParity", GetText(100022));
    const QString before = EventPort();
    const auto isRefused = [&] {
        boxes.clear();
        Leave(Messages::Yes);
        return Screen(Form) != nullptr && boxes.contains(GetText(30014)) && EventPort() == before;
    };
    EXPECT_TRUE(isRefused()) << "a field is missing";
    ChangeField("lblComBits", "7");
    SLVfonctions::setDevicePath("COM5", Path("gone"));
    EXPECT_TRUE(isRefused()) << "its device is missing";
    SLVfonctions::setDevicePath("COM5", Path("line"));
    Leave(Messages::Yes);
    EXPECT_EQ(Site().PrtSettings(), "COM5:9600,E,7,1");
    EXPECT_EQ(EventPort(), Site().PrtSettings()) << "the events go there from now on";

    Forms::Show(Form);
    Tap(Form, "lblPort_2");
    EXPECT_FALSE(Child(Form, "cmdPrintTest")->isEnabled());
    Leave(Messages::Yes);
    EXPECT_EQ(Site().PrtSettings() + EventPort(), ":");
}

TEST_F(ParamPrinterTest, ATestLineLeavesThePrinterOfTheEventsAsItWas) {
    TestPrint();
    EXPECT_EQ(paper.Paper(), QByteArray("***** TEST *****\r\n"));
    EXPECT_EQ(boxes.takeLast(), GetText(430310));

    const int terminal = posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK);
    ASSERT_EQ(grantpt(terminal) + unlockpt(terminal), 0);
    SLVfonctions::setDevicePath("COM2", QFile::decodeName(ptsname(terminal)));
    Tap(Form, "lblPort_0");
    EXPECT_EQ(Shown("lblComPort") + u' ' + Shown("lblComSpeed"), "2 9600")
        << "the bus has the first";
    TestPrint();
    QByteArray line(64, '\0');
    line.truncate(qMax<qsizetype>(read(terminal, line.data(), size_t(line.size())), 0));
    close(terminal);
    EXPECT_EQ(line, QByteArray("***** TEST *****\r\n"));
    EXPECT_EQ(EventPort(), "LPT1:");

    engine->Paper().Print("event");
    EXPECT_TRUE(paper.Paper().endsWith("event\r\n"));
}

TEST_F(ParamPrinterTest, AStuckPrinterHoldsNothing) {
    paper.Stick();
    TestPrint();
    EXPECT_TRUE(boxes.isEmpty());
    EXPECT_FALSE(Child(Form, "cmdPrintTest")->isEnabled());
    LetTwoSecondsPass();
    EXPECT_TRUE(boxes.last().startsWith(GetText(430316).section(u'$', 0, 0)));
    EXPECT_EQ(EventPort(), "LPT1:");

    TestPrint();
    AlarmComes();
    boxes.clear();
    LetTwoSecondsPass();
    EXPECT_TRUE(boxes.isEmpty()) << "nobody waits for it any more";
}

TEST_F(ParamPrinterTest, AnAlarmKeepsTheEditAndPutsTheDeviceBack) {
    Site().setBusSettings("COM3:9600,N,8,1");
    Tap(Form, "lblPortName_0");
    ChangeField("lblComPort", "3");
    EXPECT_EQ(boxes.last(), GetText(714061));
    ChangeField("lblComPort", "4");
    const QString adapter = ports.AddSerial("ttyUSB0", "FTDI");
    const auto device = [] { return SLVfonctions::DevicePath("COM4"); };
    const QString former = device();
    ChooseDevice("lblPortDevice_0", 1);
    EXPECT_EQ(device(), ports.Lasting(adapter));
    AlarmComes();
    EXPECT_EQ(device(), former);
    EXPECT_EQ(Site().PrtSettings(), "LPT1:");

    Forms::Show(Form);
    EXPECT_TRUE(TellsOfKept());
    EXPECT_EQ(Shown("lblComPort"), "4");
    EXPECT_EQ(device(), ports.Lasting(adapter)) << "as before the alarm";
    Leave(Messages::No);
    EXPECT_EQ(device(), former);
    Forms::Show(Form);
    EXPECT_FALSE(TellsOfKept());
}
