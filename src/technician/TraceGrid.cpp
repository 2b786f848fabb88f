#include "technician/TraceGrid.h"

#include "screens/touch/Theme.h"

#include <QPainter>
#include <algorithm>

namespace {

constexpr int Columns = 84;
/// Two lines of text and the room that tells a row from the next.
constexpr double RowPitch = 2.7;
constexpr int FewestRows = 5;

} // namespace

TraceGrid::TraceGrid(QWidget* parent)
    : RowGrid({Columns, RowPitch, FewestRows}, parent) {
    FitFont();
}

void TraceGrid::Take(const BusDiagnosis& diagnosis) {
    if (next_ == diagnosis.EndFrame())
        return;
    const bool atEnd = at_.First() + at_.Page() >= at_.Count();
    for (next_ = std::max(next_, diagnosis.FirstFrame()); next_ < diagnosis.EndFrame(); ++next_) {
        if (frames_.size() == BusDiagnosis::FrameRing)
            DropOldest();
        frames_.push_back(FrameText::Traced(diagnosis, next_));
        if (!IsShown(frames_.back()))
            continue;
        shown_.push_back(&frames_.back());
        at_.Appended();
    }
    if (atEnd)
        at_.ScrollTo(at_.Count());
    update();
}

void TraceGrid::DropOldest() {
    if (!shown_.empty() && shown_.front() == &frames_.front()) {
        shown_.pop_front();
        at_.Removed(0);
    }
    frames_.pop_front();
}

void TraceGrid::setPanel(int panel) {
    panel_ = panel;
    shown_.clear();
    for (const TracedFrame& frame : frames_) {
        if (IsShown(frame))
            shown_.push_back(&frame);
    }
    at_.Reset(Count());
    at_.MoveBy(Count());
    update();
}

QStringList TraceGrid::Lines() const {
    QStringList lines;
    for (const TracedFrame* frame : shown_)
        lines += QStringList{FrameText::Time(*frame), FrameText::Direction(*frame),
                             FrameText::Hex(*frame), FrameText::Decoded(*frame)}
                     .join(u'\t');
    return lines;
}

void TraceGrid::PaintRow(QPainter& painter, int row, const QRect& area) const {
    const TracedFrame& frame = *shown_[size_t(row)];
    const bool selected = row == at_.Current();
    const bool sent = frame.frame.direction == BusDiagnosis::Direction::Sent;
    painter.fillRect(area, selected ? Theme::Selection : Theme::Ground);
    painter.setPen(selected ? QColor(Qt::white) : sent ? Theme::QuietInk : Theme::Ink);
    const QRect text = area.adjusted(LeftMargin(), 0, 0, 0);
    const int half = area.height() / 2;
    const int flags = Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine;
    const auto draw = [&](const QRect& line, const QString& words) {
        painter.drawText(line, flags,
                         painter.fontMetrics().elidedText(words, Qt::ElideRight, line.width()));
    };
    draw(text.adjusted(0, 2, 0, -half), FrameText::Time(frame) + u' ' +
                                            FrameText::Direction(frame) + QStringLiteral("  ") +
                                            FrameText::Decoded(frame));
    draw(text.adjusted(0, half, 0, -2), FrameText::Hex(frame));
}
