#pragma once

#include "events/AlarmTables.h"

/// The tables of a report as text.
namespace ReportText {

/// Rows of a table that are printed; screen and spreadsheet show all that it has.
inline constexpr qsizetype PrintedRows = 50;

/// The first rows, and one of a single cell that tells how many more there are.
QList<QStringList> Rows(const ReportTable& table, qsizetype most);

/// For spreadsheets: UTF-8 behind its mark, fields parted by ";", a blank line between tables.
QByteArray Csv(const QList<ReportTable>& tables);

/// For a printer of so many columns. What doesn't fit is cut, the last column of a table first.
QStringList Lines(const QList<ReportTable>& tables, int width);

} // namespace ReportText
