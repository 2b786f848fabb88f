#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>
#include <stdexcept>

namespace mkbase {

/// A fault of the sources or of the building; the message is one line for the terminal and begins
/// with the file's name and, for a table, the line's number.
class BuildError : public std::runtime_error {
public:
    explicit BuildError(const QString& message)
        : std::runtime_error(message.toStdString()) {}
};

/// One line of a table: its number in the file, from 1, its id and all its fields.
struct TableRow {
    int line = 0;
    qint64 id = 0;
    QStringList fields;
};

/// A tab-separated table in UTF-8: a header line, then one line for each id in its first column.
struct Table {
    QString fileName;
    QStringList header;
    QList<TableRow> rows;
};

/// One alarm sound: its number and the bytes of its .wav file.
struct Sound {
    qint64 id = 0;
    QByteArray content;
};

/// What the base is made of.
struct Sources {
    Table texts;
    Table config;
    QList<Sound> sounds;
};

/// Columns of the table of texts ahead of the languages: id, where used, remark.
inline constexpr int FirstLanguage = 3;

/// Reads and checks texts.tsv, config.tsv and sounds/<number>.wav. Throws BuildError at the first
/// fault: an id that is no number or stands twice, a wrong number of columns, a character outside
/// Windows-1252, a text without words in a language or with another number of "$" or "|" in one,
/// a sound file that is no .wav.
Sources ReadSources(const QString& folder);

} // namespace mkbase
