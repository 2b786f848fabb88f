#include "platform/Spool.h"

#include "platform/DiskFlush.h"
#include "platform/FileWriting.h"
#include "platform/Folders.h"
#include "platform/RunTimeError.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace platform {

namespace {

constexpr qsizetype NumberWidth = 12;
constexpr qint64 ReadAhead = 64 << 10;
const QString Suffix = QStringLiteral(".log");
const QString PositionName = QStringLiteral("/position");
constexpr mode_t NewFileMode = 0666;

QByteArray Part(const QString& path, qint64 from, qint64 most) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) && file.seek(from) ? file.read(most) : QByteArray();
}

} // namespace

Spool::Spool(const QString& folder)
    : Spool(folder, Limits()) {}

Spool::Spool(QString folder, Limits limits)
    : folder_(std::move(folder))
    , limits_(limits) {
    FindSegments();
    MendLast();
    ReadPosition();
    Rewind();
}

Spool::~Spool() {
    Close();
}

QString Spool::PathOf(const Segment& segment) const {
    return folder_ + u'/' + QString::number(segment.first).rightJustified(NumberWidth, u'0') +
           Suffix;
}

void Spool::Close() {
    if (writer_ >= 0)
        close(std::exchange(writer_, -1));
}

void Spool::FindSegments() {
    const QDir dir(folder_);
    for (const QFileInfo& file : dir.entryInfoList({u'*' + Suffix}, QDir::Files, QDir::Name)) {
        bool isNumber = false;
        const qint64 first = file.completeBaseName().toLongLong(&isNumber);
        if (!isNumber)
            continue;
        segments_.append({first, file.size()});
        total_ += file.size();
    }
}

/// A cut of power can leave the start of a line at the end of the last segment. How many entries
/// the others hold is in the names of their followers.
void Spool::MendLast() {
    if (segments_.isEmpty())
        return;
    Segment& last = segments_.last();
    const QByteArray content = Part(PathOf(last), 0, last.size);
    const qint64 whole = content.lastIndexOf('\n') + 1;
    if (whole < last.size && QFile::resize(PathOf(last), whole)) {
        total_ -= last.size - whole;
        last.size = whole;
    }
    end_ = last.first + content.count('\n');
}

/// A position that fits no segment is moved back to where everything behind it is sent again, or,
/// where a cut of power took the entries ahead of it, to the end.
void Spool::ReadPosition() {
    const QList<QByteArray> words = Part(folder_ + PositionName, 0, 64).trimmed().split(' ');
    const Place noted{words.value(0).toLongLong(), words.value(1).toLongLong()};
    if (segments_.isEmpty()) {
        end_ = noted.number;
        confirmed_ = {end_, 0};
    } else if (noted.number >= end_) {
        confirmed_ = {end_, segments_.last().size};
    } else if (noted.number < segments_.first().first) {
        confirmed_ = {segments_.first().first, 0};
    } else {
        confirmed_ = StartsEntry(noted) ? noted : Place{segments_[IndexOf(noted.number)].first, 0};
    }
}

bool Spool::StartsEntry(const Place& place) const {
    const Segment& segment = segments_[IndexOf(place.number)];
    return place.offset == 0 ? place.number == segment.first
                             : Part(PathOf(segment), place.offset - 1, 1) == "\n";
}

/// Of the segment that an entry stands in, or will stand in.
qsizetype Spool::IndexOf(qint64 number) const {
    qsizetype index = segments_.size() - 1;
    while (index > 0 && segments_[index].first > number)
        --index;
    return index;
}

/// Somebody may clear the folder under the running program: what is written then would be gone.
bool Spool::IsRemoved() const {
    struct stat held = {};
    return writer_ >= 0 && fstat(writer_, &held) == 0 && held.st_nlink == 0;
}

void Spool::Append(const QByteArray& line) {
    const QByteArray bytes = line + '\n';
    if (IsRemoved())
        BeginAnew();
    while (segments_.size() > 1 && total_ + bytes.size() > limits_.total)
        DropOldest();
    if (segments_.isEmpty() || segments_.last().size + bytes.size() > limits_.segment)
        MakeSegment();
    if (writer_ < 0)
        writer_ = OpenToAppend(PathOf(segments_.last()));
    AppendTo(writer_, bytes);
    DiskFlush::Owe(PathOf(segments_.last()));
    segments_.last().size += bytes.size();
    total_ += bytes.size();
    ++end_;
}

/// What is left goes as well: the numbers go on, and none stands for two entries.
void Spool::BeginAnew() {
    Close();
    lost_ += Waiting();
    for (const Segment& segment : std::as_const(segments_))
        QFile::remove(PathOf(segment));
    segments_.clear();
    total_ = 0;
    confirmed_ = {end_, 0};
    Rewind();
}

void Spool::MakeSegment() {
    const Segment next{end_, 0};
    const int handle = OpenToAppend(PathOf(next));
    Close();
    writer_ = handle;
    // An empty one of that name has already been found.
    if (segments_.isEmpty() || segments_.last().first != end_)
        segments_.append(next);
}

void Spool::DropOldest() {
    const Segment oldest = segments_.takeFirst();
    QFile::remove(PathOf(oldest));
    total_ -= oldest.size;
    const Place start{segments_.first().first, 0};
    if (confirmed_.number < start.number) {
        lost_ += start.number - confirmed_.number;
        confirmed_ = start;
    }
    if (read_.number < start.number) {
        read_ = start;
        ahead_.clear();
    }
}

qint64 Spool::TakeLost() {
    return std::exchange(lost_, 0);
}

void Spool::Rewind() {
    read_ = confirmed_;
    ahead_.clear();
}

std::optional<QByteArray> Spool::Next() {
    while (read_.number < end_) {
        qsizetype length = ahead_.indexOf('\n');
        if (length < 0) {
            if (!FillBuffer())
                continue;
            length = ahead_.indexOf('\n');
        }
        QByteArray line = ahead_.left(length);
        ahead_.remove(0, length + 1);
        ++read_.number;
        read_.offset += length + 1;
        return line;
    }
    return std::nullopt;
}

/// At least one line from the reading place on. False when the place has moved, to the next segment
/// or past what can't be read.
bool Spool::FillBuffer() {
    const qsizetype index = IndexOf(read_.number);
    const Segment& segment = segments_[index];
    if (segment.first == read_.number)
        read_.offset = 0;
    qint64 most = ReadAhead;
    do {
        ahead_ = Part(PathOf(segment), read_.offset, most);
        most *= 2;
    } while (ahead_.size() == most / 2 && !ahead_.contains('\n'));
    if (ahead_.contains('\n'))
        return true;
    const bool isLast = index + 1 == segments_.size();
    const qint64 next = isLast ? end_ : segments_[index + 1].first;
    lost_ += next - read_.number;
    read_ = {next, isLast ? segment.size : 0};
    ahead_.clear();
    return false;
}

void Spool::Confirm(const Place& place) {
    if (place.number <= confirmed_.number)
        return;
    confirmed_ = place;
    while (segments_.size() > 1 && segments_[1].first <= confirmed_.number) {
        QFile::remove(PathOf(segments_.first()));
        total_ -= segments_.takeFirst().size;
    }
    WritePosition();
}

/// In place and always of the same length, so that a kill leaves the former position or the new
/// one.
void Spool::WritePosition() {
    const QString path = folder_ + PositionName;
    const auto field = [](qint64 number) {
        return QByteArray::number(number).rightJustified(2 * NumberWidth, '0');
    };
    const QByteArray line = field(confirmed_.number) + ' ' + field(confirmed_.offset) + '\n';
    const int handle =
        open(QFile::encodeName(path).constData(), O_WRONLY | O_CREAT | O_CLOEXEC, NewFileMode);
    if (handle < 0)
        throw RunTimeError(FileError(errno, errors::PathAccess));
    const bool written = pwrite(handle, line.constData(), size_t(line.size()), 0) == line.size();
    const int cause = written ? 0 : errno;
    close(handle);
    if (cause != 0)
        throw RunTimeError(FileError(cause, errors::DeviceIo));
    DiskFlush::Owe(path);
}

} // namespace platform
