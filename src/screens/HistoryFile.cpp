#include "screens/HistoryFile.h"

#include "core/DateTimes.h"
#include "events/TextProcs.h"
#include "platform/CodePage.h"
#include "platform/RunTimeError.h"

#include <QByteArray>
#include <QDate>
#include <cstring>

using platform::RunTimeError;
namespace FileLine = TextProcs::FileLine;

namespace {

constexpr qsizetype ChunkSize = 0x40000;

/// Tells whether bytes begin with a date as DateTimes::ShortDate writes it. A pattern is read once,
/// where DateTimes::Parse would read it for every line.
class DateTest {
public:
    static constexpr qsizetype Length = FileLine::Date.width;

    DateTest()
        : pattern_(DateTimes::ShortDatePattern().toLatin1())
        , day_(pattern_.indexOf('d'))
        , month_(pattern_.indexOf('M'))
        , year_(pattern_.indexOf('y')) {}

    bool operator()(const char* bytes, qsizetype count) const {
        if (count < Length)
            return false;
        for (qsizetype i = 0; i < Length; ++i) {
            const char form = pattern_[i];
            const bool isField = form == 'd' || form == 'M' || form == 'y';
            if (isField ? bytes[i] < '0' || bytes[i] > '9' : bytes[i] != form)
                return false;
        }
        return QDate::isValid(Number(bytes + year_, 4), Number(bytes + month_, 2),
                              Number(bytes + day_, 2));
    }

private:
    static int Number(const char* digits, int count) {
        int value = 0;
        for (int i = 0; i < count; ++i)
            value = value * 10 + (digits[i] - '0');
        return value;
    }

    QByteArray pattern_;
    qsizetype day_;
    qsizetype month_;
    qsizetype year_;
};

} // namespace

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
    const DateTest isDate;
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
            if (atStart && at != begin && end - at < DateTest::Length)
                break;
            if (atStart && isDate(at, end - at))
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
        line = file_.read(FileLine::Width + 1);
    const qsizetype feed = line.indexOf('\n');
    if (feed >= 0)
        line.truncate(feed);
    if (line.endsWith('\r'))
        line.chop(1);
    return TextProcs::HistoFileLineToHistoScreenLine(platform::FromCodePage(line));
}
