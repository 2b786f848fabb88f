#include "config_screens/mirrors/dlgEditMirror.h"

#include "core/Config.h"
#include "core/ErrorHandling.h"
#include "core/FormNames.h"
#include "core/Global.h"
#include "core/Message.h"
#include "model/CurrentConfig.h"
#include "model/Models.h"
#include "screens/touch/HoldToRepeat.h"
#include "screens/touch/Interrupted.h"
#include "screens/touch/ValueLabel.h"
#include "ui_dlgEditMirror.h"

#include <QButtonGroup>

using ErrorHandling::Guard;

namespace {

enum Arrows {
    SourcePanelDown,
    SourcePanelUp,
    SourceChannelDown,
    SourceChannelUp,
    TargetPanelDown,
    TargetPanelUp,
    TargetChannelDown,
    TargetChannelUp,
};

const QString ArrowImages = QStringLiteral("imgPlusMoins");
const QString NoChannel = QStringLiteral("---");
constexpr int Incomplete = 20006;
constexpr QChar Separator = u'|';

/// A rule that was being entered when an event took the dialog away.
Interrupted interrupted;

QString WholePanel() {
    return Global::Get().text10100;
}

/// The remote-controlled models report nothing that could be mirrored.
bool CanBeSource(int model) {
    return Models::IsQFamily(model) || model == Models::Q6200XT;
}

void StepPanel(ValueLabel& label, int by) {
    const int number = label.Number() + by;
    if (number >= 1 && number <= ConfigClass::PanelCount)
        label.setCaption(QString::number(number));
}

} // namespace

dlgEditMirror::dlgEditMirror()
    : ScreenForm(FormNames::dlgEditMirror, Kind::Dialog)
    , ui_(std::make_unique<Ui::dlgEditMirror>()) {
    ui_->setupUi(this);
    Prepare();
    auto* kinds = new QButtonGroup(this);
    for (QPushButton* kind : {ui_->optType_1, ui_->optType_2}) {
        kind->setCheckable(true);
        kind->setFocusPolicy(Qt::NoFocus);
        kinds->addButton(kind);
    }
    ui_->optType_1->setChecked(true);
    const auto onChange = [this](ValueLabel* label, const char* name, auto change) {
        connect(label, &ValueLabel::Changed, this,
                [this, name, change] { Guard(name, [&] { (this->*change)(); }); });
    };
    onChange(ui_->lblSrceModNo, "dlgEditMirror.lblSrceModNo_Change",
             &dlgEditMirror::lblSrceModNo_Change);
    onChange(ui_->lblSrceChnlNo, "dlgEditMirror.lblSrceChnlNo_Change",
             &dlgEditMirror::lblSrceChnlNo_Change);
    onChange(ui_->lblDestModNo, "dlgEditMirror.lblDestModNo_Change",
             &dlgEditMirror::lblDestModNo_Change);
    OnClick(QStringLiteral("imgControl"), [this](int index) { imgControl_Click(index); });
    OnClick(ArrowImages, [this](int index) { imgPlusMoins_Click(index); });
    auto* repeat = new HoldToRepeat(this);
    for (const int index : Indices(ArrowImages))
        repeat->Watch(Control(ArrowImages, index), [this, index] { imgPlusMoins_Click(index); });
    lblSrceChnlNo_Change();
}

dlgEditMirror::~dlgEditMirror() = default;

qint16 dlgEditMirror::MirrorType() const {
    if (!ui_->frmType->isEnabled())
        return MirrorClass::NoKind;
    return ui_->optType_2->isChecked() ? MirrorClass::Pulse : MirrorClass::Permanent;
}

/// A panel shown first: it decides what the channel may be.
void dlgEditMirror::setRule(const MirrorClass& rule) {
    setCaptions({QString::number(rule.FromModule()), QString::number(rule.FromChannel()),
                 QString::number(rule.ToModule()), QString::number(rule.ToChannel()),
                 QString::number(rule.MirrorType())});
}

void dlgEditMirror::FixSource(int module, const QString& channel) {
    ui_->lblSrceModNo->setCaption(QString::number(module));
    ui_->lblSrceChnlNo->setCaption(channel);
    for (const int index : {SourcePanelDown, SourcePanelUp, SourceChannelDown, SourceChannelUp})
        Control(ArrowImages, index)->hide();
}

MirrorClass dlgEditMirror::Rule() const {
    MirrorClass rule;
    rule.setFromModule(qint16(ui_->lblSrceModNo->Number()));
    rule.setFromChannel(qint16(ui_->lblSrceChnlNo->Number()));
    rule.setToModule(qint16(ui_->lblDestModNo->Number()));
    rule.setToChannel(qint16(ui_->lblDestChnlNo->Number()));
    rule.setMirrorType(MirrorType());
    return rule;
}

void dlgEditMirror::Begin() {
    question_ = Captions();
    if (const auto kept = interrupted.Take(question_))
        setCaptions(kept->split(Separator));
}

void dlgEditMirror::Ask() {
    if (question_.isEmpty())
        Begin();
    ok_ = false;
    answered_ = false;
    ShowModal();
}

void dlgEditMirror::Form_Unload() {
    if (!answered_ && !question_.isEmpty() && Captions() != question_)
        interrupted.Keep(question_, Captions().join(Separator));
}

QStringList dlgEditMirror::Captions() const {
    return {
        ui_->lblSrceModNo->Caption(), ui_->lblSrceChnlNo->Caption(), ui_->lblDestModNo->Caption(),
        ui_->lblDestChnlNo->Caption(),
        QString::number(ui_->optType_2->isChecked() ? MirrorClass::Pulse : MirrorClass::Permanent)};
}

void dlgEditMirror::setCaptions(const QStringList& captions) {
    ui_->lblSrceModNo->setCaption(captions.value(0));
    ui_->lblSrceChnlNo->setCaption(captions.value(1));
    ui_->lblDestModNo->setCaption(captions.value(2));
    ui_->lblDestChnlNo->setCaption(captions.value(3));
    const bool pulse = captions.value(4).toInt() == MirrorClass::Pulse;
    (pulse ? ui_->optType_2 : ui_->optType_1)->setChecked(true);
    ShowPanels();
}

const PanelClass* dlgEditMirror::PanelOf(int number) const {
    if (number < 1 || number > ConfigClass::PanelCount)
        return nullptr;
    const bool edited = panel_ != nullptr && panel_->Numero() == number;
    return edited ? panel_ : &Global::Configuration().Panel(number);
}

void dlgEditMirror::imgPlusMoins_Click(int index) {
    const int by = index % 2 == 0 ? -1 : 1;
    switch (index) {
    case SourcePanelDown:
    case SourcePanelUp:
        StepPanel(*ui_->lblSrceModNo, by);
        break;
    case SourceChannelDown:
    case SourceChannelUp:
        StepSourceChannel(by);
        break;
    case TargetPanelDown:
    case TargetPanelUp:
        StepPanel(*ui_->lblDestModNo, by);
        break;
    default:
        StepTargetChannel(by);
    }
    ShowPanels();
}

void dlgEditMirror::StepSourceChannel(int by) {
    const PanelClass* panel = PanelOf(ui_->lblSrceModNo->Number());
    if (panel == nullptr) {
        ui_->lblSrceChnlNo->setCaption(QString());
        return;
    }
    const int channel = ui_->lblSrceChnlNo->Number() + by;
    if (channel < 1)
        ui_->lblSrceChnlNo->setCaption(WholePanel());
    else if (channel <= panel->ChannelCount())
        ui_->lblSrceChnlNo->setCaption(QString::number(channel));
}

void dlgEditMirror::StepTargetChannel(int by) {
    const PanelClass* panel = PanelOf(ui_->lblDestModNo->Number());
    const int channel = ui_->lblDestChnlNo->Number() + by;
    if (panel != nullptr && channel >= 1 && channel <= panel->ChannelCount())
        ui_->lblDestChnlNo->setCaption(QString::number(channel));
}

/// The models and titles of both ends. A remote-controlled module has no channel to address.
void dlgEditMirror::ShowPanels() {
    const auto show = [&](const ValueLabel* number, QLabel* type, QLabel* title) {
        const PanelClass* panel = PanelOf(number->Number());
        type->setText(panel == nullptr ? QString() : ModuleName(panel->Model()));
        const QString text = panel == nullptr ? QString() : panel->TitleLine().trimmed();
        title->setText(title->fontMetrics().elidedText(text, Qt::ElideRight, title->width()));
    };
    show(ui_->lblSrceModNo, ui_->lblSrceModType, ui_->lblSrceTitle);
    show(ui_->lblDestModNo, ui_->lblDestModType, ui_->lblDestTitle);
    const PanelClass* target = PanelOf(ui_->lblDestModNo->Number());
    if (target != nullptr && Models::IsRemoteControlled(target->Model()))
        ui_->lblDestChnlNo->setCaption(NoChannel);
}

void dlgEditMirror::lblSrceModNo_Change() {
    const PanelClass* panel = PanelOf(ui_->lblSrceModNo->Number());
    ShowPanels();
    if (panel == nullptr) {
        ui_->lblSrceChnlNo->setCaption(QString());
        return;
    }
    const bool byChannel = Models::IsQFamily(panel->Model());
    for (const int index : {SourceChannelDown, SourceChannelUp})
        Control(ArrowImages, index)->setEnabled(byChannel);
    if (!byChannel)
        ui_->lblSrceChnlNo->setCaption(panel->Model() == Models::Q6200XT ? WholePanel()
                                                                         : QString());
}

void dlgEditMirror::lblSrceChnlNo_Change() {
    if (ui_->lblSrceChnlNo->IsNumeric() && ui_->lblSrceChnlNo->Number() == 0) {
        ui_->lblSrceChnlNo->setCaption(WholePanel());
        return;
    }
    const bool byChannel = ui_->lblSrceChnlNo->IsNumeric();
    ui_->frmType->setEnabled(byChannel);
    ui_->frmDestChnl->setEnabled(byChannel);
    if (byChannel && ui_->lblDestChnlNo->Number() == 0)
        ui_->lblDestChnlNo->setCaption(QStringLiteral("1"));
    else if (!byChannel)
        ui_->lblDestChnlNo->setCaption(QString());
    ShowPanels();
}

void dlgEditMirror::lblDestModNo_Change() {
    ui_->lblDestChnlNo->setCaption(QString());
    ShowPanels();
}

/// A fixed source has a channel whatever its model.
bool dlgEditMirror::IsComplete() const {
    const PanelClass* source = PanelOf(ui_->lblSrceModNo->Number());
    return source != nullptr && CanBeSource(source->Model()) && ui_->lblDestModNo->IsNumeric() &&
           !ui_->lblSrceChnlNo->Caption().isEmpty() &&
           (!ui_->frmDestChnl->isEnabled() || ui_->lblDestChnlNo->IsNumeric());
}

void dlgEditMirror::imgControl_Click(int index) {
    if (index == Confirm && !IsComplete()) {
        Message(GetText(Incomplete), Messages::Critical);
        return;
    }
    ok_ = index == Confirm;
    answered_ = true;
    Hide();
}
