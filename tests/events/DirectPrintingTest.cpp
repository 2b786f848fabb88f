#include "events/DirectPrinting.h"

#include "events/FakePort.h"
#include "platform/CodePage.h"
#include "platform/RunTimeError.h"
#include "support/Bench.h"

#include <cerrno>

namespace {

const QString NoPrinter = Text("Printer error");

class Printer : public PrinterBench {
protected:
    Printer() {
        printer.setPort(QString());
        printer.onError = [this](const QString& text, int where) {
            told += Text("%1 %2").arg(where).arg(text);
        };
    }

    QStringList Done() { return std::exchange(port->log, {}); }
    QStringList Told() { return std::exchange(told, {}); }

    QStringList told;
};

TEST_F(Printer, TakesPortNamesAndRefusesOthers) {
    for (const char* name : {"COM1", "LPT1", "COM255", "LPT", "", "LPT2"}) {
        printer.setPort(Text(name));
        EXPECT_EQ(printer.Port(), Text(name));
    }
    for (const char* name : {"USB1", " COM1", "CO", "/dev/lp0"}) {
        EXPECT_THROW(printer.setPort(Text(name)), platform::RunTimeError) << name;
        EXPECT_EQ(printer.Port(), Text("LPT2"));
    }
    EXPECT_EQ(Done(), QStringList()) << "a closed port stays closed";
    printer.setSettings(Text("9600,N,8,1"));
    EXPECT_EQ(printer.OpenPrinter({}, {}, false), QString());
    EXPECT_EQ(printer.Handle(), 1);
    printer.setPort(Text("LPT2"));
    EXPECT_EQ(Done(), TextList({"open LPT2", "timeout 2000"}));
    printer.setPort(Text("COM2"));
    EXPECT_EQ(Done(), TextList({"close", "open COM2", "line 9600 0 8 0", "timeout 2000"}));
    EXPECT_THROW(printer.setPort(Text("XYZ")), platform::RunTimeError);
    EXPECT_TRUE(printer.IsOpen());
    printer.setPort(Text(""));
    EXPECT_EQ(Done(), TextList({"close"}));
    EXPECT_EQ(printer.Handle(), 0);
}

TEST_F(Printer, OpensWithTheLineOfItsSettings) {
    EXPECT_EQ(printer.Settings(), Text("9600,8,N,1")) << "at first";
    const std::pair<const char*, const char*> rows[] = {
        {"9600,N,8,1", "line 9600 0 8 0"},
        {"1200,o,7,2", "line 1200 1 7 2"},
        {" 19200 , E , 8 , 1.5 ", "line 19200 2 8 1"},
        // No parity, and what no line takes.
        {"9600,8,N,1", "line 9600 -1 0 0"},
        {"9600,NO,8,1", "line 9600 -1 8 0"},
        {"9600,,8,1", "line 9600 -1 8 0"},
        {"fast", "line 0 -1 0 -2"},
    };
    for (const auto& [settings, line] : rows) {
        printer.OpenPrinter(Text("COM1"), Text(settings), false);
        EXPECT_TRUE(Done().contains(Text(line))) << settings;
        EXPECT_EQ(printer.Settings(), Text(settings));
    }
    port->lineError = EINVAL;
    EXPECT_EQ(printer.OpenPrinter({}, {}, false), QString()) << "told, and goes on";
    EXPECT_EQ(Told(), TextList({"2 Invalid argument"}));
    EXPECT_TRUE(printer.IsOpen());
    EXPECT_EQ(printer.Port() + printer.Settings(), Text("COM1fast")) << "empty arguments keep them";
}

TEST_F(Printer, TellsWhatFailedAndWhere) {
    const auto printed = [this] {
        return QStringList(
            {printer.PrintData("x"), printer.PrintString(Text("x")), printer.PrintLine(Text("x"))});
    };
    EXPECT_EQ(printed(), QStringList(3, NoPrinter));
    EXPECT_EQ(Done() + Told(), QStringList()) << "no port";

    port->openError = ENOENT;
    const QString missing = Text("No such file or directory");
    EXPECT_EQ(printer.OpenPrinter(Text("LPT1"), {}, false), missing);
    EXPECT_EQ(printer.Handle(), -1);
    EXPECT_EQ(printed(), QStringList({NoPrinter, NoPrinter, missing})) << "tried with each line";
    EXPECT_EQ(Told(), QStringList(2, Text("0 ") + missing));
    printer.ClosePrinter();
    EXPECT_EQ(printer.Handle(), 0);

    port->openError = 0;
    port->checkError = ENOTTY;
    EXPECT_EQ(printer.OpenPrinter(Text("COM1"), Text("9600,N,8,1"), false), QString());
    EXPECT_EQ(Told(), TextList({"1 Inappropriate ioctl for device"}));
    Done();

    port->writeError = ETIMEDOUT;
    const QString late = Text("Connection timed out");
    EXPECT_EQ(printed(), QStringList(3, late));
    EXPECT_EQ(Told(), QStringList({Text("6 ") + late, Text("8 ") + late, Text("8 ") + late}));
    EXPECT_EQ(Done(), TextList({"write", "write", "write", "close"}));
    printer.onError = nullptr;
    EXPECT_EQ(printer.PrintLine(Text("x")), late) << "nobody listens";
}

TEST_F(Printer, EndsItsLinesAndHoldsASerialPortForOneLine) {
    printer.setPort(Text("LPT1"));
    EXPECT_EQ(printer.PrintLine(Text("one")), QString());
    printer.setAddLF(true);
    EXPECT_EQ(printer.PrintLine(QString()), QString());
    EXPECT_EQ(Done(), TextList({"open LPT1", "timeout 2000", "write", "write"})) << "stays open";
    printer.PrintString(Text("é€Ω"));
    printer.PrintData(QByteArray("\0\xFF", 2));
    EXPECT_EQ(port->written, QByteArray("one\r\r\n\xE9\x80?\0\xFF", 11));
    // What has failed is opened anew.
    port->writeError = ENODEV;
    printer.PrintLine(Text("lost"));
    EXPECT_EQ(Done(), TextList({"write", "write", "write", "close"}));
    port->writeError = 0;
    EXPECT_EQ(printer.PrintLine(Text("two")), QString());
    EXPECT_EQ(Done(), TextList({"open LPT1", "timeout 2000", "write"}));

    printer.setPort(Text("COM1"));
    printer.setSettings(Text("4800,N,8,1"));
    printer.PrintLine(Text("one"));
    Done();
    printer.PrintLine(Text("two"));
    EXPECT_EQ(Done(), TextList({"open COM1", "line 4800 0 8 0", "timeout 2000", "write", "close"}));
    // A parallel port too, when it was opened so.
    printer.OpenPrinter(Text("LPT1"), {}, true);
    printer.PrintLine(Text("three"));
    EXPECT_EQ(Done(), TextList({"open LPT1", "timeout 2000", "write", "close"}));
    printer.PrintLine(Text("four"));
    printer.PrintLine(Text("five"));
    EXPECT_EQ(Done(), TextList({"open LPT1", "timeout 2000", "write", "write"}));
}

TEST_F(Printer, SpeaksThePrintersCharacterSet) {
    const auto oem = [](int code) {
        const QString sent =
            DirectPrinting::AnsiToOem(platform::FromCodePage(QByteArray(1, char(code))));
        return int(quint8(platform::ToCodePage(sent).at(0)));
    };
    for (int code = 0; code < 128; ++code)
        EXPECT_EQ(oem(code), code);
    const std::pair<int, int> rows[] = {{128, 95},  {129, 95},  {143, 95},  {149, 7},   {159, 89},
                                        {160, 255}, {176, 248}, {191, 168}, {196, 142}, {207, 216},
                                        {208, 209}, {220, 154}, {223, 225}, {224, 133}, {231, 135},
                                        {233, 130}, {239, 139}, {240, 208}, {252, 129}, {255, 152}};
    for (const auto& [code, byte] : rows)
        EXPECT_EQ(oem(code), byte) << code;
    EXPECT_EQ(platform::ToCodePage(DirectPrinting::AnsiToOem(Text("né Ω"))), "n\x82 ?");
}

TEST_F(Printer, IsTriedOutByItsPortString) {
    IniWrite(Text("Ports"), Text("LPT1"), Text("/dev/null"));
    IniWrite(Text("Ports"), Text("COM2"), Path(Text("missing")));
    for (const char* name : {"", ":9600,N,8,1", "LPT1:", "LPT1"})
        EXPECT_TRUE(TestPrintPort(Text(name))) << name;
    EXPECT_FALSE(TestPrintPort(Text("COM2:9600,N,8,1")));
    EXPECT_FALSE(TestPrintPort(Text("FILE1:")));
    EXPECT_EQ(boxes.size(), 2);
    EXPECT_EQ(boxes.value(0),
              Text("The printer port cannot be opened:\r\nNo such file or directory"));
    EXPECT_TRUE(Boxes().value(1).startsWith(Text("Error Nr 380 : Invalid property value")));

    // The port of the bus, by its number and by its device.
    IniWrite(Text("Ports"), Text("LPT1"), SLVfonctions::DevicePath(Text("COM1")));
    for (const char* name : {"COM1:9600,N,8,1", "com01:", "LPT1:"})
        EXPECT_FALSE(TestPrintPort(Text(name))) << name;
    EXPECT_EQ(Boxes(), QStringList(3, GetText(714061)));
}

} // namespace
