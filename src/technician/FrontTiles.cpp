#include "technician/FrontTiles.h"

#include "core/Bytes.h"
#include "model/ConfigClass.h"
#include "model/CurrentConfig.h"
#include "screens/touch/Theme.h"

#include <QFrame>
#include <QLabel>

namespace {

constexpr const char* TagProperty = "Tag";

/// A large module has tall tiles with room for two lines; any other has low ones, twice as many in
/// a column.
struct Layout {
    int rows;     ///< tiles in a column
    double share; ///< of a tile in the distance from one to the next
    int lines;
};
constexpr int LargeModule = 24;
constexpr Layout Tall{12, 855.0 / 990, 2};
constexpr Layout Low{24, 420.0 / 495, 1};

/// In shares of the height of a low tile with its gap; numbers and texts are alike in both.
constexpr double TextSize = 0.64;
constexpr double LedWidth = 1.5;
constexpr double LampSize = 0.82;
constexpr double TallLampSize = 1.1;
constexpr double NumberWidth = 1.2;
constexpr int TextMargin = 4;
constexpr int ColumnGap = 8;

QString TextOf(const ChannelClass& channel) {
    const QString text = Global::Configuration().BiblioText(channel.BibNum());
    return channel.ScreenText().isEmpty() ? text
                                          : text + QStringLiteral(" - ") + channel.ScreenText();
}

/// Position of the last blank ahead of which all fits, 0 or less for none.
int LastBlankThatFits(const QString& text, const QFontMetrics& metrics, int width) {
    auto at = text.lastIndexOf(u' ');
    while (at > 0 && metrics.horizontalAdvance(text.left(at)) > width)
        at = text.lastIndexOf(u' ', at - 1);
    return int(at);
}

} // namespace

void LampRhythm::Advance() {
    phase_ = (phase_ + 1) & 3;
    flash_ = phase_ == 0;
    if (phase_ == 0)
        slow_ = !slow_;
    if (phase_ == 0 || phase_ == 2)
        fast_ = !fast_;
}

qint32 LampRhythm::ColourOf(const QString& word) const {
    const bool lit[] = {false, true, flash_, fast_, slow_};
    for (int i = 0; i < int(std::size(lit)); ++i) {
        if (word == QString::number(i))
            return lit[i] ? LampColours::Red : LampColours::Grey;
    }
    return LampColours::Yellow;
}

FrontTiles::FrontTiles(QWidget* parent)
    : QWidget(parent) {}

void FrontTiles::setPanel(const PanelClass& panel) {
    qDeleteAll(findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly));
    lamps_.clear();
    const int count = panel.ChannelCount();
    const Layout& layout = count == LargeModule ? Tall : Low;
    const int columns = (count + layout.rows - 1) / layout.rows;
    for (int i = 0; i < count; ++i) {
        const int column = i / layout.rows;
        const int row = i % layout.rows;
        // Edges are worked out one by one, so that rounding never adds up.
        const int left = column * (width() + ColumnGap) / columns;
        const int right = (column + 1) * (width() + ColumnGap) / columns - ColumnGap;
        const int top = row * height() / layout.rows;
        const int tall = int(height() * layout.share / layout.rows);
        MakeTile(i + 1, QRect(left, top, right - left, tall), TextOf(panel.Channel(i + 1)));
    }
}

void FrontTiles::MakeTile(int channel, const QRect& tile, const QString& text) {
    const double unit = double(height()) / Low.rows;
    const bool tall = tile.height() > unit;
    const QRect led(tile.topLeft(), QSize(qRound(unit * LedWidth), tile.height()));
    const QRect words = tile.adjusted(led.width(), 0, 0, 0);
    const QRect number(words.topLeft() + QPoint(TextMargin, 0),
                       QSize(qRound(unit * NumberWidth), tile.height()));
    MakeShape(QStringLiteral("shpBkLed"), channel, led, Theme::Field);
    MakeShape(QStringLiteral("shpBkTxt"), channel, words, Theme::Tile);
    MakeShape(QStringLiteral("LineSep"), channel,
              QRect(tile.left(), tile.bottom() + 1, tile.width(), 1), Theme::Edge);
    const int side = qRound(unit * (tall ? TallLampSize : LampSize));
    QRect disc(0, 0, side, side);
    disc.moveCenter(led.center());
    auto* lamp = new FrontLamp(this);
    lamp->setObjectName(QStringLiteral("shpVoyant_%1").arg(channel));
    lamp->setGeometry(disc);
    lamp->show();
    lamps_ += lamp;
    MakeText(QStringLiteral("lblNum"), channel, number)->setText(Bytes::Padded(channel, 2));
    QLabel* label = MakeText(QStringLiteral("lblVoyant"), channel,
                             words.adjusted(number.width() + 2 * TextMargin, 0, -TextMargin, 0));
    label->setText(
        Broken(text, QFontMetrics(label->font()), label->width(), tall ? Tall.lines : Low.lines));
}

QLabel* FrontTiles::MakeText(const QString& array, int channel, const QRect& area) {
    auto* label = new QLabel(this);
    label->setObjectName(array + u'_' + QString::number(channel));
    // Texts of the site may look like markup.
    label->setTextFormat(Qt::PlainText);
    label->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    label->setFont(Theme::Text(int(height() * TextSize / Low.rows)));
    label->setGeometry(area);
    label->show();
    return label;
}

void FrontTiles::MakeShape(const QString& array, int channel, const QRect& area,
                           const QColor& colour) {
    auto* shape = new QFrame(this);
    shape->setObjectName(array + u'_' + QString::number(channel));
    shape->setStyleSheet(QStringLiteral("background: ") + colour.name());
    shape->setGeometry(area);
    shape->show();
}

void FrontTiles::setWords(const Words& words) {
    for (int i = 0; i < qMin(words.size(), lamps_.size()); ++i)
        lamps_[i]->setProperty(TagProperty, QString::number(words[i]));
}

void FrontTiles::setUnknown() {
    for (FrontLamp* lamp : std::as_const(lamps_)) {
        lamp->setProperty(TagProperty, QString());
        lamp->setFillColor(LampColours::Yellow);
    }
}

void FrontTiles::Blink() {
    rhythm_.Advance();
    for (FrontLamp* lamp : std::as_const(lamps_))
        lamp->setFillColor(rhythm_.ColourOf(lamp->property(TagProperty).toString()));
}

QString FrontTiles::Broken(const QString& text, const QFontMetrics& metrics, int width, int lines) {
    if (metrics.horizontalAdvance(text) <= width)
        return text;
    const int at = lines < 2 ? 0 : LastBlankThatFits(text, metrics, width);
    if (at <= 0)
        return metrics.elidedText(text, Qt::ElideRight, width);
    return text.left(at) + u'\n' + metrics.elidedText(text.mid(at + 1), Qt::ElideRight, width);
}
