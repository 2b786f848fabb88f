#include "core/Bytes.h"

namespace Bytes {

double Val(const QString& text) {
    const QString trimmed = text.trimmed();
    qsizetype end = 0;
    bool point = false;
    while (end < trimmed.size()) {
        const QChar c = trimmed[end];
        const bool sign = end == 0 && (c == u'-' || c == u'+');
        const bool digit = c >= u'0' && c <= u'9';
        if (!sign && !digit && !(c == u'.' && !point))
            break;
        point = point || c == u'.';
        ++end;
    }
    return trimmed.left(end).toDouble();
}

qint16 ShortVal(const QString& text) {
    return qint16(Limit(Val(text), -32768.0, 32767.0));
}

qint32 LongVal(const QString& text) {
    return qint32(Limit(Val(text), -2147483648.0, 2147483647.0));
}

} // namespace Bytes
