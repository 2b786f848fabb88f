#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QStringList>

/// History lines for a spreadsheet: UTF-8 with its mark ahead, fields divided by ";" without the
/// blanks around them, lines ended by carriage return and line feed.
namespace HistoryCsv {

/// The mark and the line of the nine headings, in the order of the file's columns.
QByteArray Heading(const QStringList& titles);
/// A line of a history file.
QByteArray Row(QByteArrayView line);

} // namespace HistoryCsv
