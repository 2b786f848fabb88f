#include "config_screens/panels/dlgBusCopy.h"

#include "config_screens/SiteEdit.h"
#include "config_screens/panels/PanelTitle.h"
#include "core/Config.h"
#include "core/FormNames.h"
#include "model/CurrentConfig.h"
#include "model/Models.h"
#include "screens/touch/HoldToRepeat.h"
#include "screens/touch/Stepper.h"
#include "screens/touch/TouchImage.h"
#include "screens/touch/ValueLabel.h"
#include "ui_dlgBusCopy.h"

namespace {

enum Ends { Source, Target };
enum Buttons { Close, Confirm };

const QString Numbers = QStringLiteral("lblPanelNo");
const QString Modules = QStringLiteral("lblPanelModel");
const QString Titles = QStringLiteral("lblPanelTitle");
const QString Arrows = QStringLiteral("imgControl");
const QString ButtonArray = QStringLiteral("cmdBoutons");

constexpr int CopiedTo = 300516;

} // namespace

dlgBusCopy::dlgBusCopy()
    : ScreenForm(FormNames::dlgBusCopy, Kind::Dialog)
    , ui_(std::make_unique<Ui::dlgBusCopy>()) {
    ui_->setupUi(this);
    Prepare();
    auto* repeat = new HoldToRepeat(this);
    for (const int end : {Source, Target}) {
        auto* stepper = new Stepper(
            *repeat, Control<ValueLabel>(Numbers, end),
            {Control<TouchImage>(Arrows, 2 * end), Control<TouchImage>(Arrows, 2 * end + 1)}, 2);
        stepper->setBounds(1, ConfigClass::PanelCount);
        connect(stepper, &Stepper::Changed, this, &dlgBusCopy::lblPanelNo_Change);
        panels_[size_t(end)] = stepper;
    }
    OnClick(Arrows,
            [this](int index) { panels_[size_t(index / 2)]->StepBy(index % 2 == 0 ? -1 : 1); });
    OnClick(ButtonArray, [this](int index) { cmdBoutons_Click(index); });
    lblPanelNo_Change();
}

dlgBusCopy::~dlgBusCopy() = default;

void dlgBusCopy::lblPanelNo_Change() {
    for (const int end : {Source, Target}) {
        const PanelClass& panel = Global::Configuration().Panel(panels_[size_t(end)]->Value());
        Control<QLabel>(Modules, end)->setText(ModuleName(panel.Model()));
        Control<PanelTitle>(Titles, end)->setPanel(panel);
    }
    ui_->lblCopied->clear();
    Control(ButtonArray, Confirm)->setEnabled(panels_[Source]->Value() != panels_[Target]->Value());
}

void dlgBusCopy::cmdBoutons_Click(int index) {
    if (index == Confirm)
        Copy();
    else
        Hide();
}

void dlgBusCopy::Copy() {
    ConfigClass& site = Global::Configuration();
    PanelClass& target = site.Panel(panels_[Target]->Value());
    CopySettings(target, site.Panel(panels_[Source]->Value()));
    target.setNumero(quint8(panels_[Target]->Value()));
    SaveSite();
    lblPanelNo_Change();
    ui_->lblCopied->setText(GetText(CopiedTo)
                                .replace(QStringLiteral("$1"), ui_->lblPanelNo_0->Caption())
                                .replace(QStringLiteral("$2"), ui_->lblPanelNo_1->Caption()));
    Q_EMIT Copied();
}
