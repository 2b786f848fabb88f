#pragma once

#include "events/EventPrinter.h"
#include "platform/PrinterPort.h"
#include "support/Bench.h"

#include <QStringList>

/// A port that notes what is done with it. Each kind of operation can be made to fail.
class FakePort : public platform::PrinterPort {
public:
    int openError = 0;
    int checkError = 0;
    int lineError = 0;
    int writeError = 0;
    QStringList log;
    QByteArray written;
    /// Nothing leaves the machine, and what Advance then says.
    bool stuck = false;
    int advanceError = 0;

    int Open(const QString& portName) override {
        log += Text("open ") + portName;
        open_ = openError == 0;
        return openError;
    }
    bool IsOpen() const override { return open_; }
    int CheckLine() override { return checkError; }
    int SetLine(const platform::LineSettings& settings) override {
        log += QString::asprintf("line %d %d %d %d", int(settings.speed), int(settings.parity),
                                 int(settings.dataBits), int(settings.stopBits));
        return lineError;
    }
    void SetWriteTimeout(int milliseconds) override { log += Text("timeout %1").arg(milliseconds); }
    int Write(const QByteArray& bytes) override {
        log += Text("write");
        written += bytes;
        busy_ = stuck && writeError == 0;
        return writeError;
    }
    bool IsBusy() const override { return busy_; }
    int Advance() override {
        busy_ = stuck && advanceError == 0;
        return advanceError;
    }
    bool HasBegun() const override { return !written.isEmpty(); }
    void Close() override {
        if (open_)
            log += Text("close");
        open_ = false;
        busy_ = false;
    }

private:
    bool open_ = false;
    bool busy_ = false;
};

/// An event printer on such a port, named LPT1.
class PrinterBench : public QuietBench {
protected:
    PrinterBench() { printer.setPort(Text("LPT1")); }

    QByteArray Written() { return std::exchange(port->written, {}); }

    FakePort* port = new FakePort;
    DirectPrinting printer{std::unique_ptr<platform::PrinterPort>(port)};
    EventPrinter paper{printer};
};
