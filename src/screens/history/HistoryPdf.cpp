#include "screens/history/HistoryPdf.h"

#include "events/HistoryState.h"
#include "events/TextProcs.h"
#include "platform/CodePage.h"
#include "screens/console/RowShapes.h"
#include "screens/history/FilterWords.h"
#include "screens/touch/Colours.h"
#include "screens/touch/Theme.h"

#include <QFontMetricsF>
#include <QPageLayout>
#include <utility>

namespace FileLine = TextProcs::FileLine;

namespace {

constexpr int Resolution = 300;
constexpr int MarginMm = 10;
/// The mark and the blank behind it, characters.
constexpr int MarkColumns = 4;
constexpr double MarkWidth = 2.6;
constexpr double Pitch = 1.4;
/// Title, filter, origin and the headings, in heights of a row.
constexpr int HeadRows = 5;
constexpr int FootRows = 1;
constexpr int PageOf = 711138;

/// The font in which mark and line are as wide as the page.
QFont FontFor(const QPaintDevice& page) {
    QFont font = Theme::Fixed(1);
    const QString widest(MarkColumns + FileLine::Width, u'0');
    const auto isWider = [&](int pixels) {
        font.setPixelSize(pixels);
        return QFontMetricsF(font, &page).horizontalAdvance(widest) > page.width();
    };
    int pixels = 8;
    while (!isWider(pixels + 1))
        ++pixels;
    font.setPixelSize(pixels);
    return font;
}

QString Headings(const QStringList& titles) {
    Record line(FileLine::Width);
    for (int i = 0; i < titles.size(); ++i)
        line.Set(FileLine::Columns[i], titles[i]);
    return line.Text();
}

} // namespace

HistoryPdf::HistoryPdf(Heading heading, int lines)
    : heading_(std::move(heading))
    , lines_(lines)
    , writer_(&Bytes()) {
    writer_.setResolution(Resolution);
    writer_.setPageLayout(QPageLayout(QPageSize(QPageSize::A4), QPageLayout::Landscape,
                                      QMarginsF(MarginMm, MarginMm, MarginMm, MarginMm),
                                      QPageLayout::Millimeter));
    writer_.setTitle(heading_.title);
    painter_.begin(&writer_);
    font_ = FontFor(writer_);
    pitch_ = qRound(font_.pixelSize() * Pitch);
    rowsOfPage_ = qMax(1, writer_.height() / pitch_ - HeadRows - FootRows);
    BeginPage();
}

HistoryPdf::~HistoryPdf() = default;

void HistoryPdf::BeginPage() {
    ++page_;
    row_ = 0;
    const int pages = qMax(1, (lines_ + rowsOfPage_ - 1) / rowsOfPage_);
    const auto put = [this](int row, const QString& text, int side = Qt::AlignLeft) {
        painter_.drawText(QRect(0, row * pitch_, writer_.width(), pitch_),
                          side | Qt::AlignVCenter | Qt::TextSingleLine, text);
    };
    painter_.setPen(Qt::black);
    painter_.setFont(Theme::Text(qRound(font_.pixelSize() * Pitch), true));
    put(0, heading_.title);
    painter_.setFont(Theme::Text(font_.pixelSize()));
    put(1, heading_.filter);
    put(2, heading_.origin);
    put(writer_.height() / pitch_ - 1,
        FilterWords::Filled(PageOf, {QString::number(page_), QString::number(pages)}),
        Qt::AlignRight);
    QFont bold = font_;
    bold.setBold(true);
    painter_.setFont(bold);
    put(HeadRows - 1, QString(MarkColumns, u' ') + Headings(heading_.columns));
    painter_.drawLine(0, HeadRows * pitch_, writer_.width(), HeadRows * pitch_);
    painter_.setFont(font_);
}

void HistoryPdf::Write(const HistoryRecord& record, QByteArrayView line) {
    if (row_ == rowsOfPage_) {
        writer_.newPage();
        BeginPage();
    }
    const QRect area(0, (HeadRows + row_) * pitch_, writer_.width(), pitch_);
    const double letter = QFontMetricsF(font_, &writer_).horizontalAdvance(u'0');
    if (const std::optional<RowState> state = StateOf(record)) {
        const QRect mark(area.left(), area.top() + 2, qRound(letter * MarkWidth),
                         area.height() - 4);
        const QColor ground = Colours::FromBgr(AlarmRows::ColourOf(*state));
        painter_.fillRect(mark, ground);
        painter_.drawRect(mark);
        RowShapes::Draw(painter_, mark.adjusted(2, 2, -2, -2), *state, Colours::InkOn(ground),
                        ground);
    }
    painter_.drawText(area.adjusted(qRound(letter * MarkColumns), 0, 0, 0),
                      Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                      platform::FromCodePage(line.toByteArray()));
    ++row_;
}

void HistoryPdf::End() {
    painter_.end();
}
