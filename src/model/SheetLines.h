#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <optional>

/// The text of a file that is in UTF-8 or UTF-16, as editors save one today; nothing for one in
/// Windows-1252. The bytes may end in the middle of a character.
std::optional<QString> UnicodeText(const QByteArray& bytes);

/// The lines of a sheet that begin with a number other than 0, split at the tabs. A line that was
/// written by the program is taken as it stands; of one that a spreadsheet has written the quotes
/// around a field go.
class SheetLines {
public:
    /// The content of a file in Windows-1252, UTF-8 or UTF-16. A line as written has so many
    /// `columns`, each with a tab behind it.
    SheetLines(const QByteArray& bytes, int columns);

    /// The file was in UTF-8 or UTF-16.
    bool IsUnicode() const { return unicode_; }
    /// Goes to the next line; false when there is none.
    bool Next();
    /// Number of the line in the file, the first being 1, and its fields.
    int Number() const { return number_; }
    const QStringList& Fields() const { return fields_; }
    /// The line is one as written. With more fields than columns a tab lies inside of one.
    bool IsAsWritten() const { return written_; }

private:
    template <class Predicate> bool Join(QString& line, Predicate whole);

    /// As the file has them, but for the line feeds.
    QStringList lines_;
    QStringList fields_;
    qsizetype next_ = 0;
    int columns_;
    int number_ = 0;
    bool unicode_ = false;
    bool written_ = false;
};
