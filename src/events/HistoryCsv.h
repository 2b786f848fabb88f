#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QStringList>

/// Lines of the history for spreadsheets, a field for each of the nine columns, without the blanks
/// around it.
namespace HistoryCsv {

/// The byte order mark and the line of the headings.
QByteArray Heading(const QStringList& titles);
/// A line of a history file.
QByteArray Row(QByteArrayView line);

} // namespace HistoryCsv
