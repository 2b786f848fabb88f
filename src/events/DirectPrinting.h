#pragma once

#include "platform/PrinterPort.h"

#include <QByteArray>
#include <QString>
#include <functional>
#include <memory>

/// A line printer wired straight to a serial or parallel port, with no spooler between. Errors are
/// returned as text and told to the owner; only setting a port name that is none is a run-time
/// error. Nothing but closing the port waits: what the printer doesn't take at once is under way,
/// which is no error, and goes on with Advance until its time is over.
class DirectPrinting {
public:
    /// Where an error arose. The numbers of the time-outs stand for errors that this machine's
    /// ports don't have.
    enum Where {
        Opening = 0,
        ReadingState = 1,
        SettingState = 2,
        ReadingTimeouts = 3,
        SettingTimeouts = 4,
        PrintingData = 6,
        PrintingString = 8
    };

    /// On the machine's ports.
    DirectPrinting();
    explicit DirectPrinting(std::unique_ptr<platform::PrinterPort> device);
    ~DirectPrinting();

    /// Told of each error: its text and where it arose.
    std::function<void(const QString& text, int where)> onError;

    /// A line feed goes behind each line's carriage return.
    bool AddLF() const { return addLF_; }
    void setAddLF(bool value) { addLF_ = value; }
    /// Speed, parity letter, data bits, stop bits. The default has its fields in another order
    /// than the parser reads and stands only until the site's settings are assigned: a serial
    /// port opened with it has no parity to set.
    QString Settings() const { return settings_; }
    void setSettings(const QString& value) { settings_ = value; }
    bool IsOpen() const { return device_->IsOpen(); }
    /// 1 while the port is open, 0 when it is closed, -1 when the last opening failed.
    qint32 Handle() const { return IsOpen() ? 1 : failed_ ? -1 : 0; }
    QString Port() const { return port_; }
    /// "COM*", "LPT*" or nothing, which closes. Throws RunTimeError `InvalidPropertyValue` for
    /// anything else.
    void setPort(const QString& value);

    /// Opens the port; an empty argument stands for the present value. Gives the error text,
    /// empty if all is well. A serial port is always closed behind each line.
    QString OpenPrinter(const QString& port, const QString& settings, bool closeAfterLine);
    void ClosePrinter();
    /// Each gives the error text, empty if all is well.
    QString PrintString(const QString& text);
    QString PrintData(const QByteArray& bytes);
    /// Opens the port if need be. A line that was torn before gets its end first.
    QString PrintLine(const QString& text);
    /// Something printed hasn't left the machine.
    bool IsBusy() const { return device_->IsBusy(); }
    /// Goes on with what is under way; the error text if it failed.
    QString Advance();
    /// "COM*" or "LPT*".
    static bool IsPort(const QString& name);
    /// The text in the printer's character set: characters above 127 by table, which is that of
    /// code page 850.
    static QString AnsiToOem(const QString& text);

private:
    QString Told(int error, int where) const;
    QString Send(const QByteArray& bytes, int where);
    void Configure();
    QString Settle(const QString& error);

    std::unique_ptr<platform::PrinterPort> device_;
    bool addLF_ = false;
    bool closeAfterLine_ = false;
    bool failed_ = false;
    bool torn_ = false; // part of a line may stand on paper
    QString settings_ = QStringLiteral("9600,8,N,1");
    QString port_;
};

/// Is this the port of the bus, by its number or by its device? What is printed would disturb the
/// modules.
bool IsBusPort(const QString& port);

/// Can the printer port of this string be used? No port is a valid choice; the port of the bus, or
/// one that doesn't open, is told.
bool TestPrintPort(const QString& portString);
