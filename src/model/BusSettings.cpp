#include "model/BusSettings.h"

#include <QStringList>

namespace {
constexpr int LettersOfPort = 3;
} // namespace

BusSettings BusSettings::Of(const QString& text) {
    enum LinePart { Speed, Parity, DataBits, StopBits };
    const QStringList pieces = text.split(u':');
    const QStringList parts = pieces.value(1).split(u',');
    return {pieces[0].mid(LettersOfPort), parts.value(Speed), parts.value(StopBits),
            pieces.value(1)};
}

QString BusSettings::Line(const QString& speed, const QString& stop) {
    return speed + QStringLiteral(",N,8,") + stop;
}

QString BusSettings::Text(int port, const QString& line) {
    return PortName(port) + u':' + line;
}
