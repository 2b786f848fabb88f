#include "config_screens/panels/wBusModules.h"

#include "config_screens/panel/PanelEditor.h"
#include "config_screens/panels/PanelTile.h"
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
#include "screens/dialogs/FilePicker.h"
#include "screens/dialogs/dlgKeyboard.h"
#include "screens/dialogs/wHelp.h"
#include "screens/touch/HoldToRepeat.h"
#include "screens/touch/ModalDialog.h"
#include "screens/touch/Navigation.h"
#include "screens/touch/Position.h"
#include "ui_wBusModules.h"

#include <QPointer>
#include <QScopeGuard>

using ErrorHandling::Guard;

namespace {

enum Navigation { PageBack = 1, PageOn = 2 };
enum SheetImages { FromSheet, ToSheet };

const QString Navig = QStringLiteral("imgNavig");
const QString Tiles = QStringLiteral("imgPanneau");
const QStringList TileParts{Tiles, QStringLiteral("lblNumPan"), QStringLiteral("lblTypePan"),
                            QStringLiteral("lblLblPan"), QStringLiteral("imgCroix")};
const QString Sheets = QStringLiteral("imgImportExport");

constexpr int TilesAPage = 16;
constexpr QRect FirstTile(8, 58, 193, 107);
constexpr int PitchX = 197;
constexpr int PitchY = 111;
constexpr int TextFiles = 50004;
constexpr int Exported = 300510;
constexpr int Imported = 300511;
constexpr int StoppedAt = 300512;
constexpr int FromUnicode = 300513;
constexpr int NotGivenBack = 300514;
constexpr int PanelNumber = 300515;
constexpr int NumberDigits = 2;
const QString LineBreak = QStringLiteral("\r\n");
const QString Files = QStringLiteral("Files");
const QString SheetKey = QStringLiteral("ImportExport");

} // namespace

wBusModules::wBusModules()
    : ConfigForm(FormNames::wBusModules)
    , ui_(std::make_unique<Ui::wBusModules>()) {
    ui_->setupUi(this);
    PanelTile::MakePage(this, TilesAPage, FirstTile, PitchX, PitchY);
    Prepare();
    OnKey(Qt::Key_F12, [this] { AskPanel(); });
    for (const QString& part : TileParts)
        OnClick(part, [this](int index) { imgPanneau_Click(index); });
    OnClick(Navig, [this](int index) { imgNavig_Click(index); });
    OnClick(Sheets, [this](int index) { imgImportExport_Click(index); });
    OnClick(ui_->imgCopyPanel, [this] { imgCopyPanel_Click(); });
    OnClick(ui_->imgMiroirs, [this] { imgMiroirs_Click(); });
    OnClick(ui_->lblMiroirs, [this] { imgMiroirs_Click(); });
    auto* repeat = new HoldToRepeat(this);
    for (const int index : {PageBack, PageOn})
        repeat->Watch(Control(Navig, index), [this, index] { imgNavig_Click(index); });
    GoToPanel(Bytes::ShortVal(
        IniRead(QStringLiteral("General"), QStringLiteral("PanelPage"), QStringLiteral("1"))));
}

wBusModules::~wBusModules() = default;

void wBusModules::HabillePanneaux() {
    Guard("wBusModules.HabillePanneaux", [&] {
        for (int tile = 0; tile < TilesAPage; ++tile)
            Control<PanelTile>(Tiles, tile)
                ->setPanel(panelPage_ + tile, Global::Configuration().Panel(panelPage_ + tile));
        ui_->lblPage->setText(QStringLiteral("%1 - %2 / %3")
                                  .arg(panelPage_)
                                  .arg(panelPage_ + TilesAPage - 1)
                                  .arg(ConfigClass::PanelCount));
    });
}

/// Pages begin at 1, 17, 33 and 49, whatever number the settings or the operator give.
void wBusModules::GoToPanel(int number) {
    const int last = qBound(1, number, ConfigClass::PanelCount) - 1;
    panelPage_ = last - last % TilesAPage + 1;
    HabillePanneaux();
    EnableByPosition(Control(Navig, PageBack), Control(Navig, PageOn), last / TilesAPage,
                     ConfigClass::PanelCount / TilesAPage);
}

void wBusModules::imgNavig_Click(int index) {
    switch (index) {
    case ToMenu:
        Leave();
        return;
    case PageBack:
        GoToPanel(panelPage_ - TilesAPage);
        break;
    case PageOn:
        GoToPanel(panelPage_ + TilesAPage);
        break;
    case Help:
        ShowHelp();
        break;
    default:
        break;
    }
}

/// What there is to type on this screen: where to go.
void wBusModules::AskPanel() {
    const QPointer<wBusModules> self(this);
    const auto number = AskText(GetText(PanelNumber), QString::number(panelPage_), NumberDigits);
    if (number && IsLoaded(self.data()))
        GoToPanel(Bytes::ShortVal(*number));
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
    if (index == ToSheet)
        Export();
    else
        Import();
}

void wBusModules::Export() {
    const QPointer<wBusModules> self(this);
    const QString path = FilePicker::SaveAs(IniRead(Files, SheetKey, QString()), QString(),
                                            GetText(TextFiles, true));
    if (path.isEmpty() || !IsLoaded(self.data()))
        return;
    Pointer::Hourglass();
    const auto done = qScopeGuard([] { Pointer::Default(); });
    const ChannelSheetExport sheet(Global::Configuration());
    sheet.Write(path);
    Pointer::Default();
    IniWrite(Files, SheetKey, FilePicker::Folder(path));
    QString told = GetText(Exported).replace(u'$', QString::number(sheet.Lines()));
    if (sheet.LostPanel() > 0)
        told +=
            LineBreak + GetText(NotGivenBack)
                            .replace(QStringLiteral("$1"), QString::number(sheet.LostPanel()))
                            .replace(QStringLiteral("$2"), QString::number(sheet.LostChannel()));
    Message(told, sheet.LostPanel() > 0 ? Messages::Warning : Messages::Information);
}

/// What was taken over stays, whatever comes behind it.
void wBusModules::Import() {
    const QPointer<wBusModules> self(this);
    const QString path =
        FilePicker::Open(IniRead(Files, SheetKey, QString()), QString(), GetText(TextFiles, true));
    if (path.isEmpty() || !IsLoaded(self.data()))
        return;
    IniWrite(Files, SheetKey, FilePicker::Folder(path));
    ChannelSheetImport sheet(Global::Configuration());
    Pointer::Hourglass();
    const bool through = Guard("wBusModules.imgImportExport_Click", [&] { sheet.Read(path); });
    Pointer::Default();
    if (through || sheet.BadLine() > 0)
        TellOf(sheet);
    if (IsLoaded(self.data()))
        HabillePanneaux();
}

void wBusModules::TellOf(const ChannelSheetImport& sheet) {
    QString told = GetText(Imported)
                       .replace(QStringLiteral("$1"), QString::number(sheet.Lines()))
                       .replace(QStringLiteral("$2"), QString::number(sheet.Changed()));
    if (sheet.IsUnicode())
        told += LineBreak + GetText(FromUnicode);
    if (sheet.BadLine() > 0) {
        Trace::Note(QStringLiteral("IMPORT STOPPED AT LINE %1 COLUMN %2")
                        .arg(sheet.BadLine())
                        .arg(sheet.BadColumn()));
        told += LineBreak + GetText(StoppedAt)
                                .replace(QStringLiteral("$1"), QString::number(sheet.BadLine()))
                                .replace(QStringLiteral("$2"), sheet.BadColumn());
    }
    Message(told, sheet.BadLine() > 0 ? Messages::Warning : Messages::Information);
}
