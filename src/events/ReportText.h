#pragma once

#include "events/AlarmTables.h"

/// The tables of a report as text.
namespace ReportText {

/// Rows of a table that are printed; the file of a spreadsheet has them all.
inline constexpr int MostRows = 50;

/// The rows that are printed, and one that tells how many more there are.
QList<QStringList> PrintedRows(const ReportTable& table);

/// For spreadsheets: UTF-8 behind its mark, fields parted by ";", a blank line between tables.
QByteArray Csv(const QList<ReportTable>& tables);

/// For a printer of so many columns. What doesn't fit is cut, the last column of a table first.
QStringList Lines(const QList<ReportTable>& tables, int width);

} // namespace ReportText
