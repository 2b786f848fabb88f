#include "core/DateTimes.h"

#include <QLocale>
#include <cmath>

namespace DateTimes {

using platform::MillisecondsADay;

namespace {

const QDate DayZero(1899, 12, 30);
QString pattern;

/// Order and separator of the locale's short date; widths are fixed, since files have ten columns.
QString PatternOf(const QLocale& locale) {
    QString fallback = QStringLiteral("yyyy-MM-dd");
    if (locale.language() == QLocale::C)
        return fallback;
    QString order;
    QChar separator;
    for (const QChar c : locale.dateFormat(QLocale::ShortFormat)) {
        if (c == u'd' || c == u'M' || c == u'y') {
            if (!order.contains(c))
                order += c;
        } else if (!order.isEmpty() && separator.isNull() && !c.isSpace() && !c.isLetter()) {
            separator = c;
        }
    }
    if (order.size() != 3 || separator.isNull() || separator.unicode() > 0x7E)
        return fallback;
    QStringList parts;
    for (const QChar c : order)
        parts += c == u'd' ? QStringLiteral("dd")
                           : (c == u'M' ? QStringLiteral("MM") : QStringLiteral("yyyy"));
    return parts.join(separator);
}

qint64 Milliseconds(DateTime when) {
    return std::llround(when * double(MillisecondsADay));
}

qint64 FloorDay(qint64 milliseconds) {
    return milliseconds >= 0 ? milliseconds / MillisecondsADay
                             : -((-milliseconds + MillisecondsADay - 1) / MillisecondsADay);
}

} // namespace

DateTime Now() {
    return platform::Clock::Current().Now();
}

void ReadLocale(const QLocale& locale) {
    pattern = PatternOf(locale);
}

QString ShortDatePattern() {
    if (pattern.isEmpty())
        ReadLocale(QLocale::system());
    return pattern;
}

QDate DateOf(DateTime when) {
    return DayZero.addDays(FloorDay(Milliseconds(when)));
}

QTime TimeOf(DateTime when) {
    const qint64 milliseconds = Milliseconds(when);
    return QTime::fromMSecsSinceStartOfDay(
        int(milliseconds - FloorDay(milliseconds) * MillisecondsADay));
}

DateTime FromDate(const QDate& date, const QTime& time) {
    return double(DayZero.daysTo(date)) +
           double(time.msecsSinceStartOfDay()) / double(MillisecondsADay);
}

/// Day, month and year through digits and not through a formatter of patterns: this stands in the
/// path of every event.
static QString Digits(int value, int width) {
    return QString::number(value).rightJustified(width, u'0');
}

QString ShortDate(DateTime when) {
    const QDate date = DateOf(when);
    const QString form = ShortDatePattern();
    QString text;
    text.reserve(10);
    for (qsizetype i = 0; i < form.size();) {
        switch (form[i].unicode()) {
        case u'd':
            text += Digits(date.day(), 2);
            i += 2;
            break;
        case u'M':
            text += Digits(date.month(), 2);
            i += 2;
            break;
        case u'y':
            text += Digits(date.year(), 4);
            i += 4;
            break;
        default:
            text += form[i++];
        }
    }
    return text;
}

QString LongTime(DateTime when) {
    const QTime time = TimeOf(when);
    return Digits(time.hour(), 2) + u':' + Digits(time.minute(), 2) + u':' +
           Digits(time.second(), 2);
}

QString DateAndTime(DateTime when) {
    return ShortDate(when) + u' ' + LongTime(when);
}

QString KeptTime(DateTime when) {
    const QDate date = DateOf(when);
    return Digits(date.year(), 4) + u'-' + Digits(date.month(), 2) + u'-' + Digits(date.day(), 2) +
           u' ' + LongTime(when);
}

std::optional<DateTime> FromKept(const QString& text) {
    const QDate date = QDate::fromString(text.section(u' ', 0, 0), Qt::ISODate);
    const QTime time = QTime::fromString(text.section(u' ', 1), Qt::ISODate);
    if (!date.isValid() || !time.isValid())
        return std::nullopt;
    return FromDate(date, time);
}

QString FileDate(DateTime when) {
    return FileMonth(when) + Digits(DateOf(when).day(), 2);
}

QString FileMonth(DateTime when) {
    const QDate date = DateOf(when);
    return Digits(date.year(), 4) + Digits(date.month(), 2);
}

std::optional<DateTime> Parse(const QString& text) {
    const QStringList parts = text.simplified().split(u' ', Qt::SkipEmptyParts);
    if (parts.isEmpty() || parts.size() > 2)
        return std::nullopt;
    DateTime result = 0;
    bool dateSeen = false;
    bool timeSeen = false;
    for (const QString& part : parts) {
        const QDate date =
            part.size() == 10 ? QDate::fromString(part, ShortDatePattern()) : QDate();
        const QTime time =
            part.size() == 8 ? QTime::fromString(part, QStringLiteral("HH:mm:ss")) : QTime();
        if (date.isValid() && !dateSeen && !timeSeen) {
            result += FromDate(date);
            dateSeen = true;
        } else if (time.isValid() && !timeSeen) {
            result += double(time.msecsSinceStartOfDay()) / double(MillisecondsADay);
            timeSeen = true;
        } else {
            return std::nullopt;
        }
    }
    return result;
}

} // namespace DateTimes
