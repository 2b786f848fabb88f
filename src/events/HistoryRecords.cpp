#include "events/HistoryRecords.h"

#include "core/DateTimes.h"
#include "core/Global.h"
#include "events/HistoProcs.h"
#include "events/HistoryFile.h"
#include "events/TextProcs.h"
#include "platform/Clock.h"
#include "platform/Folders.h"

#include <QDir>
#include <QFileInfo>
#include <algorithm>
#include <cstring>
#include <limits>

namespace FileLine = TextProcs::FileLine;

namespace {

constexpr qsizetype PieceSize = 0x40000;
/// What a longer line holds behind its columns isn't looked at.
constexpr qsizetype LongestLine = 0x1000;
/// Records that get their room at once. Many years may be more: that grows as it comes.
constexpr qint64 MostForeseen = 20'000'000;
constexpr qint64 SecondsADay = 86400;
const QDate Epoch(1970, 1, 1);

qint64 Midnight(const QDate& date) {
    return Epoch.daysTo(date) * SecondsADay;
}

/// The number that a run of digits makes, or -1.
int Digits(const char* text, int count) {
    int value = 0;
    for (int i = 0; i < count; ++i) {
        if (text[i] < '0' || text[i] > '9')
            return -1;
        value = value * 10 + text[i] - '0';
    }
    return value;
}

/// Seconds of the day of "HH:mm:ss", or -1.
int SecondsOf(const char* text) {
    const int hour = Digits(text, 2);
    const int minute = Digits(text + 3, 2);
    const int second = Digits(text + 6, 2);
    if (text[2] != ':' || text[5] != ':' || hour < 0 || hour > 23 || minute < 0 || minute > 59 ||
        second < 0 || second > 59)
        return -1;
    return (hour * 60 + minute) * 60 + second;
}

} // namespace

QList<HistoryRecords::File> HistoryRecords::Files() {
    QList<File> files;
    const QDir folder(platform::ApplicationFolder());
    for (const QString& name : HistoProcs::HistoFileNames()) {
        const QString digits =
            name.mid(HistoProcs::FileHead.size()).chopped(HistoProcs::FileEnd.size());
        const bool isMonth = digits.size() == 6;
        const QDate first = QDate::fromString(isMonth ? digits + QStringLiteral("01") : digits,
                                              QStringLiteral("yyyyMMdd"));
        if (first.isValid())
            files.append(
                {folder.filePath(name), first, isMonth ? first.addMonths(1).addDays(-1) : first});
    }
    std::stable_sort(files.begin(), files.end(),
                     [](const File& a, const File& b) { return a.first < b.first; });
    return files;
}

/// A line goes into the file of the moment at which it is written, which may be the day after.
void HistoryRecords::Begin(const QDate& from, const QDate& to) {
    Cancel();
    sources_.clear();
    records_.clear();
    at_ = 0;
    bytesDone_ = bytesInAll_ = unread_ = unreadFiles_ = 0;
    from_ = Midnight(from);
    to_ = Midnight(to.addDays(1));
    words_.ReadBase();
    const QString pattern = DateTimes::ShortDatePattern();
    dayFirst_ = pattern.indexOf(u'd') < pattern.indexOf(u'M');
    std::vector<std::pair<qint64, File>> found;
    for (const File& file : Files()) {
        if (file.last < from || file.first > to.addDays(1))
            continue;
        found.emplace_back(FirstTime(file), file);
        bytesInAll_ += QFileInfo(file.path).size();
    }
    records_.reserve(size_t(std::min(bytesInAll_ / (FileLine::Width + 2), MostForeseen)));
    std::stable_sort(found.begin(), found.end(),
                     [](const auto& a, const auto& b) { return a.first < b.first; });
    for (const auto& [time, file] : found)
        sources_.append(file);
}

/// Of a month that went over to daily files, or back, the files overlap by their names only. A day
/// isn't looked into: there may be hundreds.
qint64 HistoryRecords::FirstTime(const File& file) {
    qint64 time = Midnight(file.first);
    QFile input(file.path);
    if (file.first == file.last || !input.open(QIODevice::ReadOnly))
        return time;
    TakeUp(file);
    for (int line = 0; line < 2; ++line) {
        const QByteArray bytes = input.readLine(LongestLine);
        if (ReadTime(bytes.constData(), bytes.size(), time))
            break;
    }
    return time;
}

/// A date that was read in one file may be another one in the next.
void HistoryRecords::TakeUp(const File& file) {
    month_ = file.first.month();
    lastDate_.clear();
}

void HistoryRecords::Cancel() {
    input_.close();
    at_ = sources_.size();
    piece_.clear();
    offset_ = 0;
}

double HistoryRecords::Progress() const {
    if (Done() || bytesInAll_ == 0)
        return Done() ? 1 : 0;
    return std::min(1.0, double(bytesDone_ + offset_) / double(bytesInAll_));
}

bool HistoryRecords::Step(int budget) {
    const platform::Clock& clock = platform::Clock::Current();
    const qint64 end = clock.MonotonicMs() + budget;
    do {
        if (!Done())
            ReadPiece();
    } while (!Done() && clock.MonotonicMs() < end);
    return Done();
}

void HistoryRecords::NextFile() {
    input_.close();
    bytesDone_ += offset_;
    offset_ = 0;
    if (++at_ == sources_.size())
        piece_.clear();
}

void HistoryRecords::ReadPiece() {
    if (!input_.isOpen()) {
        input_.setFileName(sources_[at_].path);
        if (!input_.open(QIODevice::ReadOnly | QIODevice::Unbuffered)) {
            ++unreadFiles_;
            NextFile();
            return;
        }
        piece_.resize(PieceSize);
        TakeUp(sources_[at_]);
    }
    const qint64 count = input_.seek(offset_) ? input_.read(piece_.data(), PieceSize) : -1;
    if (count < 0)
        ++unreadFiles_;
    const qsizetype taken = count > 0 ? Take(piece_.constData(), count, count < PieceSize) : 0;
    offset_ += taken;
    if (count < PieceSize || taken == 0 || offset_ > std::numeric_limits<quint32>::max())
        NextFile();
}

/// A line that the piece cuts begins the next one; only one as long as no line is isn't waited for.
qsizetype HistoryRecords::Take(const char* bytes, qsizetype count, bool isLast) {
    const char* const end = bytes + count;
    const char* line = bytes;
    while (line != end) {
        const auto* feed = static_cast<const char*>(std::memchr(line, '\n', size_t(end - line)));
        if (feed == nullptr && !isLast && end - line < LongestLine)
            break;
        const char* const stop = feed != nullptr ? feed : end;
        TakeLine(line, stop - line, offset_ + (line - bytes));
        line = feed != nullptr ? feed + 1 : end;
    }
    return line - bytes;
}

void HistoryRecords::TakeLine(const char* line, qsizetype length, qint64 offset) {
    if (length > 0 && line[length - 1] == '\r')
        --length;
    if (length == 0 || HistoryFile::IsHeading(line, length))
        return;
    qint64 time = 0;
    if (!ReadTime(line, length, time)) {
        ++unread_;
        return;
    }
    if (time < from_ || time >= to_)
        return;
    const HistoryWords::Meaning meaning = words_.Of(line, length);
    const int number = length >= FileLine::Number.start + FileLine::Number.width
                           ? Digits(line + FileLine::Number.start, FileLine::Number.width)
                           : 0;
    records_.push_back({time, quint32(offset), std::max(0, number), quint16(at_), meaning.panel,
                        meaning.channel, meaning.kind, meaning.isChange, meaning.isSynchro});
}

bool HistoryRecords::ReadTime(const char* line, qsizetype length, qint64& time) {
    if (length < FileLine::Time.start + FileLine::Time.width)
        return false;
    const int seconds = SecondsOf(line + FileLine::Time.start);
    if (seconds < 0)
        return false;
    if (lastDate_.isEmpty() ||
        std::memcmp(lastDate_.constData(), line, size_t(lastDate_.size())) != 0) {
        const QDate date = DateOf(line);
        if (!date.isValid())
            return false;
        lastDate_ = QByteArray(line, FileLine::Date.width);
        lastMidnight_ = Midnight(date);
    }
    time = lastMidnight_ + seconds;
    return true;
}

/// The year may stand first. Else day and month stand as the locale has them, unless only the other
/// way they make a date, or one of the file's own month: the file may be older than the locale.
QDate HistoryRecords::DateOf(const char* text) const {
    if (const int year = Digits(text, 4); year >= 0)
        return {year, Digits(text + 5, 2), Digits(text + 8, 2)};
    const int year = Digits(text + 6, 4);
    const int one = Digits(text, 2);
    const int other = Digits(text + 3, 2);
    const QDate usual = dayFirst_ ? QDate(year, other, one) : QDate(year, one, other);
    const QDate turned = dayFirst_ ? QDate(year, one, other) : QDate(year, other, one);
    if (!usual.isValid() || !turned.isValid())
        return usual.isValid() ? usual : turned;
    return turned.month() == month_ && usual.month() != month_ ? turned : usual;
}

QByteArray HistoryRecords::Line(const HistoryRecord& record) const {
    if (record.file >= sources_.size())
        return {};
    if (const QString& path = sources_[record.file].path;
        !shown_.isOpen() || shown_.fileName() != path) {
        shown_.close();
        shown_.setFileName(path);
        if (!shown_.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
            return {};
    }
    QByteArray line;
    if (shown_.seek(record.offset))
        line = HistoryFile::FirstLine(shown_.read(FileLine::Width + 2));
    return line.left(FileLine::Width);
}
