// An event's way from the engine to the printer's device.

#include "bus/Engine.h"

#include "support/PipePrinter.h"

namespace {

class PrinterRoad : public Engine {
protected:
    PrinterRoad() {
        IniWrite(Text("Ports"), Text("LPT1"), Path(Text("printer")));
        Site().setPrtSettings(Text("LPT1:"));
        Site().setPrinterInitString(5, Text("1B 45"));
        printer.SwitchOn();
        Start();
        ChannelClass& channel = AddModule(5, Models::Q7100).Channel(7);
        channel.setPrtAlm(true);
        channel.setPrintText(Text("Brûleur à gaz"));
        SetOptions(0, 0, 31, 0);
        printer.Taken();
        Forget();
    }

    /// What an event brings on paper.
    QByteArray Route(qint16 chnl, qint16 aff) {
        EventClass event(5, chnl, 0, aff);
        event.setGDH(clock.Now());
        engine->SendEvent(event);
        return printer.Taken();
    }

    PipePrinter printer{Path(Text("printer"))};
};

TEST_F(PrinterRoad, ALineReachesTheDeviceAndAMissingPrinterStopsNothing) {
    const QByteArray line = Route(7, 1);
    EXPECT_EQ(line.left(30), "\x1B\x45"
                             "2024-03-15 12:00:00        P");
    EXPECT_TRUE(line.endsWith("Br\x96leur \x85 gaz\r\n")) << line.toStdString();
    EXPECT_EQ(Route(8, 1), QByteArray()) << "a channel that isn't printed";

    printer.SwitchOff();
    Route(7, 1);
    Route(7, 0);
    EXPECT_EQ(events.size(), 4);
    const auto told = [this] { return TraceLines().filter(Text(" PRINTER ERROR  ")).size(); };
    const qsizetype first = told();
    EXPECT_GE(first, 1);
    Route(7, 1);
    EXPECT_EQ(told(), first) << "once an hour";
    clock.Advance(3601000);
    Route(7, 0);
    EXPECT_EQ(told(), first + 1);
}

// Whoever chooses the ports may do it in either order.
TEST_F(PrinterRoad, ThePortOfTheBusIsNeverPrintedOn) {
    EXPECT_EQ(engine->dpPrinter().Port(), Text("LPT1"));
    IniWrite(Text("Ports"), Text("COM4"), Path(Text("printer")));
    Site().setBusSettings(Text("COM4:9600,N,8,1"));
    engine->ConfigCommPort();
    EXPECT_EQ(Boxes().filter(GetText(714061)).size(), 1);
    EXPECT_EQ(engine->dpPrinter().Port(), QString());
    EXPECT_EQ(Route(7, 1), QByteArray());
}

} // namespace
