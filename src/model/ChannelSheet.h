#pragma once

#include <QByteArray>
#include <QSet>
#include <QString>
#include <QStringList>

class ConfigClass;

/// The settings of all channels as a text of one line a channel with a tab behind each column,
/// below a line of headings: it opens in a spreadsheet. Windows-1252, lines end in CR LF.
class ChannelSheetExport {
public:
    /// Forms the sheet: the channels that each panel's model has, and 12 of a panel without one.
    explicit ChannelSheetExport(const ConfigClass& site);

    /// Puts the sheet in place of a file. Throws RunTimeError like platform::ReplaceFile.
    void Write(const QString& path) const;

    const QByteArray& Bytes() const { return bytes_; }
    /// Lines below the headings.
    int Lines() const { return lines_; }
    /// The first channel that an import wouldn't give back, since a tab parts one of its texts or a
    /// sign isn't in Windows-1252; 0 when all come back.
    int LostPanel() const { return lostPanel_; }
    int LostChannel() const { return lostChannel_; }

private:
    QByteArray bytes_;
    int lines_ = 0;
    int lostPanel_ = 0;
    int lostChannel_ = 0;
};

/// Takes such a sheet into a site, as it was written or as a spreadsheet or an editor has saved it
/// since: with quotes around texts, without the tabs at a line's end, with other line ends, in
/// UTF-8 or UTF-16. Lines that don't begin with a number other than 0 are passed over. The first
/// bad line ends it; the lines before it stay taken.
class ChannelSheetImport {
public:
    explicit ChannelSheetImport(ConfigClass& site)
        : site_(site) {}

    /// Takes a file. Throws RunTimeError like platform::ReadFile, and for the first bad line
    /// `Subscript` (a column is missing, or there is no such panel or channel), `TypeMismatch` (no
    /// whole number) or `InvalidPropertyValue` (a number outside the property's range, or a text
    /// that Windows-1252 doesn't hold).
    void Read(const QString& path);
    /// The same for a file's content.
    void Take(const QByteArray& bytes);

    /// Lines that were taken, and the channels among them that have another setting since.
    int Lines() const { return lines_; }
    int Changed() const { return int(changed_.size()); }
    /// The file came in UTF-8 or UTF-16 and not in Windows-1252.
    bool IsUnicode() const { return unicode_; }
    /// Number of the line that was bad, the first line being 1, and the heading of its column; 0
    /// and empty when none was.
    int BadLine() const { return badLine_; }
    QString BadColumn() const { return badColumn_; }

private:
    void TakeLine(const QStringList& fields);
    int Address(const QStringList& fields, int column, int count);
    [[noreturn]] void Refuse(const QString& column, int error);

    ConfigClass& site_;
    QSet<int> changed_;
    int lines_ = 0;
    int line_ = 0;
    int badLine_ = 0;
    QString badColumn_;
    bool unicode_ = false;
};
