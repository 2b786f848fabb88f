#pragma once

#include <QByteArray>
#include <QString>

/// A text without the blanks at its ends; line breaks, tabs and NUL characters stay.
QString TrimBlanks(const QString& text);

/// The pieces of a site file: packed little-endian numbers, booleans of two bytes (-1 or 0),
/// Windows-1252 texts. A file is built and taken apart in memory, so that it costs one write or
/// one read.
class SiteFileWriter {
public:
    SiteFileWriter();

    void PutByte(quint8 value);
    void PutWord(qint16 value);
    void PutLong(qint32 value);
    void PutBoolean(bool value);
    /// A 32-bit length and as many characters.
    void PutFileString(const QString& text);
    /// Exactly `width` characters: cut, or padded with blanks.
    void PutFixedText(const QString& text, int width);
    void PutZeros(qsizetype count);

    /// Bytes written, which is the position in the file.
    qsizetype Position() const { return bytes_.size(); }
    const QByteArray& Bytes() const { return bytes_; }

private:
    QByteArray bytes_;
};

/// The reverse of SiteFileWriter. Every reading past the end throws RunTimeError `InputPastEnd`.
class SiteFileReader {
public:
    explicit SiteFileReader(QByteArray bytes);
    /// Reads a file in one go. Throws RunTimeError like platform::ReadFile.
    static SiteFileReader Open(const QString& path);

    quint8 GetByte();
    qint16 GetWord();
    qint32 GetLong();
    /// Any value but 0 is true.
    bool GetBoolean() { return GetWord() != 0; }
    /// A text of PutFileString without the blanks at its ends.
    QString GetFileString();
    /// `width` characters as they stand.
    QString GetFixedText(int width);
    void Skip(qsizetype count);

    qsizetype Position() const { return position_; }
    qsizetype Left() const { return bytes_.size() - position_; }

private:
    /// Where the next `count` bytes begin; moves behind them.
    const char* Take(qsizetype count);

    QByteArray bytes_;
    qsizetype position_ = 0;
};
