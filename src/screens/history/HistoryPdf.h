#pragma once

#include "events/HistoryRecords.h"
#include "screens/history/LineWriter.h"

#include <QFont>
#include <QPainter>
#include <QPdfWriter>
#include <QString>
#include <QStringList>

/// History lines on pages of A4 across: the columns of the file, and ahead of each line the colour
/// and the shape of its state.
class HistoryPdf : public LineWriter {
public:
    struct Heading {
        QString title;
        /// What was looked for.
        QString filter;
        /// Site, and when it was written.
        QString origin;
        /// The nine of the columns.
        QStringList columns;
    };

    /// For so many lines.
    HistoryPdf(Heading heading, int lines);
    ~HistoryPdf() override;

    void Write(const HistoryRecord& record, QByteArrayView line) override;
    void End() override;

private:
    void BeginPage();

    Heading heading_;
    int lines_;
    QPdfWriter writer_;
    QPainter painter_;
    QFont font_;
    int pitch_ = 1;
    int rowsOfPage_ = 1;
    int row_ = 0;
    int page_ = 0;
};
