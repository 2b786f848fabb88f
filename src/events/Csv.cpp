#include "events/Csv.h"

namespace Csv {

namespace {

QString Field(QString text) {
    constexpr QStringView Formulas = u"=+-@";
    if (text.size() > 1 && Formulas.contains(text[0]))
        text.prepend(u'\'');
    if (!text.contains(u';') && !text.contains(u'"') && !text.contains(u'\n') &&
        !text.contains(u'\r'))
        return text;
    return u'"' + text.replace(u'"', QStringLiteral("\"\"")) + u'"';
}

} // namespace

QString Row(const QStringList& cells) {
    QStringList fields;
    for (const QString& cell : cells)
        fields += Field(cell);
    return fields.join(u';') + QStringLiteral("\r\n");
}

} // namespace Csv
