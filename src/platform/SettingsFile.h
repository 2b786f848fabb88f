#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>
#include <utility>

struct stat;

namespace platform {

/// A text file of sections and keys that is changed line by line: comments, order, unknown
/// lines and line ends stay as they are. Section and key names compare without regard to case.
/// A change replaces the whole file by a temporary one and a rename, but a value as long as the one
/// before is written into its place by one call: a kill at any moment leaves the old file or the
/// new one. A file that somebody edits by hand meanwhile is read again. The disk is flushed at most
/// once a second.
class SettingsFile {
public:
    /// Reads the file as it is now; a missing file reads as empty. Removes a temporary file that
    /// an interrupted write left behind.
    explicit SettingsFile(const QString& path);
    ~SettingsFile();
    SettingsFile(const SettingsFile&) = delete;
    SettingsFile& operator=(const SettingsFile&) = delete;

    QString Read(const QString& section, const QString& key, const QString& fallback) const;
    /// Creates or replaces. Line breaks in a value become blanks; blanks at its ends are kept.
    /// Throws RunTimeError `PathAccess` or `DiskFull` when the file can't be written; the value is
    /// then kept in memory and goes out with the next change, but not over a file whose lines can't
    /// be read. Throws `InvalidPropertyValue` for
    /// names that no line can hold: a key that is empty, has a "=" in it or looks like a comment or
    /// a section, a section with a "]" in it.
    void Write(const QString& section, const QString& key, const QString& value);
    /// Removes every line of the key. Throws like Write, as does DeleteSection.
    void DeleteKey(const QString& section, const QString& key);
    /// Removes the section's header, keys and blank lines; comments and unknown lines stay.
    void DeleteSection(const QString& section);
    /// Puts these keys in place of all that the section holds, in one change of the file. The
    /// result is that of DeleteSection and a Write for each key, and it throws as they do.
    void WriteSection(const QString& section, const QList<std::pair<QString, QString>>& values);
    /// Keys and values in the file's order, a repeated key with its first value.
    QList<std::pair<QString, QString>> ReadSection(const QString& section) const;
    /// Names in the file's order, each once.
    QStringList Keys(const QString& section) const;

    QString Path() const { return path_; }
    /// Another number behind each change of the file, by whoever made it, and for each object.
    quint64 Revision() const;

private:
    struct Line {
        QByteArray text; // without its line end
        QByteArray end;
        QString section; // of a header line or of the section that the line stands in
        QString key;     // empty for headers, comments and unknown lines
        bool header = false;
    };
    /// What tells one state of the file on disk from another.
    struct Stamp {
        quint64 device = 0;
        quint64 inode = 0;
        qint64 size = -1; // -1: no file
        qint64 modifiedNs = 0;
        qint64 changedNs = 0;
        bool operator==(const Stamp&) const = default;
    };

    static Line ParseLine(const QByteArray& text, const QByteArray& end, const Line* before);
    static Stamp StampOf(const struct stat& state);
    Stamp StampOnDisk() const;
    /// Reads the file again when somebody else has changed it since this object last saw it.
    void Refresh() const;
    void Load() const;
    void CountChange() const;
    void Store();
    bool Overwrite(int at, int from);
    bool FlushInTime(int handle);
    void FlushOwed();
    int FindKey(const QString& section, const QString& key) const;
    int FindSection(const QString& section) const;
    int PlaceForKey(int header) const;
    void Insert(int at, const QByteArray& text);
    int AddSection(const QString& section);
    bool RemoveSection(const QString& section);
    QByteArray MajorityEnd() const;

    QString path_;
    QByteArray target_; // the file itself, where path_ is a link to it
    mutable QList<Line> lines_;
    mutable Stamp seen_;
    mutable bool unreadable_ = false; // there is a file, but its lines aren't known
    bool unsaved_ = false;            // the last change didn't reach the file
    mutable quint64 revision_ = 0;
    qint64 lastFlushMs_ = -1000000;
    bool flushOwed_ = false;
};

} // namespace platform
