#include "platform/SettingsFile.h"

#include "platform/Clock.h"
#include "platform/CodePage.h"
#include "platform/DiskFlush.h"
#include "platform/RunTimeError.h"

#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QSet>
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace platform {

namespace {

constexpr qint64 FlushPeriodMs = 1000;
constexpr mode_t NewFileMode = 0644;
const QByteArray ByteOrderMark = QByteArrayLiteral("\xEF\xBB\xBF");
const QByteArray NewFileEnd = QByteArrayLiteral("\r\n");

bool IsBlank(char byte) {
    return byte == ' ' || byte == '\t' || byte == '\r';
}

QByteArray Trimmed(const QByteArray& text) {
    qsizetype first = 0;
    qsizetype last = text.size();
    while (first < last && IsBlank(text[first]))
        ++first;
    while (last > first && IsBlank(text[last - 1]))
        --last;
    return text.mid(first, last - first);
}

bool SameName(const QString& left, const QString& right) {
    return left.compare(right, Qt::CaseInsensitive) == 0;
}

// A value whose ends would not come back as they are goes between double quotes.
QByteArray Encode(const QString& value) {
    QByteArray bytes = ToCodePage(value);
    bytes.replace("\r\n", " ").replace('\r', ' ').replace('\n', ' ');
    const auto needsCover = [](char end) { return IsBlank(end) || end == '"'; };
    if (!bytes.isEmpty() && (needsCover(bytes.front()) || needsCover(bytes.back())))
        bytes = '"' + bytes + '"';
    return bytes;
}

QString Decode(const QByteArray& line) {
    QByteArray bytes = Trimmed(line.mid(line.indexOf('=') + 1));
    if (bytes.size() >= 2 && bytes.front() == '"' && bytes.back() == '"')
        bytes = bytes.mid(1, bytes.size() - 2);
    return FromCodePage(bytes);
}

// Throws for names that a line of the file can't hold.
void CheckNames(const QString& section, const QString& key) {
    const auto holds = [](const QString& name, const char* marks) {
        const QByteArray bytes = ToCodePage(name);
        return Trimmed(bytes) == bytes && std::none_of(bytes.begin(), bytes.end(), [&](char c) {
                   return QByteArrayView(marks).contains(c);
               });
    };
    const bool goodKey =
        !key.isEmpty() && holds(key, "=\r\n") && !QStringLiteral(";#[").contains(key.front());
    if (!goodKey || !holds(section, "]\r\n"))
        throw RunTimeError(errors::InvalidPropertyValue);
}

bool WriteWhole(int handle, const QByteArray& bytes) {
    qsizetype done = 0;
    while (done < bytes.size()) {
        const ssize_t written =
            write(handle, bytes.constData() + done, size_t(bytes.size() - done));
        if (written < 0 && errno != EINTR)
            return false;
        done += qMax<ssize_t>(written, 0);
    }
    return true;
}

void FlushPath(const QByteArray& path) {
    const int handle = open(path.constData(), O_RDONLY | O_CLOEXEC);
    if (handle < 0)
        return;
    fsync(handle);
    close(handle);
}

} // namespace

SettingsFile::SettingsFile(const QString& path)
    : path_(path) {
    // Replacing a link by a file would leave the file behind it without the changes.
    const QFileInfo info(path);
    const QString linked = info.isSymLink() ? info.symLinkTarget() : path;
    target_ = QFile::encodeName(linked);
    unlink((target_ + ".tmp").constData());
    Load();
}

SettingsFile::~SettingsFile() {
    FlushOwed();
}

QString SettingsFile::Read(const QString& section, const QString& key,
                           const QString& fallback) const {
    Refresh();
    const int at = FindKey(section, key);
    return at < 0 ? fallback : Decode(lines_[at].text);
}

void SettingsFile::Write(const QString& section, const QString& key, const QString& value) {
    CheckNames(section, key);
    Refresh();
    const QByteArray encoded = Encode(value);
    const int at = FindKey(section, key);
    if (at >= 0) {
        if (!unsaved_ && seen_.size >= 0 && Decode(lines_[at].text) == Decode('=' + encoded))
            return;
        QByteArray& text = lines_[at].text;
        qsizetype end = text.indexOf('=') + 1;
        while (end < text.size() && IsBlank(text[end]))
            ++end;
        const bool fits = text.size() == end + encoded.size();
        text = text.left(end) + encoded;
        if (fits && Overwrite(at, int(end)))
            return;
    } else {
        const int known = FindSection(section);
        const int header = known < 0 ? AddSection(section) : known;
        Insert(PlaceForKey(header), ToCodePage(key) + '=' + encoded);
    }
    Store();
}

void SettingsFile::DeleteKey(const QString& section, const QString& key) {
    Refresh();
    const auto removed = lines_.removeIf([&](const Line& line) {
        return !line.key.isEmpty() && SameName(line.key, key) && SameName(line.section, section);
    });
    if (removed > 0 || unsaved_)
        Store();
}

void SettingsFile::DeleteSection(const QString& section) {
    Refresh();
    if (RemoveSection(section) || unsaved_)
        Store();
}

void SettingsFile::WriteSection(const QString& section,
                                const QList<std::pair<QString, QString>>& values) {
    for (const auto& [key, value] : values)
        CheckNames(section, key);
    Refresh();
    bool changed = RemoveSection(section);
    if (!values.isEmpty()) {
        const int header = AddSection(section);
        // The last of several values of a key counts, in the place of the first.
        QHash<QString, int> places;
        for (const auto& [key, value] : values) {
            const QByteArray text = ToCodePage(key) + '=' + Encode(value);
            const QString folded = key.toCaseFolded();
            const auto known = places.constFind(folded);
            if (known != places.cend()) {
                lines_[*known].text = text;
                continue;
            }
            places.insert(folded, int(lines_.size()));
            lines_.append(ParseLine(text, lines_[header].end, &lines_[header]));
        }
        changed = true;
    }
    if (changed || unsaved_)
        Store();
}

bool SettingsFile::RemoveSection(const QString& section) {
    bool inside = false;
    const auto removed = lines_.removeIf([&](const Line& line) {
        if (line.header)
            inside = SameName(line.section, section);
        return inside && (line.header || !line.key.isEmpty() || Trimmed(line.text).isEmpty());
    });
    // What stayed stands in another section now.
    for (qsizetype i = 0; i < lines_.size(); ++i) {
        if (!lines_[i].header)
            lines_[i].section = i > 0 ? lines_[i - 1].section : QString();
    }
    return removed > 0;
}

/// Gives the place of the new header, at the end of the file.
int SettingsFile::AddSection(const QString& section) {
    if (!lines_.isEmpty() && !Trimmed(lines_.last().text).isEmpty())
        Insert(int(lines_.size()), QByteArray());
    const int header = int(lines_.size());
    Insert(header, '[' + ToCodePage(section) + ']');
    return header;
}

QStringList SettingsFile::Keys(const QString& section) const {
    QStringList keys;
    for (const auto& [key, value] : ReadSection(section))
        keys.append(key);
    return keys;
}

QList<std::pair<QString, QString>> SettingsFile::ReadSection(const QString& section) const {
    Refresh();
    QList<std::pair<QString, QString>> values;
    QSet<QString> known;
    for (const Line& line : std::as_const(lines_)) {
        if (line.key.isEmpty() || !SameName(line.section, section))
            continue;
        const QString folded = line.key.toCaseFolded();
        if (known.contains(folded))
            continue;
        known.insert(folded);
        values.append({line.key, Decode(line.text)});
    }
    return values;
}

SettingsFile::Line SettingsFile::ParseLine(const QByteArray& text, const QByteArray& end,
                                           const Line* before) {
    Line line{text, end, before != nullptr ? before->section : QString(), QString()};
    const bool marked = before == nullptr && text.startsWith(ByteOrderMark);
    const QByteArray content = Trimmed(marked ? text.mid(ByteOrderMark.size()) : text);
    if (content.isEmpty() || content.front() == ';' || content.front() == '#')
        return line;
    if (content.front() == '[') {
        const qsizetype close = content.indexOf(']');
        if (close > 0) {
            line.header = true;
            // Never null, which is the mark of the lines ahead of the first section.
            line.section = QLatin1String("") + FromCodePage(Trimmed(content.mid(1, close - 1)));
        }
        return line;
    }
    const qsizetype equals = content.indexOf('=');
    if (equals > 0 && !line.section.isNull())
        line.key = FromCodePage(Trimmed(content.left(equals)));
    return line;
}

SettingsFile::Stamp SettingsFile::StampOf(const struct stat& state) {
    const auto nanoseconds = [](const timespec& time) {
        return qint64(time.tv_sec) * 1000000000 + time.tv_nsec;
    };
    return {state.st_dev, state.st_ino, state.st_size, nanoseconds(state.st_mtim),
            nanoseconds(state.st_ctim)};
}

SettingsFile::Stamp SettingsFile::StampOnDisk() const {
    struct stat state = {};
    return stat(target_.constData(), &state) == 0 ? StampOf(state) : Stamp();
}

void SettingsFile::Refresh() const {
    // A file that couldn't be read is tried again; the changes made meanwhile are lost, as they
    // must not take the place of its lines.
    if (unreadable_ || (!unsaved_ && StampOnDisk() != seen_))
        Load();
}

quint64 SettingsFile::Revision() const {
    Refresh();
    return revision_;
}

void SettingsFile::CountChange() const {
    static quint64 last = 0;
    revision_ = ++last;
}

void SettingsFile::Load() const {
    CountChange();
    lines_.clear();
    unreadable_ = false;
    seen_ = StampOnDisk();
    if (seen_.size < 0)
        return;
    QFile file(QFile::decodeName(target_));
    if (!file.open(QIODevice::ReadOnly)) {
        unreadable_ = true;
        return;
    }
    const QByteArray bytes = file.readAll();
    if (file.error() != QFileDevice::NoError) {
        unreadable_ = true;
        return;
    }
    qsizetype start = 0;
    while (start < bytes.size()) {
        const qsizetype feed = bytes.indexOf('\n', start);
        qsizetype textEnd = feed < 0 ? bytes.size() : feed;
        const qsizetype next = feed < 0 ? bytes.size() : feed + 1;
        if (feed > start && bytes[feed - 1] == '\r')
            --textEnd;
        const Line* before = lines_.isEmpty() ? nullptr : &lines_.last();
        lines_.append(ParseLine(bytes.mid(start, textEnd - start),
                                bytes.mid(textEnd, next - textEnd), before));
        start = next;
    }
}

void SettingsFile::Store() {
    CountChange();
    const auto fail = [this](int handle, int cause) {
        unsaved_ = true;
        if (handle >= 0) {
            close(handle);
            unlink((target_ + ".tmp").constData());
        }
        throw RunTimeError(cause == ENOSPC || cause == EDQUOT ? errors::DiskFull
                                                              : errors::PathAccess);
    };
    // Its lines would be lost.
    if (unreadable_)
        throw RunTimeError(errors::PathAccess);

    QByteArray bytes;
    for (const Line& line : std::as_const(lines_))
        bytes += line.text + line.end;

    const QByteArray temporary = target_ + ".tmp";
    const int handle = open(temporary.constData(),
                            O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NOFOLLOW, NewFileMode);
    struct stat state = {};
    if (handle < 0)
        fail(handle, errno);
    if (stat(target_.constData(), &state) == 0)
        fchmod(handle, state.st_mode & 07777);
    if (!WriteWhole(handle, bytes))
        fail(handle, errno);
    // A disk may find only when it is flushed that there is no room.
    if (!FlushInTime(handle) || rename(temporary.constData(), target_.constData()) != 0)
        fail(handle, errno);
    seen_ = fstat(handle, &state) == 0 ? StampOf(state) : Stamp();
    unsaved_ = false;
    close(handle);
}

// A value of the same length as the one it replaces is written into its place by one call, which a
// kill can't divide: the running number of each event is such a value, and a new file for each
// would cost most of the time of its routing.
bool SettingsFile::Overwrite(int at, int from) {
    CountChange();
    if (unsaved_ || unreadable_ || seen_.size < 0)
        return false;
    qint64 offset = from;
    for (int i = 0; i < at; ++i)
        offset += lines_[i].text.size() + lines_[i].end.size();
    const QByteArray value = lines_[at].text.mid(from);
    const int handle = open(target_.constData(), O_WRONLY | O_CLOEXEC);
    if (handle < 0)
        return false;
    const bool written =
        pwrite(handle, value.constData(), size_t(value.size()), offset) == ssize_t(value.size());
    if (written)
        DiskFlush::Owe(QFile::decodeName(target_));
    struct stat state = {};
    seen_ = fstat(handle, &state) == 0 ? StampOf(state) : Stamp();
    close(handle);
    return written;
}

bool SettingsFile::FlushInTime(int handle) {
    const qint64 now = Clock::Current().MonotonicMs();
    // A clock that was put in another's place may stand before the last flush.
    flushOwed_ = now >= lastFlushMs_ && now - lastFlushMs_ < FlushPeriodMs;
    if (flushOwed_) {
        DiskFlush::Owe(QFile::decodeName(target_));
        return true;
    }
    lastFlushMs_ = now;
    return fsync(handle) == 0 || errno == EINVAL;
}

void SettingsFile::FlushOwed() {
    if (!flushOwed_)
        return;
    FlushPath(target_);
    FlushPath(QFile::encodeName(QFileInfo(QFile::decodeName(target_)).path()));
    flushOwed_ = false;
}

int SettingsFile::FindKey(const QString& section, const QString& key) const {
    const auto found = std::find_if(lines_.cbegin(), lines_.cend(), [&](const Line& line) {
        return !line.key.isEmpty() && SameName(line.key, key) && SameName(line.section, section);
    });
    return found == lines_.cend() ? -1 : int(found - lines_.cbegin());
}

int SettingsFile::FindSection(const QString& section) const {
    const auto found = std::find_if(lines_.cbegin(), lines_.cend(), [&](const Line& line) {
        return line.header && SameName(line.section, section);
    });
    return found == lines_.cend() ? -1 : int(found - lines_.cbegin());
}

// Behind the last key of the section. In one without keys, behind the comments that its header
// leads.
int SettingsFile::PlaceForKey(int header) const {
    int place = header + 1;
    bool headed = true;
    for (int i = header + 1; i < lines_.size() && !lines_[i].header; ++i) {
        const bool key = !lines_[i].key.isEmpty();
        headed = headed && !key && !Trimmed(lines_[i].text).isEmpty();
        if (key || headed)
            place = i + 1;
    }
    return place;
}

void SettingsFile::Insert(int at, const QByteArray& text) {
    const QByteArray end = MajorityEnd();
    if (at > 0 && lines_[at - 1].end.isEmpty())
        lines_[at - 1].end = end;
    // The mark of the byte order stands at the very start of a file without lines as well.
    const Line* before = at > 0 ? &lines_[at - 1] : nullptr;
    lines_.insert(at, ParseLine(text, end, before));
}

QByteArray SettingsFile::MajorityEnd() const {
    const auto full = std::count_if(lines_.cbegin(), lines_.cend(),
                                    [](const Line& line) { return line.end.size() == 2; });
    const auto bare = std::count_if(lines_.cbegin(), lines_.cend(),
                                    [](const Line& line) { return line.end.size() == 1; });
    return bare > full ? QByteArrayLiteral("\n") : NewFileEnd;
}

} // namespace platform
