#include "screens/remote/wTeleCmdes.h"

#include "bus/wPolling.h"
#include "core/ErrorHandling.h"
#include "core/FormNames.h"
#include "core/Operator.h"
#include "model/CurrentConfig.h"
#include "model/Models.h"
#include "screens/remote/Telecommande.h"
#include "screens/remote/wTeleCmde.h"
#include "ui_wTeleCmdes.h"

using ErrorHandling::Guard;

namespace {

enum Navigation { PageBack = 1, PageOn = 2, Leave = 5 };

const QString Tiles = QStringLiteral("Telecmde");
const QString Navig = QStringLiteral("imgNavig");

constexpr int TilesAPage = 12;
constexpr int Columns = 4;
constexpr int Rows = TilesAPage / Columns;

} // namespace

wTeleCmdes::wTeleCmdes()
    : ScreenForm(FormNames::wTeleCmdes)
    , ui_(std::make_unique<Ui::wTeleCmdes>()) {
    ui_->setupUi(this);
    Prepare();
    OnClick(Navig, [this](int index) { imgNavig_Click(index); });
    if (Polling() != nullptr)
        connect(Polling(), &wPolling::PollDone, this, &wTeleCmdes::UpdateTiles);
    Form_Load();
}

wTeleCmdes::~wTeleCmdes() = default;

void wTeleCmdes::Form_Load() {
    Guard("wTeleCmdes.Form_Load", [&] {
        for (int number = 1; number <= ConfigClass::PanelCount; ++number) {
            const PanelClass& panel = Global::Configuration().Panel(number);
            if (panel.Active() && Models::IsRemoteControlled(panel.Model()))
                panels_.append(number);
        }
        ui_->lblNone->setVisible(panels_.isEmpty());
        HabillePanneaux();
        ShowArrows();
    });
}

void wTeleCmdes::Form_Activate() {
    UpdateTiles();
}

/// Tile 0 is the pattern of all others and never shows.
void wTeleCmdes::HabillePanneaux() {
    Guard("wTeleCmdes.HabillePanneaux", [&] {
        for (const int index : Indices(Tiles)) {
            if (index > 0)
                delete Control(Tiles, index);
        }
        for (int i = 1; i <= TilesAPage && pageBase_ + i - 1 <= panels_.size(); ++i)
            MakeTile(i, panels_[pageBase_ + i - 2]);
    });
}

void wTeleCmdes::MakeTile(int place, int panel) {
    const QWidget& pattern = *ui_->Telecmde_0;
    QWidget* area = ui_->fraTiles;
    auto* tile = new Telecommande(area);
    tile->setObjectName(Tiles + u'_' + QString::number(place));
    const int column = (place - 1) % Columns;
    const int row = (place - 1) / Columns;
    tile->setGeometry(column * (area->width() - pattern.width()) / (Columns - 1),
                      row * (area->height() - pattern.height()) / (Rows - 1), pattern.width(),
                      pattern.height());
    tile->setPanel(&Global::Configuration().Panel(panel));
    tile->Update();
    connect(tile, &Telecommande::Click, this, [this, tile] {
        const Operator::Acting acting;
        Guard("wTeleCmdes.Telecmde_Click", [&] { OpenPanel(*tile); });
    });
    tile->show();
}

/// An arrow is there when a page lies on its side.
void wTeleCmdes::ShowArrows() {
    Control(Navig, PageBack)->setVisible(pageBase_ > TilesAPage);
    Control(Navig, PageOn)->setVisible(pageBase_ + TilesAPage <= panels_.size());
    const auto pages = qMax<qsizetype>(1, (panels_.size() + TilesAPage - 1) / TilesAPage);
    ui_->lblPage->setText(QStringLiteral("%1 / %2").arg(pageBase_ / TilesAPage + 1).arg(pages));
    ui_->lblPage->setVisible(pages > 1);
}

void wTeleCmdes::imgNavig_Click(int index) {
    if (index == Leave) {
        Close();
        return;
    }
    if (index == PageBack && pageBase_ > TilesAPage)
        pageBase_ -= TilesAPage;
    else if (index == PageOn && pageBase_ + TilesAPage <= panels_.size())
        pageBase_ += TilesAPage;
    HabillePanneaux();
    ShowArrows();
}

void wTeleCmdes::OpenPanel(const Telecommande& tile) {
    auto* screen = dynamic_cast<wTeleCmde*>(Forms::Load(FormNames::wTeleCmde));
    if (screen == nullptr)
        return;
    screen->setPanel(tile.Panel());
    screen->Show();
}

void wTeleCmdes::UpdateTiles() {
    for (Telecommande* tile : ui_->fraTiles->findChildren<Telecommande*>())
        tile->Update();
}

/// Back to where the operator came from: the history lies above the console while it is there.
void wTeleCmdes::Close() {
    const QString opener =
        NbInstances(FormNames::wHistoric) > 0 ? FormNames::wHistoric : FormNames::wRunAlarms;
    Unload();
    Forms::Show(opener);
    Forms::BringToFront(opener);
}
