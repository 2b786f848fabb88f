#include "screens/remote/Telecommande.h"

#include "core/Bytes.h"
#include "core/Config.h"
#include "core/ErrorHandling.h"
#include "model/Models.h"
#include "model/PanelClass.h"
#include "screens/console/AlarmGrid.h"
#include "screens/touch/Colours.h"
#include "screens/touch/Theme.h"
#include "screens/touch/TouchImage.h"

#include <QLabel>
#include <QLineF>
#include <QPainter>
#include <QTextOption>

using ErrorHandling::Guard;

namespace {

/// Lamp colours: red in the low byte, then green, then blue.
constexpr qint32 AtRest = 0x808080;
constexpr qint32 Active = 0x0000FF;
constexpr qint32 OtherState = 0xFF00FF;

constexpr qreal TileRadius = 8;
constexpr qreal LampRadius = 3;
constexpr int Margin = 8;
constexpr int LampGap = 3;
constexpr int LampRows = 2;

/// Shares of a tile's height.
constexpr double HeadShare = 0.24;
constexpr double TitleShare = 0.36;
/// Sizes of the texts in shares of a tile's height.
constexpr double NumberText = 0.18;
constexpr double TypeText = 0.1;
constexpr double TitleText = 0.1;

/// A lamp with a caption: diameter of the disc, number and text in shares of its height.
constexpr double DiscShare = 0.38;
constexpr double DiscText = 0.17;
constexpr double CaptionText = 0.095;

/// Marks of a lamp, in shares of its smaller side.
constexpr double BareStroke = 0.14;
constexpr double DotRadius = 0.22;
constexpr double BareCross = 0.4;
constexpr double RingStroke = 0.06;
constexpr double RingRadius = 0.58;
constexpr double RingRoom = 0.1;
constexpr double CrossFrom = 0.53;
constexpr double CrossTo = 0.72;
constexpr double NumberRadius = 0.34;

constexpr int MissingText = 714103;

QLabel* MakeLabel(QWidget* parent, const char* name, Qt::Alignment side) {
    auto* label = new QLabel(parent);
    label->setObjectName(QString::fromLatin1(name));
    label->setAlignment(side | Qt::AlignVCenter);
    label->setTextFormat(Qt::PlainText);
    label->setAttribute(Qt::WA_TransparentForMouseEvents);
    return label;
}

} // namespace

bool IsMissing(const PanelClass& panel) {
    constexpr qint16 ToldFailures = 3;
    return panel.ErrCptr(1) > ToldFailures || panel.ErrCptr(2) > 0;
}

Voyant::Voyant(QWidget* parent)
    : QWidget(parent) {}

QColor Voyant::ColourOf(qint16 state) {
    return Colours::FromBgr(state == 0 ? AtRest : state == 1 ? Active : OtherState);
}

void Voyant::setState(qint16 state, bool missing) {
    if (state == state_ && missing == missing_)
        return;
    state_ = state;
    missing_ = missing;
    colour_ = ColourOf(state);
    update();
}

QBrush Voyant::Filling() const {
    return missing_ ? QBrush(Theme::QuietInk, Qt::BDiagPattern) : QBrush(colour_);
}

/// On a bare lamp the mark lies inside; a number leaves it the room around the disc.
void Voyant::PaintShape(QPainter& painter, const QRectF& lamp) const {
    if (missing_ || state_ == 0)
        return;
    const bool bare = number_ == 0;
    const double side = qMin(lamp.width(), lamp.height());
    const QColor ink = bare ? Colours::InkOn(colour_) : QColor(Qt::white);
    painter.setPen(QPen(ink, qMax(2.0, side * (bare ? BareStroke : RingStroke))));
    painter.setBrush(Qt::NoBrush);
    if (state_ == 1 && bare) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(ink);
        painter.drawEllipse(lamp.center(), side * DotRadius, side * DotRadius);
    } else if (state_ == 1) {
        painter.drawEllipse(lamp.center(), side * RingRadius, side * RingRadius);
    } else {
        for (const double angle : {45.0, 135.0, 225.0, 315.0}) {
            const double from = bare ? 0 : side * CrossFrom;
            const double to = side * (bare ? BareCross : CrossTo);
            painter.drawLine(QLineF::fromPolar(from, angle).p2() + lamp.center(),
                             QLineF::fromPolar(to, angle).p2() + lamp.center());
        }
    }
}

void Voyant::setCaption(int number, const QString& text) {
    number_ = number;
    text_ = text;
    update();
}

void Voyant::paintEvent(QPaintEvent*) {
    if (number_ > 0) {
        PaintCaptioned();
        return;
    }
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(missing_ ? QBrush(Theme::Field) : QBrush(colour_));
    painter.drawRoundedRect(rect(), LampRadius, LampRadius);
    if (missing_) {
        painter.setPen(QPen(Theme::QuietInk, 1));
        painter.setBrush(Filling());
        painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), LampRadius,
                                LampRadius);
    }
    PaintShape(painter, rect());
}

void Voyant::PaintCaptioned() {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(Theme::Edge, 1));
    painter.setBrush(Theme::Tile);
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), TileRadius, TileRadius);

    const double side = height() * DiscShare;
    const QRectF disc((width() - side) / 2, Margin + side * RingRoom, side, side);
    painter.setPen(Qt::NoPen);
    painter.setBrush(missing_ ? QBrush(Theme::Field) : QBrush(colour_));
    painter.drawEllipse(disc);
    if (missing_) {
        painter.setPen(QPen(Theme::QuietInk, 1));
        painter.setBrush(Filling());
        painter.drawEllipse(disc);
        painter.setPen(Qt::NoPen);
        painter.setBrush(Theme::Field);
        painter.drawEllipse(disc.center(), side * NumberRadius, side * NumberRadius);
    }
    PaintShape(painter, disc);
    painter.setPen(missing_ ? Theme::Ink : Colours::InkOn(colour_));
    painter.setFont(Theme::Text(qRound(height() * DiscText), true));
    painter.drawText(disc, Qt::AlignCenter, QString::number(number_));

    painter.setPen(Theme::Ink);
    painter.setFont(Theme::Text(qRound(height() * CaptionText)));
    const QRectF room = QRectF(rect()).adjusted(
        Margin / 2.0, disc.bottom() + side * RingRoom + Margin / 2.0, -Margin / 2.0, -Margin / 2.0);
    QTextOption option(Qt::AlignHCenter | Qt::AlignTop);
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    painter.drawText(room, text_, option);
}

Telecommande::Telecommande(QWidget* parent)
    : QWidget(parent)
    , imgButton_(new TouchImage(this))
    , lblNumPan_(MakeLabel(imgButton_, "lblNumPan", Qt::AlignLeft))
    , lblTypePan_(MakeLabel(imgButton_, "lblTypePan", Qt::AlignRight))
    , lblPnlTitle_(MakeLabel(imgButton_, "lblPnlTitle", Qt::AlignLeft)) {
    imgButton_->setObjectName(QStringLiteral("imgButton"));
    imgButton_->setCursor(Theme::TouchPointer());
    lblTypePan_->setProperty("quiet", true);
    lblPnlTitle_->setWordWrap(true);
    connect(imgButton_, &TouchImage::clicked, this, &Telecommande::Click);
}

void Telecommande::setPanel(const PanelClass* panel) {
    Guard("Telecommande.Panel", [&] {
        panel_ = panel;
        lblNumPan_->setText(panel ? Bytes::Padded(panel->Numero(), 2) : QString());
        lblTypePan_->setText(panel ? ModuleName(panel->Model()) : QString());
        lblPnlTitle_->setText(panel ? panel->TitleLine() : QString());
        MakeLamps(panel ? panel->ChannelCount() : 0);
        UserControl_Resize();
    });
}

void Telecommande::MakeLamps(int count) {
    qDeleteAll(lamps_);
    lamps_.clear();
    for (int channel = 1; channel <= count; ++channel) {
        auto* lamp = new Voyant(imgButton_);
        lamp->setObjectName(QStringLiteral("lblVoyant_%1").arg(channel));
        lamp->setAttribute(Qt::WA_TransparentForMouseEvents);
        lamp->show();
        lamps_.append(lamp);
    }
}

void Telecommande::Update() {
    Guard("Telecommande.Update", [&] {
        if (panel_ == nullptr)
            return;
        const bool missing = IsMissing(*panel_);
        const QString type = missing ? GetText(MissingText) : ModuleName(panel_->Model());
        // Each turn of the bus comes here: a style that is set anew is worked out anew.
        if (type != lblTypePan_->text()) {
            lblTypePan_->setText(type);
            lblTypePan_->setStyleSheet(missing ? QStringLiteral("color: #FFA64D;") : QString());
        }
        for (int i = 0; i < lamps_.size(); ++i)
            lamps_[i]->setState(panel_->Channel(i + 1).State(), missing);
    });
}

void Telecommande::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    UserControl_Resize();
}

void Telecommande::UserControl_Resize() {
    Guard("Telecommande.UserControl_Resize", [&] {
        imgButton_->setGeometry(rect());
        const QRect inner = rect().adjusted(Margin, Margin, -Margin, -Margin);
        const int head = qRound(inner.height() * HeadShare);
        const int title = qRound(inner.height() * TitleShare);
        const int half = inner.width() / 2;
        lblNumPan_->setFont(Theme::Text(qRound(height() * NumberText), true));
        lblTypePan_->setFont(Theme::Text(qRound(height() * TypeText)));
        lblPnlTitle_->setFont(Theme::Text(qRound(height() * TitleText)));
        lblNumPan_->setGeometry(inner.x(), inner.y(), half, head);
        lblTypePan_->setGeometry(inner.x() + half, inner.y(), inner.width() - half, head);
        lblPnlTitle_->setGeometry(inner.x(), inner.y() + head, inner.width(), title);
        PlaceLamps(inner.adjusted(0, head + title + LampGap, 0, 0));
    });
}

void Telecommande::PlaceLamps(const QRect& area) {
    const int columns = int(lamps_.size() + LampRows - 1) / LampRows;
    for (int i = 0; i < lamps_.size(); ++i) {
        const int column = i % columns;
        const int row = i / columns;
        // Edges are worked out one by one, so that rounding never adds up.
        const int left = area.x() + column * (area.width() + LampGap) / columns;
        const int right = area.x() + (column + 1) * (area.width() + LampGap) / columns - LampGap;
        const int top = area.y() + row * (area.height() + LampGap) / LampRows;
        const int bottom = area.y() + (row + 1) * (area.height() + LampGap) / LampRows - LampGap;
        lamps_[i]->setGeometry(left, top, right - left, bottom - top);
    }
}
