#pragma once

#include <QString>
#include <ostream>

inline QString Text(const char* text) {
    return QString::fromUtf8(text);
}

/// What a test prints of a text that isn't as expected.
inline void PrintTo(const QString& text, std::ostream* out) {
    *out << '"' << text.toUtf8().constData() << '"';
}
