#include "config_screens/panels/PanelTile.h"

#include "config_screens/panels/PanelTitle.h"
#include "core/Bytes.h"
#include "model/Models.h"
#include "model/PanelClass.h"
#include "screens/touch/Theme.h"

#include <QLabel>
#include <QPainter>

namespace {

constexpr int Margin = 8;
constexpr int HeadTop = 2;
constexpr int HeadHeight = 30;
constexpr int NumberWidth = 48;
constexpr int NumberPixels = 24;
constexpr int TypePixels = 18;
constexpr int TitlePixels = 18;

class Cross : public QWidget {
public:
    using QWidget::QWidget;

protected:
    void paintEvent(QPaintEvent*) override {
        constexpr int Inset = 8;
        constexpr qreal Width = 3;
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QPen(Theme::Dormant, Width, Qt::SolidLine, Qt::RoundCap));
        const QRect area = rect().adjusted(Inset, Inset, -Inset, -Inset);
        painter.drawLine(area.topLeft(), area.bottomRight());
        painter.drawLine(area.bottomLeft(), area.topRight());
    }
};

} // namespace

PanelTile::PanelTile(QWidget* parent, int index, const QRect& area)
    : TouchImage(parent)
    , lblNumPan_(new QLabel(this))
    , lblTypePan_(new QLabel(this))
    , lblLblPan_(new PanelTitle(this))
    , imgCroix_(new Cross(this)) {
    setGeometry(area);
    const int width = area.width() - 2 * Margin;
    const QRect title(Margin, HeadTop + HeadHeight, width,
                      area.height() - HeadTop - HeadHeight - Margin);
    const auto place = [index](QWidget* part, const char* array, const QRect& where) {
        part->setObjectName(QStringLiteral("%1_%2").arg(QLatin1String(array)).arg(index));
        part->setGeometry(where);
        part->setAttribute(Qt::WA_TransparentForMouseEvents);
    };
    setObjectName(QStringLiteral("imgPanneau_%1").arg(index));
    place(lblNumPan_, "lblNumPan", {Margin, HeadTop, NumberWidth, HeadHeight});
    place(lblTypePan_, "lblTypePan",
          {Margin + NumberWidth, HeadTop, width - NumberWidth, HeadHeight});
    place(lblLblPan_, "lblLblPan", title);
    place(imgCroix_, "imgCroix", QRect(QPoint(), area.size()));
    lblNumPan_->setFont(Theme::Text(NumberPixels, true));
    lblTypePan_->setFont(Theme::Text(TypePixels));
    lblTypePan_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    lblLblPan_->setFont(Theme::Text(TitlePixels, true));
    lblLblPan_->setAlignment(Qt::AlignCenter);
    // The words stay legible: the cross lies over the tile and under them.
    lblLblPan_->LieBare();
    imgCroix_->lower();
}

void PanelTile::MakePage(QWidget* parent, int tiles, const QRect& first, int pitchX, int pitchY) {
    constexpr int InRow = 4;
    for (int i = 0; i < tiles; ++i)
        new PanelTile(parent, i, first.translated(i % InRow * pitchX, i / InRow * pitchY));
}

void PanelTile::setPanel(int number, const PanelClass& panel) {
    lblNumPan_->setText(Bytes::Padded(number, 2));
    lblTypePan_->setText(ModuleName(panel.Model()));
    lblLblPan_->setPanel(panel);
    update();
    imgCroix_->setVisible(panel.Model() == Models::None || !panel.Active());
}

void PanelTile::paintEvent(QPaintEvent* event) {
    TouchImage::paintEvent(event);
    QPainter painter(this);
    lblLblPan_->PaintGround(painter, lblLblPan_->geometry());
}
