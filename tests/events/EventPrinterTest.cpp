#include "events/FakePort.h"
#include "support/PipePrinter.h"

#include <QCoreApplication>
#include <cerrno>
#include <optional>
#include <utility>

namespace {

class Paper : public PrinterBench {
protected:
    void Print(const char* line) { paper.Print(Text(line)); }
    void TimeOut() {
        port->advanceError = ETIMEDOUT;
        paper.Advance();
        port->advanceError = 0;
    }
};

TEST_F(Paper, LeavesAStuckPrinterAloneAndTellsOnPaperWhatIsMissing) {
    port->stuck = true;
    Print("a");
    Print("b");
    EXPECT_EQ(Written(), QByteArray("a\r")) << "one at a time";
    EXPECT_EQ(Faults::Standing().size(), 0) << "its time isn't over";
    port->written = "a";
    TimeOut();
    EXPECT_EQ(Faults::Standing().value(0).detail, Text("2"));
    Written();
    port->stuck = false;
    port->log.clear();
    Print("c");
    clock.Advance(EventPrinter::TryPause - 1);
    paper.Advance();
    EXPECT_EQ(port->log, QStringList()) << "left alone";
    EXPECT_EQ(Faults::Standing().value(0).detail, Text("3"));

    clock.Advance(1);
    paper.Advance();
    EXPECT_EQ(Written(), QByteArray("\r\n3 events not printed, see history\r"))
        << "behind the end of the torn line";
    EXPECT_FALSE(Faults::Stands(Faults::Kind::PrinterNotReached));
    Print("d");
    EXPECT_EQ(Written(), QByteArray("d\r"));
}

TEST_F(Paper, ANoteThatFailsIsToldWithWhatCameMeanwhile) {
    port->writeError = ENODEV;
    Print("a");
    clock.Advance(EventPrinter::TryPause);
    port->writeError = 0;
    port->stuck = true;
    Written();
    Print("b");
    EXPECT_EQ(Written(), QByteArray("\r\n1 event not printed, see history\r"));
    TimeOut();
    port->stuck = false;
    clock.Advance(EventPrinter::TryPause);
    Print("c");
    EXPECT_EQ(Written(), QByteArray("\r\n2 events not printed, see history\rc\r"));
    EXPECT_EQ(paper.Unprinted(), 0);
}

TEST_F(Paper, WhatIsMissingIsToldAfterARestart) {
    port->stuck = true;
    Print("a");
    Print("b");
    paper.Finish();
    port->stuck = false;
    Written();
    for (const char* note : {"2 events not printed, see history\r", ""}) {
        EventPrinter next(printer);
        next.Recall();
        EXPECT_EQ(Written(), QByteArray(note));
        EXPECT_FALSE(Faults::Stands(Faults::Kind::PrinterNotReached));
    }
    // Where the printer was given up there is no paper to tell it on.
    port->writeError = ENODEV;
    Print("c");
    printer.setPort(QString());
    port->writeError = 0;
    EventPrinter(printer).Recall();
    EXPECT_EQ(IniRead(Text("Printer"), Text("Unprinted"), Text("none")), Text("0"));
}

TEST_F(Paper, ASlowPrinterKeepsTheOrderAndALimit) {
    port->stuck = true;
    QByteArray expected;
    for (int i = 0; i <= EventPrinter::MostWaiting; ++i) {
        const QByteArray line = QByteArray::number(i);
        Print(line.constData());
        if (i < EventPrinter::MostWaiting)
            expected += line + '\r';
    }
    port->stuck = false;
    paper.Advance();
    EXPECT_EQ(Written(), expected + "1 event not printed, see history\r");
    EXPECT_EQ(paper.Unprinted(), 0);
}

TEST_F(Paper, AnotherPortWaitsForTheLineUnderWayAndGetsWhatQueues) {
    port->stuck = true;
    Print("a");
    Print("b");
    port->log.clear();
    paper.Use(Text("COM2"), Text("1200,E,7,2"));
    EXPECT_EQ(port->log, QStringList()) << "a close would wait for the stuck line";
    EXPECT_EQ(printer.Port(), Text("LPT1"));
    port->stuck = false;
    paper.Advance();
    EXPECT_EQ(printer.Port(), Text("COM2"));
    EXPECT_TRUE(port->log.contains(Text("line 1200 2 7 2")));
    EXPECT_EQ(Written(), QByteArray("a\rb\r"));

    port->openError = ENOENT;
    Print("c");
    port->openError = 0;
    paper.Use(Text("LPT2"), QString());
    EXPECT_EQ(Written(), QByteArray("1 event not printed, see history\r")) << "tried at once";
    paper.Use(QString(), QString());
    Print("d");
    EXPECT_EQ(Written(), QByteArray());
    EXPECT_FALSE(Faults::Stands(Faults::Kind::PrinterNotReached));
}

/// The lines of a report stand together, those of events behind it.
TEST_F(Paper, PrintsAReportInOnePiece) {
    QStringList told;
    const auto done = [&](const QString& error) { told += error; };
    port->stuck = true;
    Print("event 1");
    paper.PrintReport({Text("one"), Text("two"), Text("three")}, done);
    Print("event 2");
    port->stuck = false;
    for (int i = 0; i < 6; ++i)
        paper.Advance();
    EXPECT_EQ(Written(), QByteArray("event 1\rone\rtwo\rthree\revent 2\r"));
    QCoreApplication::processEvents();
    EXPECT_EQ(told, QStringList(QString()));

    // What a printer takes no more isn't printed; the events are.
    port->stuck = true;
    paper.PrintReport({Text("one"), Text("two"), Text("three")}, done);
    Print("event 3");
    TimeOut();
    port->stuck = false;
    paper.Advance();
    EXPECT_EQ(Written(), QByteArray("one\r\r\nevent 3\r")) << "behind the end of the torn line";
    printer.setPort(QString());
    paper.PrintReport({Text("one")}, done);
    paper.Advance();
    QCoreApplication::processEvents();
    ASSERT_EQ(told.size(), 3);
    EXPECT_FALSE(told[1].isEmpty());
    EXPECT_FALSE(told[2].isEmpty());
    EXPECT_EQ(paper.Unprinted(), 0);
}

TEST_F(Paper, ATestLineGoesBetweenTheLinesAndLeavesPortAndSettings) {
    PipePrinter tried(Path(Text("tried")));
    tried.SwitchOn();
    SLVfonctions::setDevicePath(Text("LPT9"), Path(Text("tried")));
    printer.setSettings(Text("kept"));
    std::optional<PrinterTest::Result> told;
    const auto test = [&](const char* portString) {
        told.reset();
        paper.PrintTest(Text(portString), [&](const auto& result) { told = result; });
        QCoreApplication::processEvents();
    };
    port->stuck = true;
    Print("a");
    test("LPT9:");
    EXPECT_EQ(tried.Paper(), QByteArray()) << "both may be the same line";
    port->stuck = false;
    paper.Advance();
    QCoreApplication::processEvents();
    EXPECT_EQ(tried.Paper(), QByteArray("***** TEST *****\r\n"));
    ASSERT_TRUE(told);
    EXPECT_EQ(told->error, QString());
    EXPECT_EQ(port->log.last(), Text("close"));

    // A printer that takes nothing: the events wait for no more than its time.
    tried.Stick();
    Written();
    test("LPT9:");
    Print("b");
    EXPECT_EQ(Written(), QByteArray());
    clock.Advance(2000);
    paper.Advance();
    QCoreApplication::processEvents();
    ASSERT_TRUE(told);
    EXPECT_FALSE(told->IsPrinted());
    EXPECT_EQ(told->where, int(DirectPrinting::PrintingString));
    EXPECT_EQ(Written(), QByteArray("b\r"));

    test("LPT8:");
    ASSERT_TRUE(told);
    EXPECT_EQ(told->where, int(DirectPrinting::Opening));
    EXPECT_FALSE(told->error.isEmpty());
    EXPECT_EQ(printer.Port() + u' ' + printer.Settings(), Text("LPT1 kept"));
    EXPECT_EQ(paper.Unprinted(), 0);
}

} // namespace
