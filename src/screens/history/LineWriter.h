#pragma once

#include <QByteArrayView>

struct HistoryRecord;

/// Where history lines go one after the other.
class LineWriter {
public:
    LineWriter() = default;
    virtual ~LineWriter() = default;
    LineWriter(const LineWriter&) = delete;
    LineWriter& operator=(const LineWriter&) = delete;

    virtual void Write(const HistoryRecord& record, QByteArrayView line) = 0;
    /// What stands at the end of all.
    virtual void End() {}
};
