// An event's way from the engine to the printer's device.

#include "bus/Engine.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

class PrinterRoad : public Engine {
protected:
    PrinterRoad() {
        const QString pipe = Path(Text("printer"));
        EXPECT_EQ(mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
        IniWrite(Text("Ports"), Text("LPT1"), pipe);
        Site().setPrtSettings(Text("LPT1:"));
        Site().setPrinterInitString(5, Text("1B 45"));
        OpenReader();
        Start();
        ChannelClass& channel = AddModule(5, Models::Q7100).Channel(7);
        channel.setPrtAlm(true);
        channel.setPrintText(Text("Brûleur à gaz"));
        SetOptions(0, 0, 31, 0);
    }
    ~PrinterRoad() override { CloseReader(); }

    void OpenReader() {
        const QByteArray path = QFile::encodeName(Path(Text("printer")));
        reader = open(path.constData(), O_RDONLY | O_NONBLOCK);
    }
    void CloseReader() {
        if (reader >= 0)
            close(reader);
        reader = -1;
    }
    QByteArray Paper() const {
        QByteArray bytes(4096, '\0');
        bytes.resize(qMax<qsizetype>(0, read(reader, bytes.data(), size_t(bytes.size()))));
        return bytes;
    }
    void Route(qint16 chnl, qint16 aff) {
        EventClass event(5, chnl, 0, aff);
        event.setGDH(clock.Now());
        engine->SendEvent(event);
    }

    int reader = -1;
};

TEST_F(PrinterRoad, ALineReachesTheDeviceAndAMissingPrinterStopsNothing) {
    Paper();
    Forget();
    Route(7, 1);
    const QByteArray line = Paper();
    EXPECT_EQ(line.left(30), QByteArray("\x1B"
                                        "E2024-03-15 12:00:00        P"));
    EXPECT_TRUE(line.endsWith("Br\x96leur \x85 gaz\r\n")) << line.toStdString();
    Route(8, 1);
    EXPECT_EQ(Paper(), QByteArray()) << "a channel that isn't printed";

    CloseReader();
    Route(7, 1);
    Route(7, 0);
    EXPECT_EQ(events.size(), 4);
    EXPECT_EQ(boxes, QStringList());
    const auto told = [this] { return TraceLines().filter(Text(" PRINTER ERROR  ")); };
    const qsizetype first = told().size();
    EXPECT_GE(first, 1);
    Route(7, 1);
    EXPECT_EQ(told().size(), first) << "once an hour";
    clock.Advance(3601000);
    Route(7, 0);
    EXPECT_EQ(told().size(), first + 1);

    EXPECT_TRUE(Faults::Stands(Faults::Kind::PrinterNotReached));
    OpenReader();
    clock.Advance(EventPrinter::TryPause);
    Route(7, 1);
    const QByteArray paper = Paper();
    EXPECT_TRUE(paper.startsWith("4 events not printed, see history\r\n\x1B"
                                 "E2024-03-15 13:00:31 "))
        << paper.toStdString();
    EXPECT_FALSE(Faults::Stands(Faults::Kind::PrinterNotReached));
}

// Whoever chooses the ports may do it in either order.
TEST_F(PrinterRoad, ThePortOfTheBusIsNeverPrintedOn) {
    EXPECT_EQ(engine->dpPrinter().Port(), Text("LPT1"));
    IniWrite(Text("Ports"), Text("COM4"), Path(Text("printer")));
    Site().setBusSettings(Text("COM4:9600,N,8,1"));
    engine->ConfigCommPort();
    EXPECT_EQ(boxes.filter(GetText(714061)).size(), 1);
    EXPECT_EQ(engine->dpPrinter().Port(), QString());
    Paper();
    Route(7, 1);
    EXPECT_EQ(Paper(), QByteArray());
}

} // namespace
