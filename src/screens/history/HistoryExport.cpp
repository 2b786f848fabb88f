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
    CsvWriter(QIODevice& device, const QStringList& titles)
        : device_(device)
        , bytes_(HistoryCsv::Heading(titles)) {}

    void Write(const HistoryRecord&, QByteArrayView line) override {
        bytes_ += HistoryCsv::Row(line);
        if (bytes_.size() >= Portion)
            End();
    }
    /// What fails is told by the device.
    void End() override {
        device_.write(bytes_);
        bytes_.clear();
    }

private:
    QIODevice& device_;
    QByteArray bytes_;
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
        writer_ = std::make_unique<CsvWriter>(file_->Device(), heading.columns);
    else
        writer_ =
            std::make_unique<HistoryPdf>(file_->Device(), heading, int(search.Found().size()));
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
        if (row_ < search_.Found().size()) {
            StoreFrom(Portion);
        } else {
            writer_->End();
            StoreFrom(0);
            file_->Finish();
            End(State::Complete);
            return;
        }
        Q_EMIT Changed();
    } catch (const platform::RunTimeError& error) {
        error_ = error.Number();
        End(State::Failed);
    }
}

void HistoryExport::WritePortion() {
    const platform::Clock& clock = platform::Clock::Current();
    const qint64 end = clock.MonotonicMs() + Budget;
    do {
        if (row_ == search_.Found().size())
            return;
        const HistoryRecord& record = search_.Row(int(row_));
        writer_->Write(record, lines_->Of(record));
        ++row_;
    } while (clock.MonotonicMs() < end && file_->Device().pos() - stored_ < Portion);
}

void HistoryExport::StoreFrom(qint64 waiting) {
    if (file_->Device().pos() - stored_ < waiting)
        return;
    file_->Store();
    stored_ = file_->Device().pos();
}

/// A writer that is stopped has a last word as well: its file goes after it.
void HistoryExport::End(State state) {
    timer_.stop();
    writer_.reset();
    file_.reset();
    state_ = state;
    Q_EMIT Changed();
}
