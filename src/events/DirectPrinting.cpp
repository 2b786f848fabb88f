#include "events/DirectPrinting.h"

#include "core/Bytes.h"
#include "core/Config.h"
#include "core/ErrorHandling.h"
#include "core/Message.h"
#include "core/Rehearsal.h"
#include "core/SLVfonctions.h"
#include "model/BusSettings.h"
#include "model/CurrentConfig.h"
#include "platform/CodePage.h"
#include "platform/Ports.h"
#include "platform/RunTimeError.h"

#include <QStringList>
#include <array>

using platform::RunTimeError;
namespace errors = platform::errors;

namespace {

constexpr int PortOfTheBus = 714061;
/// A line that isn't out by then is given up, ms.
constexpr int WriteTimeout = 2000;

/// What stands for the characters 128 to 255.
constexpr char OemTable[] = "095|095|039|159|034|046|197|206|094|037|083|060|079|095|090|095|"
                            "095|039|039|034|034|007|045|045|126|084|115|062|111|095|122|089|"
                            "255|173|189|156|207|190|221|245|249|184|166|174|170|240|169|238|"
                            "248|241|253|252|239|230|244|250|247|251|167|175|172|171|243|168|"
                            "183|181|182|199|142|143|146|128|212|144|210|211|222|214|215|216|"
                            "209|165|227|224|226|229|153|158|157|235|233|234|154|237|232|225|"
                            "133|160|131|198|132|134|145|135|138|130|136|137|141|161|140|139|"
                            "208|164|149|162|147|228|148|246|155|151|163|150|129|236|231|152";

std::array<quint8, 128> ReadOemTable() {
    std::array<quint8, 128> table{};
    const QStringList numbers = QString::fromLatin1(OemTable).split(u'|');
    for (size_t i = 0; i < table.size(); ++i)
        table[i] = quint8(numbers[qsizetype(i)].toInt());
    return table;
}

bool IsSerial(const QString& port) {
    return port.startsWith(QStringLiteral("COM"), Qt::CaseInsensitive);
}

QString NoPrinter() {
    return ErrorHandling::RunTimeText(errors::PrinterError);
}

/// Speed, parity, data bits, stop bits. A field that is missing or no parity letter gives values
/// that no port accepts.
platform::LineSettings ParseLine(const QString& settings) {
    const QStringList fields = settings.split(u',');
    platform::LineSettings line;
    line.speed = Bytes::LongVal(fields.value(0));
    const QString parity = fields.value(1).trimmed().toUpper();
    line.parity = parity.size() == 1 ? int(QStringLiteral("NOE").indexOf(parity)) : -1;
    line.dataBits = Bytes::ShortVal(fields.value(2));
    line.stopBits = int(Bytes::Limit(Bytes::Val(fields.value(3)), 0.0, 9.0) * 2 - 2);
    return line;
}

} // namespace

/// A rehearsal prints to a file, whatever the port; the site is none the wiser.
DirectPrinting::DirectPrinting()
    : DirectPrinting(platform::MakePrinterPort([](const QString& port) {
        return Rehearsal::Runs() ? Rehearsal::Prints() : SLVfonctions::DevicePath(port);
    })) {}

DirectPrinting::DirectPrinting(std::unique_ptr<platform::PrinterPort> device)
    : device_(std::move(device)) {}

DirectPrinting::~DirectPrinting() {
    ClosePrinter();
}

bool DirectPrinting::IsPort(const QString& name) {
    return IsSerial(name) || name.startsWith(QStringLiteral("LPT"), Qt::CaseInsensitive);
}

void DirectPrinting::setPort(const QString& value) {
    if (value.isEmpty()) {
        port_ = value;
        ClosePrinter();
        return;
    }
    if (!IsPort(value))
        throw RunTimeError(errors::InvalidPropertyValue);
    const bool reopen = value != port_ && device_->IsOpen();
    if (reopen)
        OpenPrinter(value, settings_, closeAfterLine_);
    port_ = value;
}

QString DirectPrinting::Told(int error, int where) const {
    QString text = platform::PrinterPort::ErrorText(error).trimmed();
    if (onError)
        onError(text, where);
    return text;
}

QString DirectPrinting::OpenPrinter(const QString& port, const QString& settings,
                                    bool closeAfterLine) {
    if (!port.isEmpty())
        port_ = port;
    if (!settings.isEmpty())
        settings_ = settings;
    ClosePrinter();
    closeAfterLine_ = closeAfterLine || IsSerial(port_);
    if (const int error = device_->Open(port_)) {
        failed_ = true;
        return Told(error, Opening);
    }
    Configure();
    return {};
}

/// A failure here is told and doesn't stop: the port may still print.
void DirectPrinting::Configure() {
    if (IsSerial(port_) && !Rehearsal::Runs()) {
        if (const int unread = device_->CheckLine())
            Told(unread, ReadingState);
        if (const int unset = device_->SetLine(ParseLine(settings_)))
            Told(unset, SettingState);
    }
    device_->SetWriteTimeout(WriteTimeout);
}

void DirectPrinting::ClosePrinter() {
    failed_ = false;
    device_->Close();
}

QString DirectPrinting::Send(const QByteArray& bytes, int where) {
    if (!device_->IsOpen())
        return NoPrinter();
    const int error = device_->Write(bytes);
    return error != 0 ? Told(error, where) : QString();
}

QString DirectPrinting::PrintString(const QString& text) {
    return Send(platform::ToCodePage(text), PrintingString);
}

QString DirectPrinting::PrintData(const QByteArray& bytes) {
    return Send(bytes, PrintingData);
}

QString DirectPrinting::PrintLine(const QString& text) {
    QString error;
    if (!device_->IsOpen())
        error = port_.isEmpty() ? NoPrinter() : OpenPrinter(port_, QString(), false);
    if (!error.isEmpty()) {
        if (closeAfterLine_)
            ClosePrinter();
        return error;
    }
    const QString former = torn_ ? QStringLiteral("\r\n") : QString();
    error = PrintString(former + text + u'\r' + (addLF_ ? QStringLiteral("\n") : QString()));
    return Settle(error);
}

QString DirectPrinting::Advance() {
    if (!device_->IsBusy())
        return {};
    const int error = device_->Advance();
    return Settle(error != 0 ? Told(error, PrintingString) : QString());
}

/// A port is closed behind a line that is out, if so told, and behind one that failed: a printer
/// that was unplugged comes back as another device.
QString DirectPrinting::Settle(const QString& error) {
    if (IsBusy())
        return error;
    torn_ = !error.isEmpty() && (torn_ || device_->HasBegun());
    if (device_->IsOpen() && (closeAfterLine_ || !error.isEmpty()))
        ClosePrinter();
    return error;
}

QString DirectPrinting::AnsiToOem(const QString& text) {
    static const std::array<quint8, 128> table = ReadOemTable();
    QByteArray bytes = platform::ToCodePage(text);
    for (char& byte : bytes) {
        const auto code = quint8(byte);
        if (code >= 128)
            byte = char(table[code - 128U]);
    }
    return platform::FromCodePage(bytes);
}

bool IsBusPort(const QString& port) {
    const QString bus = Global::Configuration().BusSettings();
    if (port.isEmpty() || bus.isEmpty())
        return false;
    const int number = Bytes::ShortVal(BusSettings::Of(bus).port);
    if (IsSerial(port) && Bytes::ShortVal(port.mid(3)) == number)
        return true;
    return !Rehearsal::Runs() &&
           platform::Ports::SameDevice(SLVfonctions::DevicePath(port),
                                       SLVfonctions::DevicePath(BusSettings::PortName(number)));
}

bool TestPrintPort(const QString& portString) {
    bool usable = false;
    ErrorHandling::Guard("Config.TestPrintPort", [&] {
        const QStringList parts = portString.split(u':');
        DirectPrinting printer;
        printer.ClosePrinter();
        printer.setPort(parts.value(0));
        if (parts.size() > 1)
            printer.setSettings(parts[1]);
        if (printer.Port().isEmpty()) {
            usable = true;
            return;
        }
        if (IsBusPort(printer.Port())) {
            Message(GetText(PortOfTheBus), Messages::Critical);
            return;
        }
        const QString error = printer.OpenPrinter(QString(), QString(), true);
        usable = error.isEmpty();
        if (!usable)
            Message(GetText(20011).replace(QStringLiteral("$"), error), Messages::Critical);
    });
    return usable;
}
