#pragma once

#include "platform/Clock.h"

#include <QDate>
#include <QLocale>
#include <QString>
#include <QTime>
#include <optional>

using platform::DateTime;

/// Dates and times as the files, the screens and the printer write them. One place forms and
/// reads them, so that what was written is read back.
namespace DateTimes {

/// The present local date and time.
DateTime Now();

/// Ten characters: two-digit day and month, four-digit year, in the order and with the
/// separator of the machine's locale; "yyyy-MM-dd" under the C locale.
QString ShortDate(DateTime when);
/// "HH:mm:ss".
QString LongTime(DateTime when);
/// ShortDate, a blank, LongTime.
QString DateAndTime(DateTime when);
/// "yyyymmdd", the date in file names.
QString FileDate(DateTime when);
/// "yyyymm", the month in file names.
QString FileMonth(DateTime when);

/// Reads a ShortDate, a LongTime or both with a blank between; nothing when the text is not a
/// date of this machine's locale.
std::optional<DateTime> Parse(const QString& text);

/// "yyyy-MM-dd HH:mm:ss", as the settings keep a time: a machine that gets another locale reads it
/// all the same. Also of an hour that the change to summer time leaves out, as a reckoned end may
/// be.
QString KeptTime(DateTime when);
/// Reads a KeptTime; nothing for a text that is none.
std::optional<DateTime> FromKept(const QString& text);

QDate DateOf(DateTime when);
QTime TimeOf(DateTime when);
DateTime FromDate(const QDate& date, const QTime& time = QTime(0, 0));

/// Pattern of ShortDate in Qt's letters, such as "dd/MM/yyyy".
QString ShortDatePattern();
/// Forms the pattern anew from the locale; for tests that change it.
void ReadLocale(const QLocale& locale);

} // namespace DateTimes
