#pragma once

#include <QBuffer>
#include <QByteArray>
#include <QByteArrayView>

struct HistoryRecord;

/// Makes a file's bytes of history lines, one after the other. Whoever keeps the file takes them
/// away and sees what becomes of them.
class LineWriter {
public:
    LineWriter() { bytes_.open(QIODevice::WriteOnly); }
    virtual ~LineWriter() = default;
    LineWriter(const LineWriter&) = delete;
    LineWriter& operator=(const LineWriter&) = delete;

    virtual void Write(const HistoryRecord& record, QByteArrayView line) = 0;
    /// What stands at the end of all.
    virtual void End() {}

    qint64 Waiting() const { return bytes_.size(); }
    /// The next bytes, at most so many.
    QByteArray Take(qint64 most) {
        QByteArray taken = bytes_.buffer().left(most);
        bytes_.buffer().remove(0, taken.size());
        bytes_.seek(bytes_.size());
        return taken;
    }

protected:
    QIODevice& Bytes() { return bytes_; }

private:
    QBuffer bytes_;
};
