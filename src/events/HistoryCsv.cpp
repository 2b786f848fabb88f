#include "events/HistoryCsv.h"

#include "events/Csv.h"
#include "events/TextProcs.h"
#include "platform/CodePage.h"

namespace HistoryCsv {

QByteArray Heading(const QStringList& titles) {
    return (QChar(QChar::ByteOrderMark) + Csv::Row(titles)).toUtf8();
}

QByteArray Row(QByteArrayView line) {
    const QString text = platform::FromCodePage(line.toByteArray());
    QStringList fields;
    for (const Column& column : TextProcs::FileLine::Columns)
        fields += text.mid(column.start, column.width).trimmed();
    return Csv::Row(fields).toUtf8();
}

} // namespace HistoryCsv
