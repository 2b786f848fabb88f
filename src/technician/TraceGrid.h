#pragma once

#include "screens/touch/RowGrid.h"
#include "technician/FrameText.h"

#include <QStringList>
#include <deque>

/// The frames of the bus as they go by, the newest at the end: each row is twice as high as a line
/// of text and holds what the frame says and its bytes. The end stays in sight as long as it is.
/// Only the rows in sight are made into text.
class TraceGrid : public RowGrid {
    Q_OBJECT
public:
    explicit TraceGrid(QWidget* parent = nullptr);

    /// Takes the frames that came since the last time. Those that are no longer kept are missing.
    void Take(const BusDiagnosis& diagnosis);
    /// Shows only the exchanges with a panel, all for 0.
    void setPanel(int panel);
    int Panel() const { return panel_; }
    int Count() const { return int(shown_.size()); }
    /// The frames shown, each on a line: time, direction, bytes and what they say, between tabs.
    QStringList Lines() const;

    const RowPosition& Position() const override { return at_; }

protected:
    RowPosition& MutablePosition() override { return at_; }
    void PaintRow(QPainter& painter, int row, const QRect& area) const override;

private:
    bool IsShown(const TracedFrame& frame) const {
        return panel_ == 0 || frame.frame.panel == panel_;
    }
    void DropOldest();

    std::deque<TracedFrame> frames_;
    std::deque<const TracedFrame*> shown_; // of `frames_`
    quint64 next_ = 0;
    int panel_ = 0;
    RowPosition at_;
};
