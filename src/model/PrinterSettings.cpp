#include "model/PrinterSettings.h"

#include <QStringList>

namespace {

const QString Com = QStringLiteral("COM");
const QString Lpt = QStringLiteral("LPT");

/// The text when it is a number above 0.
QString Number(const QString& text) {
    bool isNumber = false;
    const double number = text.trimmed().toDouble(&isNumber);
    return isNumber && number > 0 ? text.trimmed() : QString();
}

QString ParityOf(const QString& text) {
    const QString letter = text.trimmed().toUpper();
    return letter.size() == 1 && PrinterSettings::Parities.contains(letter) ? letter : QString();
}

} // namespace

PrinterSettings PrinterSettings::Of(const QString& text) {
    enum LinePart { Speed, Parity, DataBits, StopBits };
    PrinterSettings settings;
    const QStringList pieces = text.split(u':');
    const QString number = Number(pieces[0].mid(Com.size()));
    if (text.startsWith(Lpt, Qt::CaseInsensitive)) {
        settings.kind = PortKind::Parallel;
        settings.parallelPort = number;
    } else if (text.startsWith(Com, Qt::CaseInsensitive)) {
        settings.kind = PortKind::Serial;
        settings.serialPort = number;
        const QStringList parts = pieces.value(1).split(u',');
        settings.speed = Number(parts.value(Speed));
        settings.parity = ParityOf(parts.value(Parity));
        settings.dataBits = Number(parts.value(DataBits));
        settings.stopBits = Number(parts.value(StopBits));
    }
    return settings;
}

QString PrinterSettings::Text() const {
    switch (kind) {
    case PortKind::Serial:
        return Com + serialPort + u':' + speed + u',' + parity + u',' + dataBits + u',' + stopBits;
    case PortKind::Parallel:
        return Lpt + parallelPort + u':';
    default:
        return {};
    }
}

QString PrinterSettings::PortName() const {
    if (kind == PortKind::Serial && !serialPort.isEmpty())
        return Com + serialPort;
    if (kind == PortKind::Parallel && !parallelPort.isEmpty())
        return Lpt + parallelPort;
    return {};
}

bool PrinterSettings::IsComplete() const {
    if (kind == PortKind::None)
        return true;
    const bool line = kind == PortKind::Parallel || (!speed.isEmpty() && !parity.isEmpty() &&
                                                     !dataBits.isEmpty() && !stopBits.isEmpty());
    return line && !PortName().isEmpty();
}
