#include "screens/menu/BusConfig.h"

#include "core/Config.h"
#include "platform/SerialLink.h"

QStringList BusConfigTexts(const platform::SerialLink& link) {
    constexpr int UnknownParity = 100020;
    const QStringList settings = link.Settings().split(u',');
    // "NEO" gives 1 to 3, and anything else the word for an unknown parity.
    const QString letter = settings.value(1).trimmed().toUpper();
    const int parity = letter.isEmpty() ? 0 : int(QStringLiteral("NEO").indexOf(letter[0])) + 1;
    return {QString::number(link.CommPort()), settings.value(0), GetText(UnknownParity + parity),
            settings.value(2), settings.value(3)};
}
