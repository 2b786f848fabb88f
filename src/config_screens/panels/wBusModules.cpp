#include "config_screens/panels/wBusModules.h"

#include "config_screens/panel/PanelEditor.h"
#include "config_screens/panels/dlgBusCopy.h"
#include "core/Bytes.h"
#include "core/Config.h"
#include "core/ErrorHandling.h"
#include "core/Forms.h"
#include "core/Message.h"
#include "core/Pointer.h"
#include "core/SLVfonctions.h"
#include "core/Trace.h"
#include "model/ChannelSheet.h"
#include "model/CurrentConfig.h"
#include "model/Models.h"
#include "platform/FileWriting.h"
#include "platform/RunTimeError.h"
#include "screens/dialogs/FilePicker.h"
#include "screens/dialogs/dlgKeyboard.h"
#include "screens/dialogs/wHelp.h"
#include "screens/touch/Colours.h"
#include "screens/touch/ModalDialog.h"
#include "screens/touch/Navigation.h"
#include "screens/touch/Theme.h"
#include "screens/touch/TouchImage.h"
#include "ui_wBusModules.h"

#include <QFile>
#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <QScopeGuard>

using ErrorHandling::Guard;

namespace {

enum Navigation { PageBack = 1, PageOn = 2 };
enum SheetImages { FromSheet, ToSheet };

const QString Navig = QStringLiteral("imgNavig");
const QString Tiles = QStringLiteral("imgPanneau");
const QString Sheets = QStringLiteral("imgImportExport");

constexpr int TilesAPage = 16;
constexpr int TilesInRow = 4;
constexpr QRect FirstTile(8, 58, 193, 95);
constexpr int PitchX = 197;
constexpr int PitchY = 99;
constexpr int Margin = 8;
constexpr int HeadHeight = 26;
constexpr int NumberWidth = 44;
constexpr int NumberPixels = 20;
constexpr int TypePixels = 15;
constexpr int TitlePixels = 16;
/// Below this a title is hard to read from where an operator stands.
constexpr double LeastContrast = 4.5;

constexpr int TextFiles = 50004;
constexpr int Exported = 300510;
constexpr int Imported = 300511;
constexpr int StoppedAt = 300512;
constexpr int FromUnicode = 300513;
constexpr int LargestSheet = 16 * 1024 * 1024;

QString ControlName(const char* array, int index) {
    return QLatin1String(array) + u'_' + QString::number(index);
}

/// A cross over what is not in service; touches go through it.
class Cross : public QWidget {
public:
    explicit Cross(QWidget* parent)
        : QWidget(parent) {
        setAttribute(Qt::WA_TransparentForMouseEvents);
    }

protected:
    void paintEvent(QPaintEvent*) override {
        constexpr int Inset = 10;
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QPen(Theme::Dormant, 3));
        // Number and model stay legible above it.
        const QRect area = rect().adjusted(Inset, HeadHeight + 4, -Inset, -Inset);
        painter.drawLine(area.topLeft(), area.bottomRight());
        painter.drawLine(area.bottomLeft(), area.topRight());
    }
};

QLabel* AddLabel(QWidget* tile, const QString& name, const QRect& area, const QFont& font,
                 Qt::Alignment alignment) {
    auto* label = new QLabel(tile);
    label->setObjectName(name);
    label->setGeometry(area);
    label->setFont(font);
    label->setAlignment(alignment);
    label->setAttribute(Qt::WA_TransparentForMouseEvents);
    return label;
}

/// Throws RunTimeError.
QByteArray ContentOf(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        throw platform::RunTimeError(file.exists() ? platform::errors::PathAccess
                                                   : platform::errors::FileNotFound);
    QByteArray content = file.read(LargestSheet);
    if (file.error() != QFileDevice::NoError)
        throw platform::RunTimeError(platform::errors::DeviceIo);
    return content;
}

} // namespace

wBusModules::wBusModules()
    : ConfigForm(FormNames::wBusModules)
    , ui_(std::make_unique<Ui::wBusModules>()) {
    ui_->setupUi(this);
    MakeTiles();
    Prepare();
    panelPage_ = Bytes::ShortVal(
        IniRead(QStringLiteral("General"), QStringLiteral("PanelPage"), QStringLiteral("1")));
    OnClick(Tiles, [this](int index) { imgPanneau_Click(index); });
    OnClick(Navig, [this](int index) { imgNavig_Click(index); });
    OnClick(Sheets, [this](int index) { imgImportExport_Click(index); });
    OnClick(ui_->imgCopyPanel, [this] { imgCopyPanel_Click(); });
    OnClick(ui_->imgMiroirs, [this] { imgMiroirs_Click(); });
    OnClick(ui_->lblMiroirs, [this] { imgMiroirs_Click(); });
    HabillePanneaux();
    ShowArrows();
}

wBusModules::~wBusModules() = default;

/// The words of a tile lie on it, so that a touch on any of them is one on the tile.
void wBusModules::MakeTiles() {
    for (int i = 0; i < TilesAPage; ++i) {
        auto* tile = new TouchImage(this);
        tile->setObjectName(Tiles + u'_' + QString::number(i));
        tile->setGeometry(FirstTile.translated(i % TilesInRow * PitchX, i / TilesInRow * PitchY));
        const int width = FirstTile.width() - 2 * Margin;
        AddLabel(tile, ControlName("lblNumPan", i), {Margin, 2, NumberWidth, HeadHeight},
                 Theme::Text(NumberPixels, true), Qt::AlignLeft | Qt::AlignVCenter);
        AddLabel(tile, ControlName("lblTypePan", i),
                 {Margin + NumberWidth, 2, width - NumberWidth, HeadHeight},
                 Theme::Text(TypePixels), Qt::AlignRight | Qt::AlignVCenter);
        auto* title =
            AddLabel(tile, ControlName("lblLblPan", i),
                     {Margin, 2 + HeadHeight, width, FirstTile.height() - HeadHeight - Margin},
                     Theme::Text(TitlePixels), Qt::AlignCenter);
        title->setWordWrap(true);
        auto* cross = new Cross(tile);
        cross->setObjectName(ControlName("imgCroix", i));
        cross->setGeometry(tile->rect());
    }
}

void wBusModules::HabillePanneaux() {
    Guard("wBusModules.HabillePanneaux", [&] {
        panelPage_ = qBound(1, panelPage_, ConfigClass::PanelCount);
        for (int tile = 0; tile < TilesAPage; ++tile)
            ShowTile(tile);
        const int last = qMin(panelPage_ + TilesAPage - 1, ConfigClass::PanelCount);
        ui_->lblPage->setText(QStringLiteral("%1 - %2").arg(panelPage_).arg(last));
    });
}

/// A page that the settings begin elsewhere may end behind the last panel.
void wBusModules::ShowTile(int tile) {
    const int number = panelPage_ + tile;
    Control(Tiles, tile)->setVisible(number <= ConfigClass::PanelCount);
    if (number > ConfigClass::PanelCount)
        return;
    const PanelClass& panel = Global::Configuration().Panel(number);
    Control<QLabel>(QStringLiteral("lblNumPan"), tile)->setText(Bytes::Padded(number, 2));
    Control<QLabel>(QStringLiteral("lblTypePan"), tile)->setText(ModuleName(panel.Model()));
    auto* title = Control<QLabel>(QStringLiteral("lblLblPan"), tile);
    QStringList lines = panel.Title().split(u'|');
    // What no blank parts is cut, and not left to run over the edge.
    for (QString& line : lines) {
        if (!line.trimmed().contains(u' '))
            line = title->fontMetrics().elidedText(line, Qt::ElideRight, title->width());
    }
    title->setText(lines.join(u'\n'));
    const QColor colour = Colours::FromBgr(panel.TitleColor());
    const bool legible = Colours::Contrast(colour, Theme::Tile) >= LeastContrast;
    title->setStyleSheet(QStringLiteral("QLabel { color: %1; background: %2; border-radius: 4px; }")
                             .arg(colour.name(), legible ? QStringLiteral("transparent")
                                                         : Colours::InkOn(colour).name()));
    Control(QStringLiteral("imgCroix"), tile)
        ->setVisible(panel.Model() == Models::None || !panel.Active());
}

void wBusModules::ShowArrows() {
    Control(Navig, PageBack)->setEnabled(panelPage_ >= TilesAPage);
    Control(Navig, PageOn)->setEnabled(panelPage_ < ConfigClass::PanelCount - TilesAPage - 1);
}

void wBusModules::imgNavig_Click(int index) {
    switch (index) {
    case ToMenu:
        Leave();
        return;
    case PageBack:
        if (panelPage_ > TilesAPage)
            panelPage_ -= TilesAPage;
        HabillePanneaux();
        break;
    case PageOn:
        if (panelPage_ < ConfigClass::PanelCount - TilesAPage)
            panelPage_ += TilesAPage;
        HabillePanneaux();
        break;
    case Help:
        ShowHelp();
        break;
    default:
        break;
    }
    ShowArrows();
}

void wBusModules::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_F12)
        AskText(QString(), QString(), PanelClass::MaxTitle);
    else
        ConfigForm::keyPressEvent(event);
}

void wBusModules::imgPanneau_Click(int index) {
    auto* editor = dynamic_cast<PanelEditor*>(Forms::Load(FormNames::wBusPanneau));
    if (editor == nullptr)
        return;
    editor->setNumModule(qint16(panelPage_ + index));
    Open(FormNames::wBusPanneau);
}

void wBusModules::imgMiroirs_Click() {
    Open(FormNames::wBusMiroirs);
}

void wBusModules::Open(const QString& form) {
    if (OpenScreen(form))
        Unload();
}

void wBusModules::imgCopyPanel_Click() {
    RunDialog(
        new dlgBusCopy,
        [this](dlgBusCopy& dialog) {
            connect(&dialog, &dlgBusCopy::Copied, this, &wBusModules::HabillePanneaux);
        },
        [](const dlgBusCopy&) { return true; });
}

void wBusModules::imgImportExport_Click(int index) {
    Guard("wBusModules.imgImportExport_Click", [&] { index == ToSheet ? Export() : Import(); });
}

void wBusModules::Export() {
    const QPointer<wBusModules> self(this);
    const QString path = FilePicker::SaveAs(QString(), QString(), GetText(TextFiles, true));
    if (path.isEmpty() || !IsLoaded(self.data()))
        return;
    Pointer::Hourglass();
    const auto done = qScopeGuard([] { Pointer::Default(); });
    const QByteArray sheet = ChannelSheet::Export(Global::Configuration());
    platform::ReplaceFile(path, sheet);
    Pointer::Default();
    Message(GetText(Exported).replace(u'$', QString::number(sheet.count('\n') - 1)),
            Messages::Information);
}

/// What was taken over stays, whatever comes behind it.
void wBusModules::Import() {
    const QPointer<wBusModules> self(this);
    const QString path = FilePicker::Open(QString(), QString(), GetText(TextFiles, true));
    if (path.isEmpty() || !IsLoaded(self.data()))
        return;
    ChannelSheet::Outcome outcome;
    {
        Pointer::Hourglass();
        const auto done = qScopeGuard([] { Pointer::Default(); });
        outcome = ChannelSheet::Import(Global::Configuration(), ContentOf(path));
    }
    QString told = GetText(Imported).replace(u'$', QString::number(outcome.channels));
    if (outcome.wasUnicode)
        told += QStringLiteral("\r\n") + GetText(FromUnicode);
    if (outcome.badLine > 0) {
        const QString where = GetText(StoppedAt)
                                  .replace(QStringLiteral("$1"), QString::number(outcome.badLine))
                                  .replace(QStringLiteral("$2"), outcome.badColumn);
        Trace::Note(QStringLiteral("IMPORT STOPPED AT LINE %1 COLUMN %2")
                        .arg(outcome.badLine)
                        .arg(outcome.badColumn));
        told += QStringLiteral("\r\n") + where;
    }
    Message(told, outcome.badLine > 0 ? Messages::Critical : Messages::Information);
    if (IsLoaded(self.data()))
        HabillePanneaux();
}
