#pragma once

#include <QByteArrayView>

struct HistoryRecord;

/// Where history lines go one after the other.
class HistoryWriter {
public:
    HistoryWriter() = default;
    virtual ~HistoryWriter() = default;
    HistoryWriter(const HistoryWriter&) = delete;
    HistoryWriter& operator=(const HistoryWriter&) = delete;

    virtual void Write(const HistoryRecord& record, QByteArrayView line) = 0;
    /// What stands at the end of all.
    virtual void End() {}
};
