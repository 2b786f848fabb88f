#pragma once

#include "events/HistoryWords.h"

#include <QByteArray>
#include <QDate>
#include <QFile>
#include <QList>
#include <QString>
#include <vector>

/// What a line of a history file tells, in 24 bytes.
struct HistoryRecord {
    qint64 time;    ///< seconds since 1970-01-01 00:00 of the local time that the line shows
    quint32 offset; ///< where the line begins in its file
    qint32 number;  ///< the six digits of the line, 0 for none
    quint16 file;   ///< place in HistoryRecords::Sources
    quint8 panel;   ///< 0 for none
    quint8 channel; ///< 1 to 24, 0 for none
    EventKind kind;
    /// The parameter's word is that of a change of state, as a contact makes it. Of a channel's
    /// lines the others are the steps of its alarm up to the acknowledgement.
    bool isChange;
    /// Found by a general reading of the bus: when it began isn't known.
    bool isSynchro;
};

/// Reads history files line by line into records, in slices, so that a caller with a watch to keep
/// can take turns with it. What a file holds while it is read is what is read: nothing is locked.
class HistoryRecords {
public:
    /// A monthly or daily file and the days that its name stands for.
    struct File {
        QString path;
        QDate first;
        QDate last;
    };
    /// All history files of the application's folder by the days they stand for; where a month and
    /// a day of it begin together, the month first.
    static QList<File> Files();

    /// Takes up what the files hold from the first day to the last one, in place of what was read
    /// before.
    void Begin(const QDate& from, const QDate& to);
    /// Reads for about so many milliseconds; with 0 one piece of a file, 1900 lines or so. True
    /// when all is read.
    bool Step(int budget);
    bool Done() const { return at_ >= sources_.size(); }
    /// From 0 to 1.
    double Progress() const;
    /// Leaves the rest unread; what was read stays.
    void Cancel();

    /// In the order of the files and of their lines. Times go back where a clock was set back.
    const std::vector<HistoryRecord>& Records() const { return records_; }
    /// The files that `file` of a record counts: days by their names, a month by its first line.
    const QList<File>& Sources() const { return sources_; }
    /// Lines without a date and a time; headings and empty lines aren't among them.
    qint64 Unread() const { return unread_; }
    /// Files that couldn't be opened or read to their end.
    int UnreadFiles() const { return unreadFiles_; }
    /// A line as it stands in its file, without its end, at most 138 bytes of Windows-1252; empty
    /// when the file is gone.
    QByteArray Line(const HistoryRecord& record) const;

private:
    void ReadPiece();
    void NextFile();
    /// Takes the lines of a piece; gives how many bytes of it are done with.
    qsizetype Take(const char* bytes, qsizetype count, bool isLast);
    void TakeLine(const char* line, qsizetype length, qint64 offset);
    bool ReadTime(const char* line, qsizetype length, qint64& time);
    QDate DateOf(const char* text) const;
    void TakeUp(const File& file);
    qint64 FirstTime(const File& file);

    HistoryWords words_;
    QList<File> sources_;
    std::vector<HistoryRecord> records_;
    qint64 from_ = 0;
    qint64 to_ = 0;
    bool dayFirst_ = false;
    qsizetype at_ = 0;
    QFile input_;
    /// That of the file that is read.
    int month_ = 0;
    QByteArray piece_;
    qint64 offset_ = 0;
    qint64 bytesDone_ = 0;
    qint64 bytesInAll_ = 0;
    qint64 unread_ = 0;
    int unreadFiles_ = 0;
    /// The date that was read last, as it was written, and its midnight: the next line's is mostly
    /// the same.
    QByteArray lastDate_;
    qint64 lastMidnight_ = 0;
    mutable QFile shown_;
};
