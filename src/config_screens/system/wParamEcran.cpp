#include "config_screens/system/wParamEcran.h"

#include "bus/wPolling.h"
#include "core/Bytes.h"
#include "model/CurrentConfig.h"
#include "screens/dialogs/dlgListInput.h"
#include "screens/dialogs/wHelp.h"
#include "screens/touch/KeptEdit.h"
#include "screens/touch/Navigation.h"
#include "screens/touch/ValueLabel.h"
#include "ui_wParamEcran.h"

#include <QPointer>

namespace {

struct Road {
    QString cells; ///< array of its column
    bool (ConfigClass::*option)(int) const;
    void (ConfigClass::*setOption)(int, bool);
};

const std::array<Road, wParamEcran::RoadCount> Roads = {{
    {QStringLiteral("lblAffich"), &ConfigClass::OptionScreen, &ConfigClass::setOptionScreen},
    {QStringLiteral("lblHisto"), &ConfigClass::OptionHisto, &ConfigClass::setOptionHisto},
    {QStringLiteral("lblPrint"), &ConfigClass::OptionPrinter, &ConfigClass::setOptionPrinter},
    {QStringLiteral("lblKlaxon"), &ConfigClass::OptionKlaxon, &ConfigClass::setOptionKlaxon},
}};

const QString Set = QStringLiteral("X");
const QString Minutes = QStringLiteral("*|0|60");

} // namespace

struct wParamEcran::Memory {
    KeptEdit<Edit> edit;
};

wParamEcran::Memory& wParamEcran::Kept() {
    static Memory memory;
    return memory;
}

wParamEcran::Edit wParamEcran::OfSite() {
    const ConfigClass& site = Global::Configuration();
    Edit edit;
    for (size_t road = 0; road < Roads.size(); ++road) {
        for (int kind = 0; kind < KindCount; ++kind)
            edit.options[road][size_t(kind)] = (site.*Roads[road].option)(kind);
    }
    edit.inactivity = site.InactivityTime();
    return edit;
}

wParamEcran::wParamEcran()
    : ConfigForm(FormNames::wParamEcran)
    , ui_(std::make_unique<Ui::wParamEcran>())
    , edit_(&wParamEcran::OfSite) {
    ui_->setupUi(this);
    Prepare();
    for (int road = 0; road < RoadCount; ++road)
        OnClick(Roads[size_t(road)].cells, [this, road](int kind) { Toggle(road, kind); });
    OnClick(QStringLiteral("imgControl"), [this](int) { imgControl_Click(); });
    OnClick(ui_->lblInacTime, [this] { imgControl_Click(); });
    OnClick(QStringLiteral("imgNavig"), [this](int index) { imgNavig_Click(index); });
    OnClick(ui_->imgClose, [this] { LeaveToMenu(int(MenuTile::Parameters)); });
    if (auto kept = Kept().edit.Take(edit_.Original())) {
        *edit_ = *kept;
        ShowKept(true);
    }
    ShowEdit();
}

wParamEcran::~wParamEcran() = default;

void wParamEcran::ShowEdit() {
    for (size_t road = 0; road < Roads.size(); ++road) {
        for (int kind = 0; kind < KindCount; ++kind)
            Control<ValueLabel>(Roads[road].cells, kind)
                ->setCaption(edit_->options[road][size_t(kind)] ? Set : QString());
    }
    ui_->lblInacTime->setCaption(QString::number(edit_->inactivity));
}

void wParamEcran::Toggle(int road, int kind) {
    bool& option = edit_->options[size_t(road)][size_t(kind)];
    option = !option;
    ShowEdit();
}

void wParamEcran::imgControl_Click() {
    const QPointer<wParamEcran> self(this);
    const auto value = AskValue(this, Minutes, ui_->lblInacTime->Caption());
    if (!value || !IsLoaded(self.data()))
        return;
    edit_->inactivity = Bytes::ShortVal(*value);
    ShowEdit();
}

bool wParamEcran::Take() {
    ConfigClass& site = Global::Configuration();
    for (size_t road = 0; road < Roads.size(); ++road) {
        for (int kind = 0; kind < KindCount; ++kind)
            (site.*Roads[road].setOption)(kind, edit_->options[road][size_t(kind)]);
    }
    site.setInactivityTime(qint16(edit_->inactivity));
    if (Polling() != nullptr)
        Polling()->SetupUserSleep();
    SaveSite();
    return true;
}

void wParamEcran::Keep() {
    Kept().edit.Keep(edit_.Original(), *edit_);
}

void wParamEcran::imgNavig_Click(int index) {
    if (index == ToMenu)
        Leave();
    else if (index == Help)
        ShowHelp();
}
