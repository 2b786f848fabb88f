#include "model/PrinterSettings.h"

#include <QStringList>

namespace {

/// A field that has to be a number.
QString Number(const QString& text) {
    bool isNumber = false;
    text.trimmed().toDouble(&isNumber);
    return isNumber ? text.trimmed() : PrinterSettings::Unread;
}

QString Parity(const QString& text) {
    const QString letter = text.trimmed().toUpper();
    const bool known = letter.size() == 1 && PrinterSettings::ParityLetters.contains(letter);
    return known ? letter : PrinterSettings::Unread;
}

constexpr int NameLength = 3;

} // namespace

PrinterSettings PrinterSettings::Of(const QString& text) {
    PrinterSettings settings;
    const QStringList parts = text.split(u':');
    const QString number = Number(parts[0].mid(NameLength));
    if (text.startsWith(QLatin1String("COM"))) {
        const QStringList line = parts.value(1).split(u',');
        settings.kind = Kind::Serial;
        settings.comPort = number;
        settings.speed = Number(line.value(0));
        settings.parity = Parity(line.value(1));
        settings.bits = Number(line.value(2));
        settings.stop = Number(line.value(3));
    } else if (text.startsWith(QLatin1String("LPT"))) {
        settings.kind = Kind::Parallel;
        settings.lptPort = number;
    }
    return settings;
}

QString PrinterSettings::PortName() const {
    switch (kind) {
    case Kind::Serial:
        return QStringLiteral("COM") + comPort;
    case Kind::Parallel:
        return QStringLiteral("LPT") + lptPort;
    default:
        return {};
    }
}

QString PrinterSettings::Text() const {
    switch (kind) {
    case Kind::Serial:
        return PortName() + u':' + QStringList{speed, parity, bits, stop}.join(u',');
    case Kind::Parallel:
        return PortName() + u':';
    default:
        return {};
    }
}
