#pragma once

#include "events/HistoryFilter.h"
#include "events/HistoryLines.h"

#include <QByteArray>
#include <QList>
#include <QStringList>
#include <vector>

/// Finds the lines of the history that a filter lets through, in slices, so that a caller with a
/// watch to keep can take turns with it. What was read of a period is kept for the next filter.
class HistorySearch {
public:
    HistorySearch();
    HistorySearch(const HistorySearch&) = delete;
    HistorySearch& operator=(const HistorySearch&) = delete;

    /// Begins to look for other lines. Files that have grown are read anew.
    void Begin(const HistoryFilter& filter);
    /// Takes back a list that was found with a filter; looks for it anew where other days were read
    /// since.
    void Return(const HistoryFilter& filter, std::vector<quint32> found);
    /// Goes on for about so many milliseconds. True when all is found.
    bool Step(int budget);
    /// Leaves the rest: what was found stays, and what was read is still looked through.
    void Cancel();
    bool Done() const { return stage_ == Stage::Done; }
    /// The files are still being read: how much there is to look through isn't known.
    bool Reading() const { return stage_ == Stage::Reading; }
    /// Of the reading or of the looking through, from 0 to 1.
    double Progress() const;

    const HistoryFilter& Filter() const { return filter_; }
    const HistoryRecords& Records() const { return records_; }
    /// Places of the lines among the records, ascending.
    const std::vector<quint32>& Found() const { return found_; }
    /// Row of a record among the found ones, -1 when it isn't there.
    int RowOf(qint64 record) const;
    const HistoryRecord& Row(int row) const { return records_.Records()[found_[size_t(row)]]; }
    /// A found line as it stands in its file, at most 138 bytes.
    QByteArray Line(int row) const { return records_.Line(Row(row)); }

    /// The names of those who logged in or acknowledged in the period, as far as it was looked
    /// through; in the order of the alphabet.
    QStringList Users() const;

private:
    enum class Stage { Reading, Matching, Done };

    void BeginMatching();
    void Match();
    bool Takes(const HistoryRecord& record);
    bool HoldsWords(QByteArrayView line);
    void NoteUser(QByteArrayView name);
    qint64 SizeOfFiles() const;

    HistoryFilter filter_;
    HistoryRecords records_;
    HistoryLines lines_{records_};
    Stage stage_ = Stage::Done;
    /// All of the period was read, and the size of its files then.
    bool isRead_ = false;
    qint64 sizeRead_ = 0;
    size_t at_ = 0;
    std::vector<quint32> found_;
    /// In small letters.
    QList<QByteArray> words_;
    QByteArray user_;
    QList<QByteArray> users_;
    QByteArray lower_;
};
