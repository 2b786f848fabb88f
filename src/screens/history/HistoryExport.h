#pragma once

#include "platform/GrowingFile.h"
#include "screens/history/HistoryPdf.h"

#include <QObject>
#include <QTimer>
#include <memory>

class HistoryLines;
class HistorySearch;

/// Writes the lines that a search has found into a file, a portion in each turn of the event loop:
/// the bus goes on, and the writing can be stopped. Nothing is left of a file that isn't whole.
class HistoryExport : public QObject {
    Q_OBJECT
public:
    enum class Format { Csv, Pdf };
    enum class State { Running, Complete, Stopped, Failed };

    /// Begins; `search` stays as it is until the end. Throws RunTimeError `DiskFull` or
    /// `PathAccess`.
    HistoryExport(const HistorySearch& search, Format format, const QString& path,
                  const HistoryPdf::Heading& heading, QObject* parent);
    ~HistoryExport() override;

    void Stop();
    State Outcome() const { return state_; }
    /// From 0 to 1.
    double Progress() const;
    /// Number of the run-time error that ended the writing, 0 for none.
    int Error() const { return error_; }
    const QString& Path() const { return path_; }

Q_SIGNALS:
    /// A portion was written, or the outcome is there.
    void Changed();

private:
    void Advance();
    void WritePortion();
    void End(State state);

    const HistorySearch& search_;
    QString path_;
    std::unique_ptr<HistoryLines> lines_;
    std::unique_ptr<platform::GrowingFile> file_;
    std::unique_ptr<LineWriter> writer_;
    size_t row_ = 0;
    bool isEnded_ = false; // the writer: what it holds goes to the file yet
    QTimer timer_;
    State state_ = State::Running;
    int error_ = 0;
};
