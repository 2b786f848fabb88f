#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>
#include <deque>

/// The lines of a history file but its heading and empty ones. Only where they begin is kept, 8
/// bytes a line; a line is read when it is shown. The file stays open: it may grow or go while its
/// lines are shown.
class HistoryFile {
public:
    /// Looks through the file as it is now. False for a file that isn't there. Throws RunTimeError
    /// `PathAccess` for one that can't be opened.
    bool Load(const QString& path);
    void Close();

    int Count() const { return int(starts_.size()); }
    /// A line in the screen layout, 162 characters: blank for one that can't be read any more. One
    /// that begins with no date, in whatever form a locale writes one, stands as it is, in two
    /// halves. Throws RunTimeError `Subscript`.
    QString ScreenLine(int row) const;

    /// Do these bytes begin as the heading of a file does?
    static bool IsHeading(const char* bytes, qsizetype count);
    /// What stands ahead of the first line end.
    static QByteArray FirstLine(QByteArray bytes);

private:
    void FindLines();

    mutable QFile file_;
    /// Offsets in the file. A deque grows without a copy of what it holds.
    std::deque<qint64> starts_;
};
