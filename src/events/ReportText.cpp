#include "events/ReportText.h"

#include "core/Config.h"
#include "events/Csv.h"

#include <algorithm>
#include <numeric>

namespace ReportText {

namespace {

constexpr int AndMore = 714050;
constexpr int Gap = 2;
const QString LineEnd = QStringLiteral("\r\n");

QStringList Titles(const ReportTable& table) {
    QStringList titles;
    for (const ReportTable::Column& column : table.columns)
        titles += column.title;
    return titles;
}

QList<int> Widths(const QList<QStringList>& rows, int columns, int width) {
    QList<int> widths(columns, 0);
    for (const QStringList& row : rows) {
        // A row of one cell goes over all columns.
        for (int i = 0; i < int(row.size()) && row.size() > 1; ++i)
            widths[i] = std::max(widths[i], int(row[i].size()));
    }
    const int others = std::accumulate(widths.cbegin(), widths.cend() - 1, 0) + Gap * (columns - 1);
    widths.last() = std::clamp(width - others, 0, widths.last());
    return widths;
}

QString Line(const QStringList& cells, const ReportTable& table, const QList<int>& widths,
             int width) {
    if (cells.size() == 1)
        return cells[0].left(width);
    QString line;
    for (int i = 0; i < widths.size(); ++i) {
        const QString cell = cells.value(i).left(widths[i]);
        line += table.columns[i].isNumber ? cell.rightJustified(widths[i])
                                          : cell.leftJustified(widths[i]);
        line += QString(Gap, u' ');
    }
    while (line.endsWith(u' '))
        line.chop(1);
    return line.left(width);
}

} // namespace

QList<QStringList> Rows(const ReportTable& table, qsizetype most) {
    QList<QStringList> rows = table.rows.mid(0, most);
    if (const qsizetype more = table.rows.size() - rows.size() + table.more; more > 0)
        rows += {GetText(AndMore).replace(u'$', QString::number(more))};
    return rows;
}

QByteArray Csv(const QList<ReportTable>& tables) {
    QString text(QChar::ByteOrderMark);
    for (const ReportTable& table : tables) {
        text += ::Csv::Row({table.title}) + ::Csv::Row(Titles(table));
        for (const QStringList& row : Rows(table, table.rows.size()))
            text += ::Csv::Row(row);
        text += LineEnd;
    }
    return text.toUtf8();
}

QStringList Lines(const QList<ReportTable>& tables, int width) {
    QStringList lines;
    for (const ReportTable& table : tables) {
        if (table.rows.isEmpty())
            continue;
        const QList<QStringList> rows = Rows(table, PrintedRows);
        const QList<int> widths =
            Widths(rows + QList<QStringList>{Titles(table)}, int(table.columns.size()), width);
        lines += QString(width, u'-');
        lines += table.title.left(width);
        lines += QString();
        lines += Line(Titles(table), table, widths, width);
        for (const QStringList& row : rows)
            lines += Line(row, table, widths, width);
    }
    lines += QString(width, u'-');
    return lines;
}

} // namespace ReportText
