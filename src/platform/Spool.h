#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <optional>

namespace platform {

/// A queue of lines on disk that outlives the program: who reads confirms what has arrived, and
/// what wasn't confirmed is read again after a rewind or a new start. Lines stand in segments that
/// only grow, files named by the number of their first entry; the file "position" holds how far the
/// confirmed ones go. When all segments together would pass the limit the oldest one goes, read or
/// not. The disk itself is reached by platform/DiskFlush.
class Spool {
public:
    struct Limits {
        qint64 total = 64 << 20;  ///< bytes of all segments
        qint64 segment = 1 << 20; ///< bytes after which a segment is closed
    };
    /// A place between two entries.
    struct Place {
        qint64 number = 0; ///< of the entry behind it, counted from the first ever
        qint64 offset = 0; ///< its first byte in its segment
    };

    explicit Spool(const QString& folder);
    Spool(QString folder, Limits limits);
    ~Spool();
    Spool(const Spool&) = delete;
    Spool& operator=(const Spool&) = delete;

    /// Appends one line, which holds no line feed, by one write. Throws RunTimeError `DiskFull`,
    /// `PathAccess` or `DeviceIo`.
    void Append(const QByteArray& line);
    /// The line at the reading place, which moves behind it; nothing at the end.
    std::optional<QByteArray> Next();
    /// Behind the last line that was read.
    Place ReadTo() const { return read_; }
    /// Reads again from the first entry that isn't confirmed.
    void Rewind();
    /// All ahead of a place has arrived. Throws RunTimeError when that can't be noted; it holds
    /// until the program's end all the same.
    void Confirm(const Place& place);
    /// Number that the next entry will have.
    qint64 End() const { return end_; }
    /// Entries that aren't confirmed.
    qint64 Waiting() const { return end_ - confirmed_.number; }
    /// Entries that went without being confirmed, to make room or because their file can't be read,
    /// since this was asked last.
    qint64 TakeLost();

private:
    struct Segment {
        qint64 first;
        qint64 size;
    };

    QString PathOf(const Segment& segment) const;
    void Close();
    void FindSegments();
    void MendLast();
    void ReadPosition();
    bool StartsEntry(const Place& place) const;
    qsizetype IndexOf(qint64 number) const;
    bool IsRemoved() const;
    void BeginAnew();
    void MakeSegment();
    void DropOldest();
    bool FillBuffer();
    void WritePosition();

    QString folder_;
    Limits limits_;
    QList<Segment> segments_;
    qint64 total_ = 0;
    qint64 end_ = 0; // number of the next entry
    qint64 lost_ = 0;
    Place confirmed_;
    Place read_;
    QByteArray ahead_; // bytes from the reading place on
    int writer_ = -1;  // of the last segment
};

} // namespace platform
