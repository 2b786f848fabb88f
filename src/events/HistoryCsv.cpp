#include "events/HistoryCsv.h"

#include "events/TextProcs.h"
#include "platform/CodePage.h"

namespace HistoryCsv {

namespace {

namespace FileLine = TextProcs::FileLine;

constexpr Column Columns[] = {FileLine::Date,       FileLine::Time,   FileLine::Number,
                              FileLine::PanelClock, FileLine::Origin, FileLine::Parameter,
                              FileLine::Display,    FileLine::Common, FileLine::Specific};

/// What would divide a field stands in quotes.
QByteArray Quoted(QByteArray field) {
    if (field.contains(';') || field.contains('"') || field.contains('\r'))
        field = '"' + field.replace("\"", "\"\"") + '"';
    return field;
}

QByteArray Joined(const QStringList& fields) {
    QByteArrayList quoted;
    for (const QString& field : fields)
        quoted += Quoted(field.trimmed().toUtf8());
    return quoted.join(';') + "\r\n";
}

} // namespace

QByteArray Heading(const QStringList& titles) {
    return "\xEF\xBB\xBF" + Joined(titles);
}

QByteArray Row(QByteArrayView line) {
    const QString text = platform::FromCodePage(line.toByteArray());
    QStringList fields;
    for (const Column& column : Columns)
        fields += text.mid(column.start, column.width);
    return Joined(fields);
}

} // namespace HistoryCsv
