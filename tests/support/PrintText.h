#pragma once

#include <QString>
#include <ostream>

/// What a test prints of a text that isn't as expected.
inline void PrintTo(const QString& text, std::ostream* out) {
    *out << '"' << text.toUtf8().constData() << '"';
}
