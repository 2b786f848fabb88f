#pragma once

#include <QString>
#include <QStringList>

/// Tables for spreadsheets: fields parted by ";", lines ended by carriage return and line feed. As
/// UTF-8 with the byte order mark ahead of all, they open with their accents.
namespace Csv {

/// A line. What would part a field stands in quotes; one that begins like a formula gets "'" ahead.
QString Row(const QStringList& cells);

} // namespace Csv
