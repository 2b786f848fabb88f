#include "config_screens/panel/dlgColour.h"

#include "core/Config.h"
#include "screens/touch/Colours.h"
#include "screens/touch/ModalDialog.h"
#include "screens/touch/Theme.h"
#include "ui_dlgColour.h"

#include <QPushButton>
#include <array>

namespace {

const QString Cells = QStringLiteral("cmdColour");
const QString Controls = QStringLiteral("imgControl");

constexpr int Columns = 8;
constexpr QRect FirstCell(16, 62, 92, 54);
constexpr int PitchX = 97;
constexpr int PitchY = 58;
constexpr int CellPixels = 15;
constexpr int TitleColour = 300607;

/// Six rows: what screens have always shown, and seven hues with a grey from dark to light.
QColor ColourOf(int cell) {
    static const std::array<QColor, Columns> pure{
        QColor(0xFF, 0xFF, 0x00), QColor(0xFF, 0xFF, 0xFF), QColor(0x00, 0xFF, 0xFF),
        QColor(0x00, 0xFF, 0x00), QColor(0xFF, 0x00, 0x00), QColor(0xFF, 0x00, 0xFF),
        QColor(0x00, 0x00, 0xFF), QColor(0x00, 0x00, 0x00)};
    constexpr std::array<int, Columns - 1> Hues{0, 30, 50, 100, 180, 215, 285};
    constexpr std::array<int, 5> Lightness{70, 105, 140, 175, 212};
    constexpr int Saturation = 190;
    const int column = cell % Columns;
    const int row = cell / Columns;
    if (row == 0)
        return pure[size_t(column)];
    const int light = Lightness[size_t(row - 1)];
    if (column == Columns - 1)
        return {light, light, light};
    return QColor::fromHsl(Hues[size_t(column)], Saturation, light);
}

/// The colour in use has a frame that shows on any other.
QString StyleOf(const QColor& colour, bool inUse) {
    const QColor ink = Colours::InkOn(colour);
    return QStringLiteral("QPushButton { background: %1; color: %2; border: %3; "
                          "border-radius: 6px; }")
        .arg(colour.name(), ink.name(),
             inUse ? QStringLiteral("5px double %1").arg(ink.name())
                   : QStringLiteral("1px solid %1").arg(Theme::Edge.name()));
}

} // namespace

dlgColour::dlgColour()
    : ScreenForm(QStringLiteral("dlgColour"), Kind::Dialog)
    , ui_(std::make_unique<Ui::dlgColour>()) {
    ui_->setupUi(this);
    MakeCells();
    Prepare();
    OnClick(Cells, [this](int cell) { setColour(Colours::ToBgr(ColourOf(cell))); });
    OnClick(Controls, [this](int index) { imgControl_Click(index); });
}

dlgColour::~dlgColour() = default;

void dlgColour::MakeCells() {
    for (int cell = 0; cell < ColourCount; ++cell) {
        auto* button = new QPushButton(this);
        button->setObjectName(Cells + u'_' + QString::number(cell));
        button->setFocusPolicy(Qt::NoFocus);
        button->setFont(Theme::Text(CellPixels, true));
        button->setGeometry(FirstCell.translated(cell % Columns * PitchX, cell / Columns * PitchY));
        const QColor colour = ColourOf(cell);
        button->setText(QString::number(Colours::Contrast(colour, Colours::InkOn(colour)), 'f', 1));
    }
}

void dlgColour::setColour(qint32 colour) {
    colour_ = colour;
    const QColor shown = Colours::FromBgr(colour);
    for (int cell = 0; cell < ColourCount; ++cell)
        Control(Cells, cell)->setStyleSheet(StyleOf(ColourOf(cell), ColourOf(cell) == shown));
    ui_->lblSample->setStyleSheet(
        QStringLiteral("QLabel { background: %1; color: %2; border-radius: 6px; }")
            .arg(shown.name(), Colours::InkOn(shown).name()));
    ui_->lblOnGround->setStyleSheet(
        QStringLiteral("QLabel { background: %1; color: %2; border-radius: 6px; }")
            .arg(Theme::Field.name(), shown.name()));
}

void dlgColour::setSample(const QString& text) {
    const QString sample = text.isEmpty() ? GetText(TitleColour) : text;
    for (QLabel* label : {ui_->lblSample, ui_->lblOnGround})
        SetCaption(label, label->fontMetrics().elidedText(QString(sample).replace(u'|', u' '),
                                                          Qt::ElideRight, label->width() - 8));
}

void dlgColour::imgControl_Click(int index) {
    ok_ = index == Confirm;
    Hide();
}

std::optional<qint32> AskColour(qint32 present, const QString& sample) {
    return RunDialog(
               new dlgColour,
               [&](dlgColour& dialog) {
                   dialog.setColour(present);
                   dialog.setSample(sample);
               },
               [](const dlgColour& dialog) {
                   return dialog.Ok() ? std::make_optional(dialog.Colour()) : std::nullopt;
               })
        .value_or(std::nullopt);
}
