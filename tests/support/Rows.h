#pragma once

#include <QPair>
#include <QString>
#include <QStringList>

/// Lines of fixed columns as a test writes them down.
namespace Rows {

inline QString Stars(int count) {
    return QString(count, u'*');
}

/// Fields joined by one blank, each as wide as said.
inline QString Joined(const QList<QPair<QString, int>>& fields) {
    QStringList padded;
    for (const auto& [text, width] : fields)
        padded += text.leftJustified(width, u' ');
    return padded.join(u' ');
}

/// A trace line at noon of 15 March 2024.
inline QString Trace(const QString& number, const QString& panelClock, const QString& key,
                     const QString& origin, const QString& parameter, const QString& word,
                     const QString& common, const QString& specific) {
    return Joined({{QStringLiteral("2024-03-15"), 10},
                   {QStringLiteral("12:00:00"), 8},
                   {number, 6},
                   {panelClock, 7},
                   {key, 8},
                   {origin, 7},
                   {parameter, 6},
                   {word, 6},
                   {common, 26},
                   {specific, 39}});
}

/// Texts at their columns on a blank line.
inline QString At(int width, const QList<QPair<int, QString>>& places) {
    QString line(width, u' ');
    for (const auto& [column, text] : places)
        line.replace(column, text.size(), text);
    return line;
}

} // namespace Rows
