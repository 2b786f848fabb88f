// The printer's screen against a named pipe, on which the events go out, and a pseudo-terminal.

#include "events/PrinterDefinition.h"
#include "support/ConfigScreensFixture.h"
#include "support/PipePrinter.h"
#include "support/PortsOfTest.h"

#include <cstdlib>
#include <optional>

namespace {

class ParamPrinterTest : public ConfigScreensTest {
protected:
    ParamPrinterTest()
        : ConfigScreensTest(FormNames::wParamPrinter) {
        Write("matrix", "[Reset]\nInit=1B 40\n[Colors]\n0=1B 72 06\n2=1B 72 04\n"
                        "[Styles]\nB=1B 45\nU=1B 2D 01\n");
        Write("plain", "[Reset]\nInit=\n");
        SLVfonctions::setDevicePath("LPT1", Path("paper"));
        paper.SwitchOn();
        Site().setPrtSettings("LPT1:");
        Site().setPrinterName("matrix");
        Site().setPrinterInitCode(1, "0BU");
        engine->dpPrinter().setPort("LPT1");
        engine->dpPrinter().setSettings(QString());
        Forms::Show(Form);
    }

    void Write(const QString& name, const QByteArray& content) const {
        WriteFile(name + ".prt", content);
    }
    /// Taps a printer of the list, in their order.
    void TapPrinter(int row) const {
        auto* list = Find<QListWidget>(Form, "lstPrinterName");
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {},
                          list->visualItemRect(list->item(row)).center());
    }
    /// Edits a class, and confirms or not.
    void EditClass(int number, const QStringList& taps, bool confirm = true) {
        Tap(Form, QStringLiteral("lblEscTitle_%1").arg(number));
        Script script;
        script.On(FormNames::dlgParamPrinter, [&] {
            for (const QString& name : taps)
                Tap(FormNames::dlgParamPrinter, name);
            Tap(FormNames::dlgParamPrinter,
                confirm ? QStringLiteral("imgControl_1") : QStringLiteral("imgControl_0"));
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

    PortsOfTest ports;
    PipePrinter paper{Path("paper")};
};

} // namespace

TEST_F(ParamPrinterTest, AnEditedClassHoldsItsColourUntilThePrinterIsSelectedAgain) {
    EXPECT_EQ(Shown("lblEscCode_1"), "Green Bold Underlined");
    EditClass(2, {"optGreen", "chkGras"}, false);
    EXPECT_EQ(Shown("lblEscCode_2"), QString());
    EditClass(2, {"optYellow", "chkGras", "optRed", "chkItalic"});
    EXPECT_EQ(Shown("lblEscCode_2"), "Yellow Bold") << "no red, no italic";
    Leave(Messages::Yes);
    EXPECT_EQ(Site().PrinterInitCode(2), "2B");
    EXPECT_EQ(Site().PrinterInitString(2), "1B 72 04");

    Forms::Show(Form);
    TapPrinter(0);
    Leave(Messages::Yes);
    EXPECT_EQ(Site().PrinterInitString(0), "1B 40");
    EXPECT_EQ(Site().PrinterInitString(1), "1B 72 06 1B 45 1B 2D 01");
    EXPECT_EQ(Site().PrinterInitString(2), "1B 72 04 1B 45");

    Forms::Show(Form);
    TapPrinter(1);
    Leave(Messages::Yes);
    EXPECT_EQ(Site().PrinterName(), "plain");
    EXPECT_EQ(Site().PrinterInitString(1), QString());
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
        EXPECT_EQ(boxes.last(), GetText(30019));
        EXPECT_EQ(styles.last(), 16);
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
    for (const int said : {1, 2}) {
        Leave(Messages::Yes);
        EXPECT_NE(Screen(Form), nullptr);
        EXPECT_EQ(boxes.last(), GetText(30014));
        EXPECT_EQ(EventPort(), before);
        if (said == 1) {
            ChangeField("lblComBits", "7");
            SLVfonctions::setDevicePath("COM5", Path("gone"));
        }
    }
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
    EXPECT_EQ(boxes.last(), GetText(430310));
    EXPECT_EQ(styles.last(), 64);

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
    EXPECT_EQ(boxes.last(), GetText(430310));
    EXPECT_EQ(EventPort(), "LPT1:");

    engine->Paper().Print("event");
    EXPECT_TRUE(paper.Paper().endsWith("event\r\n"));
}

TEST_F(ParamPrinterTest, AStuckPrinterHoldsNothing) {
    paper.Stick();
    const auto said = boxes.size();
    TestPrint();
    EXPECT_EQ(boxes.size(), said);
    EXPECT_FALSE(Child(Form, "cmdPrintTest")->isEnabled());
    LetTwoSecondsPass();
    EXPECT_TRUE(boxes.last().startsWith(GetText(430316).section(u'$', 0, 0)));
    EXPECT_EQ(styles.last(), 16);
    EXPECT_EQ(EventPort(), "LPT1:");

    TestPrint();
    AlarmComes();
    const auto before = boxes.size();
    LetTwoSecondsPass();
    EXPECT_EQ(boxes.size(), before) << "nobody waits for it any more";
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
    EXPECT_TRUE(Shown("lblPortDevice_0").startsWith("FTDI"));
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
