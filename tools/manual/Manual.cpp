#include "Manual.h"

#include "core/Config.h"
#include "core/Global.h"
#include "screens/dialogs/HelpText.h"

#include <QAbstractTextDocumentLayout>
#include <QFileInfo>
#include <QPainter>
#include <QPdfWriter>
#include <QTextBlock>
#include <QTextDocument>
#include <QUrl>

namespace {

/// Texts of the language base.
constexpr int ContentsWord = 713004;
constexpr int Subtitle = 610009;

constexpr int Resolution = 300;    ///< dots an inch
constexpr double Inch = 25.4;      ///< mm
constexpr double SideMargin = 20;  ///< mm
constexpr double TopMargin = 18;   ///< mm
constexpr double PageMargin = 8;   ///< pixels of a display, so that no line lies at an edge
constexpr double FooterHeight = 9; ///< mm, of the text at its foot
constexpr int TextPoints = 10;
constexpr int TitlePoints = 28;
constexpr int SubtitlePoints = 14;
constexpr int PictureSide = 96;     ///< pixels, of what is drawn among the words
constexpr double PictureSize = 6.5; ///< mm, as it is printed

const QString PaperStyle =
    QStringLiteral("a { color: #000000; text-decoration: none; }"
                   "h1 { font-size: 20pt; } h2 { font-size: 14pt; margin-top: 24px; }"
                   "table { margin-top: 8px; margin-bottom: 8px; border-collapse: collapse; "
                   "border-color: #A0A8B0; border-style: solid; }");

int Dots(double millimetres) {
    return qRound(millimetres / Inch * Resolution);
}

QFont Letters(int points, bool bold = false) {
    QFont font(QStringLiteral("DejaVu Sans"), points);
    font.setBold(bold);
    return font;
}

/// A text on sheets of paper.
class Sheets : public QTextDocument {
public:
    Sheets(QPdfWriter& writer, const QString& folder, const QString& html)
        : size_(writer.width(), writer.height() - Dots(FooterHeight)) {
        documentLayout()->setPaintDevice(&writer);
        setDefaultFont(Letters(TextPoints));
        setDefaultStyleSheet(PaperStyle);
        setBaseUrl(QUrl::fromLocalFile(folder + u'/'));
        setDocumentMargin(PageMargin);
        setHtml(html);
        setPageSize(size_);
    }

    int PageOf(const QTextBlock& block) const {
        return int(documentLayout()->blockBoundingRect(block).top() / size_.height());
    }
    /// Blocks with a heading, in their order.
    QList<QTextBlock> HeadingBlocks() const {
        QList<QTextBlock> headings;
        for (QTextBlock block = begin(); block.isValid(); block = block.next())
            if (block.blockFormat().headingLevel() > 0)
                headings.append(block);
        return headings;
    }
    /// A group of chapters begins on a page of its own, and no heading stands alone at a foot.
    void KeepHeadings() {
        const QList<QTextBlock> headings = HeadingBlocks();
        for (const QTextBlock& heading : headings.mid(1)) {
            const bool begins = heading.blockFormat().headingLevel() == 1;
            if (!begins && PageOf(heading) == PageOf(heading.next().next()))
                continue;
            QTextBlockFormat format = heading.blockFormat();
            format.setPageBreakPolicy(QTextFormat::PageBreak_AlwaysBefore);
            QTextCursor(heading).setBlockFormat(format);
            // Laid out anew from here on alone, blocks come to lie over each other.
            markContentsDirty(0, characterCount());
        }
    }
    void Paint(QPainter& painter, int page) {
        const QRectF sheet(QPointF(0, page * size_.height()), size_);
        QAbstractTextDocumentLayout::PaintContext context;
        context.palette.setColor(QPalette::Text, Qt::black);
        context.clip = sheet;
        painter.save();
        painter.translate(-sheet.topLeft());
        painter.setClipRect(sheet);
        documentLayout()->draw(&painter, context);
        painter.restore();
    }

protected:
    QVariant loadResource(int type, const QUrl& name) override {
        if (name.scheme() == HelpText::PictureScheme)
            return HelpText::Picture(name, PictureSide);
        return QTextDocument::loadResource(type, name);
    }

private:
    QSizeF size_;
};

/// The table of contents; the first sheet of the text has the number `first`.
QString Contents(const Sheets& text, int first) {
    QString rows;
    for (const QTextBlock& heading : text.HeadingBlocks()) {
        const QString title = heading.text().toHtmlEscaped();
        const int page = first + text.PageOf(heading);
        rows +=
            heading.blockFormat().headingLevel() == 1
                ? QStringLiteral("<tr><td><b>%1</b></td><td align=\"right\"><b>%2</b></td></tr>")
                      .arg(title)
                      .arg(page)
                : QStringLiteral("<tr><td>%1</td><td align=\"right\">%2</td></tr>")
                      .arg(title)
                      .arg(page);
    }
    return QStringLiteral("<h1>%1</h1><table width=\"100%\" cellpadding=\"1\">%2</table>")
        .arg(GetText(ContentsWord), rows);
}

void PaintTitle(QPainter& painter, const QPdfWriter& writer, const QString& title) {
    const int line = Dots(14);
    QRect row(0, writer.height() / 3, writer.width(), 2 * line);
    const auto put = [&](const QString& text, const QFont& font) {
        painter.setFont(font);
        painter.drawText(row, int(Qt::AlignLeft | Qt::AlignTop) | Qt::TextWordWrap, text);
        row.translate(0, line);
    };
    put(Global::Title, Letters(TitlePoints, true));
    put(GetText(Subtitle), Letters(SubtitlePoints));
    row.translate(0, line);
    put(title, Letters(SubtitlePoints, true));
    put(QStringLiteral("%1.%2.%3")
            .arg(Global::VersionMajor)
            .arg(Global::VersionMinor)
            .arg(Global::VersionRevision),
        Letters(TextPoints));
}

void PaintNumber(QPainter& painter, const QPdfWriter& writer, int number) {
    painter.setFont(Letters(TextPoints - 1));
    const int height = Dots(FooterHeight);
    painter.drawText(QRect(0, writer.height() - height, writer.width(), height),
                     int(Qt::AlignRight | Qt::AlignBottom), QString::number(number));
}

} // namespace

bool WriteManual(const QString& help, const QString& pdf) {
    const QString source = HelpText::Read(help);
    if (source.isEmpty())
        return false;
    QPdfWriter writer(pdf);
    writer.setResolution(Resolution);
    writer.setPageSize(QPageSize(QPageSize::A4));
    writer.setPageMargins(QMarginsF(SideMargin, TopMargin, SideMargin, TopMargin),
                          QPageLayout::Millimeter);
    const QString folder = QFileInfo(help).absolutePath();
    QString filled = HelpText::Filled(source, false);
    filled.replace(QStringLiteral("style=\"vertical-align: middle\""),
                   QStringLiteral("height=\"%1\" style=\"vertical-align: middle\"")
                       .arg(qRound(PictureSize / Inch * 96)));
    Sheets text(writer, folder, filled);
    text.KeepHeadings();
    const QString title = text.metaInformation(QTextDocument::DocumentTitle);
    writer.setTitle(title);
    // The title page is number 1.
    const int contentPages = Sheets(writer, folder, Contents(text, 1)).pageCount();
    const int first = 2 + contentPages;
    Sheets contents(writer, folder, Contents(text, first));

    QPainter painter;
    if (!painter.begin(&writer))
        return false;
    PaintTitle(painter, writer, title);
    int number = 1;
    for (Sheets* part : {&contents, &text}) {
        for (int page = 0; page < part->pageCount(); ++page) {
            writer.newPage();
            part->Paint(painter, page);
            PaintNumber(painter, writer, ++number);
        }
    }
    return painter.end();
}
