#pragma once

#include <QString>

namespace platform {

/// Ends the last line of a text file that a kill or a cut of power left without its end, so that
/// the next line doesn't run into it. Does nothing to a file that isn't there.
void EndTornLine(const QString& path);

/// A text log that grows line by line, Windows-1252, lines ended by carriage return and line
/// feed.
class LineLog {
public:
    static constexpr int AppendMode = 3;

    LineLog() = default;
    ~LineLog() { Close(); }
    LineLog(const LineLog&) = delete;
    LineLog& operator=(const LineLog&) = delete;

    /// Closes what was open and opens `path`; mode 3 appends and makes a missing file with its
    /// folder, and ends a torn last line. Throws RunTimeError `PathAccess` or `DiskFull` when the
    /// file can't be opened; each line then tries again.
    void Open(const QString& path, int mode);
    /// Appends one line; a file or a folder that went away meanwhile is made anew. Throws
    /// RunTimeError `BadFileName` before the first opening, what Open throws, and `DeviceIo` or
    /// `DiskFull` when the line can't be written.
    void WriteLine(const QString& text);
    /// Hands what was written to the system, so that the end of the process loses nothing.
    void Commit() const;
    bool IsOpen() const { return handle_ >= 0; }
    QString Path() const { return path_; }

private:
    void Close();
    bool IsInPlace() const;
    void OpenAgain();

    QString path_;
    int handle_ = -1;
};

} // namespace platform
