#pragma once

#include "events/HistoryRecords.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QFile>

/// Reads the lines of records one after the other, a piece of a file at a time: quick where they
/// follow each other, and cheap where they lie far apart.
class HistoryLines {
public:
    /// Of these records, which are alive as long.
    explicit HistoryLines(const HistoryRecords& records)
        : records_(records) {}

    /// At most the 138 columns, without the line end; empty for a line that can't be read any
    /// more. The bytes hold until the next call.
    QByteArrayView Of(const HistoryRecord& record);
    /// Reads anew from then on.
    void Forget();

private:
    bool Holds(const HistoryRecord& record) const;
    void ReadFrom(const HistoryRecord& record);

    const HistoryRecords& records_;
    QFile file_;
    qint64 begin_ = 0;
    QByteArray piece_;
};
