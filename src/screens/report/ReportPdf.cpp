#include "screens/report/ReportPdf.h"

#include "core/Config.h"
#include "core/Global.h"
#include "events/ReportText.h"
#include "screens/report/BarPlot.h"
#include "screens/touch/Theme.h"

#include <QBuffer>
#include <QFontMetricsF>
#include <QPageLayout>
#include <QPainter>
#include <QPdfWriter>

namespace {

/// Lengths are pixels of 96 to the inch; the writer's own are finer, so that letters stand where
/// they belong.
constexpr int Finer = 5;
constexpr qreal PageWidth = 210 / 25.4 * Theme::DesignDpi;
constexpr qreal PageHeight = 297 / 25.4 * Theme::DesignDpi;
constexpr qreal Margin = 56;
constexpr qreal Width = PageWidth - 2 * Margin;
constexpr qreal RowHeight = 18;
constexpr qreal BarsHeight = 190;
constexpr qreal Space = 14;
constexpr int TitlePixels = 24;
constexpr int HeadPixels = 15;
constexpr int TextPixels = 11;
constexpr int PageText = 715028;
constexpr int NoneText = 715026;

/// Writes down the pages of a report, one line below the other.
class Pages {
public:
    explicit Pages(QPdfWriter& writer)
        : writer_(writer)
        , painter_(&writer) {
        painter_.scale(Finer, Finer);
        PaintFoot();
    }

    void Line(const QString& text, const QFont& font, const QColor& ink = Qt::black) {
        const qreal height = QFontMetricsF(font).height() + 2;
        painter_.setFont(font);
        painter_.setPen(ink);
        painter_.drawText(QRectF(Margin, y_, Width, height), Qt::AlignLeft | Qt::AlignVCenter,
                          text);
        y_ += height;
    }
    void Skip(qreal height) { y_ += height; }
    void Bars(const QString& title, const ReportBars& bars) {
        NeedRoom(BarsHeight + RowHeight + Space);
        Skip(Space);
        Line(title, Theme::Text(HeadPixels, true));
        BarPlot(bars, QRectF(Margin, y_, Width, BarsHeight), Theme::Text(TextPixels))
            .Paint(painter_, BarPlot::OnPaper);
        y_ += BarsHeight;
    }
    void Table(const ReportTable& table) {
        NeedRoom(Space + 4 * RowHeight);
        Skip(Space);
        if (!table.title.isEmpty())
            Line(table.title, Theme::Text(HeadPixels, true));
        if (table.rows.isEmpty()) {
            Line(GetText(NoneText), Theme::Text(TextPixels), Qt::darkGray);
            return;
        }
        Head(table);
        for (const QStringList& row : ReportText::Rows(table, ReportText::PrintedRows)) {
            if (NeedRoom(RowHeight))
                Head(table);
            Row(table, row, Theme::Text(TextPixels));
        }
    }

private:
    /// True when that began a page.
    bool NeedRoom(qreal height) {
        if (y_ + height <= PageHeight - Margin)
            return false;
        writer_.newPage();
        ++page_;
        y_ = Margin;
        PaintFoot();
        return true;
    }
    void PaintFoot() {
        painter_.setFont(Theme::Text(TextPixels));
        painter_.setPen(Qt::darkGray);
        painter_.drawText(QRectF(Margin, PageHeight - Margin + Space, Width, RowHeight),
                          Qt::AlignRight | Qt::AlignVCenter,
                          GetText(PageText).replace(u'$', QString::number(page_)));
        painter_.drawText(QRectF(Margin, PageHeight - Margin + Space, Width, RowHeight),
                          Qt::AlignLeft | Qt::AlignVCenter, Global::Title);
    }
    void Head(const ReportTable& table) {
        QStringList titles;
        for (const ReportTable::Column& column : table.columns)
            titles += column.title;
        Row(table, titles, Theme::Text(TextPixels, true));
    }
    void Row(const ReportTable& table, const QStringList& cells, const QFont& font) {
        int shares = 0;
        for (const ReportTable::Column& column : table.columns)
            shares += column.share;
        painter_.setFont(font);
        painter_.setPen(Qt::black);
        qreal x = Margin;
        for (int i = 0; i < table.columns.size(); ++i) {
            const bool isAlone = cells.size() == 1;
            const qreal width = isAlone ? Width : Width * table.columns[i].share / shares;
            const auto side = table.columns[i].isNumber ? Qt::AlignRight : Qt::AlignLeft;
            const QRectF area(x, y_, width - 8, RowHeight);
            painter_.drawText(
                area, side | Qt::AlignVCenter,
                QFontMetricsF(font).elidedText(cells.value(i), Qt::ElideRight, area.width()));
            x += width;
        }
        painter_.setPen(BarPlot::OnPaper.line);
        painter_.drawLine(QPointF(Margin, y_ + RowHeight), QPointF(Margin + Width, y_ + RowHeight));
        y_ += RowHeight;
    }

    QPdfWriter& writer_;
    QPainter painter_;
    qreal y_ = Margin;
    int page_ = 1;
};

} // namespace

QByteArray ReportPdf(const AlarmTables& tables, const QString& site, const QString& made) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QPdfWriter writer(&buffer);
    writer.setPageSize(QPageSize(QPageSize::A4));
    writer.setPageMargins({});
    writer.setResolution(Theme::DesignDpi * Finer);
    writer.setTitle(AlarmTables::Title() + QStringLiteral(" - ") + tables.Period());
    writer.setCreator(Global::Title);
    {
        Pages pages(writer);
        pages.Line(AlarmTables::Title(), Theme::Text(TitlePixels, true));
        pages.Line(tables.Period(), Theme::Text(HeadPixels, true));
        pages.Line(site + QStringLiteral("   ") + made, Theme::Text(TextPixels), Qt::darkGray);
        QList<ReportTable> all = tables.All();
        const ReportTable byHour = all.takeAt(AlarmTables::HourTable);
        const ReportTable byPart = all.takeAt(AlarmTables::PartTable);
        ReportTable figures = all.takeAt(AlarmTables::FigureTable);
        figures.title.clear();
        pages.Table(figures);
        pages.Bars(byPart.title, tables.ByPart());
        if (tables.ByPart().names != tables.ByHour().names)
            pages.Bars(byHour.title, tables.ByHour());
        for (const ReportTable& table : all)
            pages.Table(table);
    }
    return bytes;
}
