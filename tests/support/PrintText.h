#pragma once

#include <QString>
#include <QStringList>
#include <initializer_list>
#include <ostream>

inline QString Text(const char* text) {
    return QString::fromUtf8(text);
}

inline QStringList TextList(std::initializer_list<const char*> texts) {
    QStringList list;
    for (const char* text : texts)
        list += Text(text);
    return list;
}

/// What a test prints of a text that isn't as expected.
inline void PrintTo(const QString& text, std::ostream* out) {
    *out << '"' << text.toUtf8().constData() << '"';
}
