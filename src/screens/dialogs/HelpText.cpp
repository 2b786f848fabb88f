#include "screens/dialogs/HelpText.h"

#include "core/Config.h"
#include "screens/touch/Theme.h"

#include <QFile>
#include <QPainter>
#include <QRegularExpression>
#include <QUrl>

namespace {

/// Height of a picture among words, in lines of text.
constexpr double LinesOfAPicture = 1.5;

QString Links(const QString& source) {
    QString links;
    for (const auto& [level, anchor, title] : HelpText::Headings(source)) {
        links += level == 1 ? QStringLiteral("<p><b>%1</b></p>\n").arg(title)
                            : QStringLiteral("<p class=\"contents\"><a href=\"#%1\">%2</a></p>\n")
                                  .arg(anchor, title);
    }
    return links;
}

QString Word(const QString& name) {
    bool isNumber = false;
    const int number = name.toInt(&isNumber);
    if (!isNumber)
        return QStringLiteral("<img src=\"%1:%2\" style=\"vertical-align: middle\">")
            .arg(HelpText::PictureScheme, name);
    return QStringLiteral("<b>%1</b>").arg(GetText(number).replace(u'\n', u' ').toHtmlEscaped());
}

} // namespace

QList<HelpText::Heading> HelpText::Headings(const QString& source) {
    static const QRegularExpression heading(
        QStringLiteral("<h([12])>(?:<a name=\"(\\w+)\"></a>)?.*?([^<>]+)</h[12]>"));
    QList<Heading> headings;
    for (auto found = heading.globalMatch(source); found.hasNext();) {
        const auto match = found.next();
        headings.append({match.captured(1).toInt(), match.captured(2), match.captured(3)});
    }
    return headings;
}

QString HelpText::Read(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

QString HelpText::Filled(QString source, bool withContents) {
    source.replace(QStringLiteral("{{contents}}"), withContents ? Links(source) : QString());
    static const QRegularExpression place(QStringLiteral("\\{\\{(\\w+)\\}\\}"));
    QString filled;
    qsizetype end = 0;
    for (auto found = place.globalMatch(source); found.hasNext();) {
        const auto match = found.next();
        filled += QStringView(source).mid(end, match.capturedStart() - end);
        filled += Word(match.captured(1));
        end = match.capturedEnd();
    }
    filled += QStringView(source).mid(end);
    return filled;
}

QImage HelpText::Picture(const QUrl& address, int side) {
    constexpr qreal Margin = 0.08;
    constexpr qreal Radius = 0.16;
    QImage button(side, side, QImage::Format_ARGB32_Premultiplied);
    button.fill(Qt::transparent);
    QPainter painter(&button);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Theme::Edge);
    painter.setBrush(Theme::Tile);
    const QRectF area = QRectF(button.rect()).adjusted(0.5, 0.5, -0.5, -0.5);
    painter.drawRoundedRect(area, Radius * side, Radius * side);
    const qreal margin = Margin * side;
    Theme::DrawPicture(painter, address.path(), area.adjusted(margin, margin, -margin, -margin));
    return button;
}

QVariant HelpBrowser::loadResource(int type, const QUrl& name) {
    if (type == QTextDocument::HtmlResource && name.isLocalFile())
        return HelpText::Filled(HelpText::Read(name.toLocalFile()));
    if (name.scheme() == HelpText::PictureScheme)
        return HelpText::Picture(name, qRound(LinesOfAPicture * fontMetrics().lineSpacing()));
    return QTextBrowser::loadResource(type, name);
}
