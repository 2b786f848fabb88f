#include "screens/history/HistoryExport.h"

#include "events/HistoryCsv.h"
#include "events/HistorySearch.h"
#include "platform/Clock.h"
#include "platform/RunTimeError.h"

namespace {

/// The watch of the bus waits no longer, ms.
constexpr int Budget = 20;
/// Bytes that a slow stick takes in some 50 ms.
constexpr qint64 Portion = 0x10000;

class CsvWriter : public LineWriter {
public:
    explicit CsvWriter(const QStringList& titles) { Bytes().write(HistoryCsv::Heading(titles)); }

    void Write(const HistoryRecord&, QByteArrayView line) override {
        Bytes().write(HistoryCsv::Row(line));
    }
};

} // namespace

HistoryExport::HistoryExport(const HistorySearch& search, Format format, const QString& path,
                             const HistoryPdf::Heading& heading, QObject* parent)
    : QObject(parent)
    , search_(search)
    , path_(path)
    , lines_(std::make_unique<HistoryLines>(search.Records()))
    , file_(std::make_unique<platform::GrowingFile>(path)) {
    if (format == Format::Csv)
        writer_ = std::make_unique<CsvWriter>(heading.columns);
    else
        writer_ = std::make_unique<HistoryPdf>(heading, int(search.Found().size()));
    timer_.callOnTimeout([this] { Advance(); });
    timer_.start(0);
}

HistoryExport::~HistoryExport() = default;

double HistoryExport::Progress() const {
    const size_t rows = search_.Found().size();
    return rows == 0 ? 1 : double(row_) / double(rows);
}

void HistoryExport::Stop() {
    if (state_ == State::Running)
        End(State::Stopped);
}

void HistoryExport::Advance() {
    try {
        WritePortion();
        if (row_ == search_.Found().size() && !isEnded_) {
            isEnded_ = true;
            writer_->End();
        }
        const bool isLast = isEnded_ && writer_->Waiting() <= Portion;
        if (isLast || writer_->Waiting() >= Portion)
            file_->Append(writer_->Take(Portion));
        if (isLast) {
            file_->Finish();
            End(State::Complete);
        } else {
            Q_EMIT Changed();
        }
    } catch (const platform::RunTimeError& error) {
        error_ = error.Number();
        End(State::Failed);
    }
}

void HistoryExport::WritePortion() {
    const platform::Clock& clock = platform::Clock::Current();
    const qint64 end = clock.MonotonicMs() + Budget;
    while (row_ < search_.Found().size() && writer_->Waiting() < Portion &&
           clock.MonotonicMs() < end) {
        const HistoryRecord& record = search_.Row(int(row_));
        writer_->Write(record, lines_->Of(record));
        ++row_;
    }
}

void HistoryExport::End(State state) {
    timer_.stop();
    writer_.reset();
    file_.reset();
    state_ = state;
    Q_EMIT Changed();
}
