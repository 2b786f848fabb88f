#include "events/HistoryLines.h"

#include "events/TextProcs.h"

namespace {

constexpr qint64 PieceSize = 0x8000;
/// A line with its end.
constexpr qint64 WholeLine = TextProcs::FileLine::Width + 2;

} // namespace

bool HistoryLines::Holds(const HistoryRecord& record) const {
    return record.offset >= begin_ && record.offset + WholeLine <= begin_ + piece_.size() &&
           file_.fileName() == records_.Sources().value(record.file).path;
}

void HistoryLines::ReadFrom(const HistoryRecord& record) {
    const QString path = records_.Sources().value(record.file).path;
    if (file_.fileName() != path) {
        file_.close();
        file_.setFileName(path);
        // Its end may have changed: no buffer helps.
        [[maybe_unused]] const bool opened =
            file_.open(QIODevice::ReadOnly | QIODevice::Unbuffered);
    }
    begin_ = record.offset;
    piece_.resize(PieceSize);
    const qint64 count = file_.seek(begin_) ? file_.read(piece_.data(), PieceSize) : 0;
    piece_.truncate(qMax<qint64>(count, 0));
}

void HistoryLines::Forget() {
    file_.close();
    file_.setFileName(QString());
    piece_.clear();
}

QByteArrayView HistoryLines::Of(const HistoryRecord& record) {
    if (!Holds(record))
        ReadFrom(record);
    QByteArrayView line = QByteArrayView(piece_).sliced(record.offset - begin_);
    line.truncate(qMin<qsizetype>(line.size(), TextProcs::FileLine::Width));
    const qsizetype end = line.indexOf('\n');
    if (end >= 0)
        line.truncate(end);
    if (line.endsWith('\r'))
        line.chop(1);
    return line;
}
