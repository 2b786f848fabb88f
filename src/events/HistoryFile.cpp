#include "events/HistoryFile.h"

#include "events/TextProcs.h"
#include "platform/CodePage.h"
#include "platform/RunTimeError.h"

#include <QDate>
#include <cstring>

using platform::RunTimeError;
namespace FileLine = TextProcs::FileLine;
namespace ScreenLine = TextProcs::ScreenLine;

namespace {

constexpr qsizetype ChunkSize = 0x40000;
/// What a row of two halves holds, and a line end.
constexpr qsizetype LongestShown = 2 * ScreenLine::Break.start + 2;

/// What a heading begins with, the first two of its fields.
constexpr char Heading[] = "Date       Time ";
constexpr qsizetype HeadingLength = sizeof Heading - 1;

bool IsDigit(QChar c) {
    return c >= u'0' && c <= u'9';
}

/// Two fields of two digits and a year of four, in one of the orders of this world.
bool IsDate(const QString& text) {
    if (text.size() != FileLine::Date.width)
        return false;
    const bool yearFirst = IsDigit(text[2]);
    const qsizetype firstMark = yearFirst ? 4 : 2;
    const qsizetype secondMark = yearFirst ? 7 : 5;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const bool isMark = i == firstMark || i == secondMark;
        if (isMark ? text[i].isLetterOrNumber() || text[i] != text[firstMark] : !IsDigit(text[i]))
            return false;
    }
    const int year = text.mid(yearFirst ? 0 : 6, 4).toInt();
    const int one = text.mid(yearFirst ? 5 : 0, 2).toInt();
    const int other = text.mid(yearFirst ? 8 : 3, 2).toInt();
    return QDate::isValid(year, one, other) || QDate::isValid(year, other, one);
}

/// The two halves of the screen layout, filled as they come.
QString AsItStands(const QString& line) {
    const int columns = ScreenLine::Break.start;
    return line.left(columns).leftJustified(ScreenLine::Break.start + ScreenLine::Break.width) +
           line.mid(columns, columns).leftJustified(columns);
}

} // namespace

bool HistoryFile::IsHeading(const char* bytes, qsizetype count) {
    return count >= HeadingLength && std::memcmp(bytes, Heading, HeadingLength) == 0;
}

QByteArray HistoryFile::FirstLine(QByteArray bytes) {
    const qsizetype feed = bytes.indexOf('\n');
    if (feed >= 0)
        bytes.truncate(feed);
    if (bytes.endsWith('\r'))
        bytes.chop(1);
    return bytes;
}

bool HistoryFile::Load(const QString& path) {
    Close();
    file_.setFileName(path);
    // The bytes come in large pieces or as single lines that may have changed: no buffer helps.
    if (!file_.open(QIODevice::ReadOnly | QIODevice::Unbuffered)) {
        if (!file_.exists())
            return false;
        throw RunTimeError(platform::errors::PathAccess);
    }
    FindLines();
    return true;
}

void HistoryFile::Close() {
    file_.close();
    starts_.clear();
}

/// Goes from line feed to line feed through pieces of the file. A line that begins too near to the
/// end of a piece to be judged begins the next one.
void HistoryFile::FindLines() {
    QByteArray chunk(ChunkSize, Qt::Uninitialized);
    qint64 offset = 0;
    bool atStart = true;
    while (file_.seek(offset)) {
        const qint64 count = file_.read(chunk.data(), ChunkSize);
        if (count <= 0)
            return;
        const char* const begin = chunk.constData();
        const char* const end = begin + count;
        const char* at = begin;
        while (at != end) {
            if (atStart && at != begin && end - at < HeadingLength)
                break;
            const bool isEmpty = *at == '\n' || (*at == '\r' && (end - at < 2 || at[1] == '\n'));
            if (atStart && !isEmpty && !IsHeading(at, end - at))
                starts_.push_back(offset + (at - begin));
            const void* feed = std::memchr(at, '\n', size_t(end - at));
            atStart = feed != nullptr;
            at = atStart ? static_cast<const char*>(feed) + 1 : end;
        }
        offset += at - begin;
    }
}

QString HistoryFile::ScreenLine(int row) const {
    if (row < 0 || row >= Count())
        throw RunTimeError(platform::errors::Subscript);
    QByteArray line;
    if (file_.seek(starts_[size_t(row)]))
        line = FirstLine(file_.read(LongestShown));
    const QString text = platform::FromCodePage(line);
    return IsDate(text.left(FileLine::Date.width))
               ? TextProcs::HistoFileLineToHistoScreenLine(text.left(FileLine::Width))
               : AsItStands(text);
}
