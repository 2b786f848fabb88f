#include "config_screens/panel/wBusPanneau.h"

#include "config_screens/panel/ChannelParameters.h"
#include "config_screens/panel/MirrorOne.h"
#include "config_screens/panel/dlgColour.h"
#include "core/Config.h"
#include "core/ErrorHandling.h"
#include "core/Forms.h"
#include "core/Message.h"
#include "model/CurrentConfig.h"
#include "model/Models.h"
#include "screens/dialogs/dlgKeyboard.h"
#include "screens/dialogs/wHelp.h"
#include "screens/touch/Colours.h"
#include "screens/touch/EntryClipboard.h"
#include "screens/touch/FieldPointer.h"
#include "screens/touch/HoldToRepeat.h"
#include "screens/touch/KeptEdit.h"
#include "screens/touch/Position.h"
#include "screens/touch/ResizeForm.h"
#include "screens/touch/TouchList.h"
#include "screens/touch/ValueLabel.h"
#include "ui_wBusPanneau.h"

#include <QPointer>
#include <QScopedValueRollback>
#include <map>

using ErrorHandling::Guard;
using namespace ChannelParameters;

namespace {

enum Navigation { ParameterBack = 1, ParameterOn = 2, Mirrors = 12 };
enum Images { ChannelBack, ChannelOn, CopyChannel, PasteChannel, CutChannel, ClearChannel };
enum Panels { PanelBack = 1, PanelOn = 2 };

const QString Values = QStringLiteral("lblParamVal");
const QString Navig = QStringLiteral("imgNavig");
const QString NavPanel = QStringLiteral("imgNavPanel");
const QString ControlImages = QStringLiteral("imgControl");

constexpr int WholePanel = 10100;
constexpr int NotActive = 300120;
constexpr int TitleColour = 300607;
constexpr int IsActive = 300121;
constexpr int DisplayMirrors = 300130;
constexpr int ControlMirrors = 300131;
/// Rows of the lists beside the parameters, as a share of a finger: they are read, and tapped at
/// most.
constexpr double RowScale = 0.6;

/// Outlives the screen, so that a channel goes from one panel to another.
EntryClipboard<ChannelClass>& Clipboard() {
    static EntryClipboard<ChannelClass> clipboard(
        [](ChannelClass& to, const ChannelClass& from) { to.Copy(from); });
    return clipboard;
}

/// Edits that an alarm interrupted, by their panel.
std::map<int, KeptEdit<PanelDraft::Snapshot>> keptEdits;

QString OnOneLine(QString text) {
    return text.remove(QChar(0)).replace(QLatin1String("\r\n"), QLatin1String(" ")).trimmed();
}

} // namespace

wBusPanneau::wBusPanneau()
    : ConfigForm(FormNames::wBusPanneau)
    , ui_(std::make_unique<Ui::wBusPanneau>()) {
    ui_->setupUi(this);
    Prepare();
    FillLists();
    ConnectControls();
}

wBusPanneau::~wBusPanneau() = default;

void wBusPanneau::FillLists() {
    const double scale = IsScaled() ? CurrentScreenFactors().vertical : 1;
    for (QListWidget* list : {ui_->lstModele, ui_->lstBiblio, ui_->lstConsigne}) {
        MakeTouchList(*list, scale * RowScale);
        list->setTextElideMode(Qt::ElideRight);
    }
    const ConfigClass& site = Global::Configuration();
    for (int model = Models::None; model <= Models::P5500; ++model)
        ui_->lstModele->addItem(ModuleName(model));
    for (int number = 1; number <= ConfigClass::BiblioCount; ++number)
        ui_->lstBiblio->addItem(OnOneLine(site.Biblio(number)));
    for (int number = 1; number <= ConfigClass::ConsigneCount; ++number)
        ui_->lstConsigne->addItem(OnOneLine(site.Consigne(number)));
    ui_->lstModele->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    // A model is changed by its button, which looks after the mirrors first.
    ui_->lstModele->setAttribute(Qt::WA_TransparentForMouseEvents);
}

void wBusPanneau::ConnectControls() {
    QList<ValueLabel*> fields;
    for (const int index : Indices(Values)) {
        fields += Value(index);
        connect(Value(index), &ValueLabel::Changed, this, [this, index] {
            Guard("wBusPanneau.lblParamVal_Change", [&] { lblParamVal_Change(index); });
        });
    }
    pointer_ = new FieldPointer(this, fields);
    pointer_->Skip(Number);
    connect(pointer_, &FieldPointer::Moved, this, &wBusPanneau::ShowArrows);
    for (const int parameter : {int(Library), int(Instruction)}) {
        QListWidget* list = ListOf(parameter);
        connect(list, &QListWidget::itemClicked, this, [this, list, parameter] {
            pointer_->setPlace(parameter);
            Value(parameter)->setCaption(QString::number(list->currentRow() + 1));
        });
    }
    OnClick(Navig, [this](int index) { imgNavig_Click(index); });
    OnClick(NavPanel, [this](int index) { imgNavPanel_Click(index); });
    OnClick(ControlImages, [this](int index) { imgControl_Click(index); });
    OnClick(ui_->imgModif, [this] { imgModif_Click(); });
    OnClick(ui_->imgModele, [this] { imgModele_Click(); });
    OnClick(ui_->imgActive, [this] { imgActive_Click(); });
    OnClick(ui_->imgClear, [this] { imgClear_Click(); });
    OnClick(ui_->imgCancel, [this] { imgCancel_Click(); });
    OnClick(ui_->lblTitleColor, [this] { lblTitleColor_Click(); });
    OnClick(ui_->lblVisuTcde, [this] { EditMirrors(); });
    auto* repeat = new HoldToRepeat(this);
    for (const int index : {ChannelBack, ChannelOn})
        repeat->Watch(Control(ControlImages, index), [this, index] { imgControl_Click(index); });
    for (const int index : {ParameterBack, ParameterOn})
        repeat->Watch(Control(Navig, index), [this, index] { imgNavig_Click(index); });
}

ValueLabel* wBusPanneau::Value(int parameter) const {
    return Control<ValueLabel>(Values, parameter);
}

int wBusPanneau::Channel() const {
    return Value(Number)->Number();
}

ChannelClass& wBusPanneau::CurrentChannel() {
    return draft_.Panel().Channel(Channel());
}

QListWidget* wBusPanneau::ListOf(int parameter) const {
    return parameter == Library ? ui_->lstBiblio : ui_->lstConsigne;
}

void wBusPanneau::setNumModule(qint16 number) {
    Guard("wBusPanneau.NumModule", [&] {
        draft_.Load(number);
        RestoreKept();
        ShowPanel();
    });
}

void wBusPanneau::RestoreKept() {
    const auto kept = keptEdits[draft_.Number()].Take(draft_.OfSite());
    if (kept)
        draft_.Restore(*kept);
    ShowKept(kept.has_value());
}

void wBusPanneau::ShowPanel() {
    const PanelClass& panel = draft_.Panel();
    ui_->lstModele->setCurrentRow(panel.Model());
    ShowTitle();
    const int channel = qBound(1, Channel(), int(panel.ChannelCount()));
    Value(Number)->setCaption(QString::number(channel));
    ReadChannel();
    ShowModel();
}

void wBusPanneau::ShowTitle() {
    const QScopedValueRollback showing(showing_, true);
    const PanelClass& panel = draft_.Panel();
    Value(Title)->setCaption(panel.Title());
    for (const int label : {0, 1})
        Control<ValueLabel>(QStringLiteral("lblNumModule"), label)
            ->setCaption(QString::number(draft_.Number()));
    ui_->lblActive->setText(GetText(panel.Active() ? IsActive : NotActive));
    const QColor colour = Colours::FromBgr(panel.TitleColor());
    ui_->lblTitleColor->setText(GetText(TitleColour));
    ui_->lblTitleColor->setStyleSheet(
        QStringLiteral("QLabel { background: %1; color: %2; border-radius: 8px; }")
            .arg(colour.name(), Colours::InkOn(colour).name()));
    Control(NavPanel, PanelBack)->setEnabled(draft_.Number() > 1);
    Control(NavPanel, PanelOn)
        ->setEnabled(draft_.Number() > 0 && draft_.Number() < ConfigClass::PanelCount);
}

/// What the model has to do with: its word, the way to the mirrors, the channels that there are.
void wBusPanneau::ShowModel() {
    const int model = draft_.Panel().Model();
    ui_->lblModele->setText(ModuleName(model));
    for (QWidget* control : {Control(Navig, Mirrors), static_cast<QWidget*>(ui_->lblVisuTcde)})
        control->setVisible(model != Models::None);
    ui_->lblVisuTcde->setText(
        GetText(Models::IsRemoteControlled(model) ? ControlMirrors : DisplayMirrors));
    ShowArrows();
}

void wBusPanneau::ReadChannel() {
    Guard("wBusPanneau.ReadChannel", [&] {
        if (Channel() < 1)
            return;
        const QScopedValueRollback showing(showing_, true);
        const ChannelClass& channel = CurrentChannel();
        for (int index = 0; index < All().size(); ++index) {
            if (All()[index].show != nullptr)
                Value(index)->setCaption(All()[index].show(channel));
        }
        for (const int parameter : {int(Library), int(Instruction)})
            setPreviewIndex(parameter, Value(parameter)->Number() - 1);
        ShowArrows();
    });
}

void wBusPanneau::ShowArrows() {
    Control(Navig, ParameterBack)->setEnabled(pointer_->Place() > 0);
    Control(Navig, ParameterOn)
        ->setEnabled(pointer_->Place() < pointer_->Count() - 1 &&
                     (pointer_->Place() == 0 || Channel() > 0));
    EnableByPosition(Control(ControlImages, ChannelBack), Control(ControlImages, ChannelOn),
                     Channel() - 1, draft_.Panel().ChannelCount());
}

void wBusPanneau::lblParamVal_Change(int index) {
    if (showing_)
        return;
    if (index == Title) {
        draft_.Panel().setTitle(Value(Title)->Caption());
    } else if (index == Number) {
        ReadChannel();
    } else if (Channel() >= 1) {
        All()[index].store(CurrentChannel(), Value(index)->Caption());
        if (index == Library || index == Instruction)
            setPreviewIndex(index, Value(index)->Number() - 1);
    }
}

int wBusPanneau::PreviewParameter() const {
    return pointer_->Place();
}

int wBusPanneau::PreviewCount(int parameter) const {
    return ListOf(parameter)->count();
}

void wBusPanneau::setPreviewIndex(int parameter, int index) {
    QListWidget* list = ListOf(parameter);
    list->setCurrentRow(index);
    if (index < 0)
        list->clearSelection();
    else
        list->scrollToItem(list->item(index), QAbstractItemView::PositionAtCenter);
}

QString wBusPanneau::PreviewValue(int parameter) const {
    return Value(parameter)->Caption();
}

void wBusPanneau::imgNavig_Click(int index) {
    switch (index) {
    case ToMenu:
        Leave();
        return;
    case ToPanels:
        Leave(FormNames::wBusModules);
        return;
    case ParameterBack:
        pointer_->MoveBy(-1);
        break;
    case ParameterOn:
        pointer_->MoveBy(1);
        break;
    case Keyboard:
        imgModif_Click();
        return;
    case Help:
        ShowHelp();
        return;
    case Mirrors:
        EditMirrors();
        return;
    default:
        break;
    }
    ShowArrows();
}

void wBusPanneau::imgNavPanel_Click(int index) {
    const int number = draft_.Number() + (index == PanelBack ? -1 : 1);
    if (number < 1 || number > ConfigClass::PanelCount || !AskForClose())
        return;
    setNumModule(qint16(number));
}

bool wBusPanneau::Take() {
    draft_.Take();
    Global::Configuration().setModified(true);
    SaveSite();
    return true;
}

/// The screen may go on to another panel.
void wBusPanneau::Drop() {
    draft_.Load(draft_.Number());
}

void wBusPanneau::Keep() {
    keptEdits[draft_.Number()].Keep(draft_.OfSite(), draft_.Edited());
}

void wBusPanneau::imgControl_Click(int index) {
    if (Channel() < 1)
        return;
    switch (index) {
    case ChannelBack:
        if (Channel() > 1)
            Value(Number)->setCaption(QString::number(Channel() - 1));
        break;
    case ChannelOn:
        if (Channel() < draft_.Panel().ChannelCount())
            Value(Number)->setCaption(QString::number(Channel() + 1));
        break;
    default:
        if (Clipboard().Act(EntryAction(index - CopyChannel), CurrentChannel()))
            lblParamVal_Change(Number);
    }
}

void wBusPanneau::imgModif_Click() {
    Guard("wBusPanneau.imgModif_Click", [&] {
        const int parameter = pointer_->Place();
        ValueLabel* label = Value(parameter);
        const QPointer<wBusPanneau> self(this);
        const auto list = All()[parameter].list;
        const auto value =
            list == nullptr
                ? AskText(Control<QLabel>(QStringLiteral("lblParams"), parameter)->text(),
                          label->Caption(), PanelClass::MaxTitle)
                : AskValue(this, list(draft_.Panel()), label->Caption());
        if (value && IsLoaded(self.data()))
            label->setCaption(*value);
    });
}

/// Rules of the site are removed at once, whatever becomes of the edit.
bool wBusPanneau::ReleaseFromMirrors() {
    MirrorClasses& rules = Global::Configuration().Mirrors();
    const int number = draft_.Number();
    const auto touches = [number](const MirrorClass& rule) {
        return rule.FromModule() == number || rule.ToModule() == number;
    };
    bool found = false;
    for (const MirrorClass& rule : rules)
        found = found || touches(rule);
    if (!found)
        return true;
    const QPointer<wBusPanneau> self(this);
    const int answer = Message(GetText(30011), Messages::Warning | Messages::OkCancel);
    if (answer != Messages::Ok || !IsLoaded(self.data()))
        return false;
    for (int index = rules.Count(); index >= 1; --index) {
        if (touches(rules.Item(index)))
            rules.Remove(index);
    }
    return true;
}

void wBusPanneau::imgModele_Click() {
    if (!ReleaseFromMirrors())
        return;
    const int next = (ui_->lstModele->currentRow() + 1) % ui_->lstModele->count();
    ui_->lstModele->setCurrentRow(next);
    lstModele_Click(next);
}

void wBusPanneau::lstModele_Click(int model) {
    draft_.Panel().setModel(quint8(model));
    Value(Number)->setCaption(
        QString::number(qBound(1, Channel(), int(draft_.Panel().ChannelCount()))));
    ShowModel();
}

void wBusPanneau::imgActive_Click() {
    draft_.Panel().setActive(!draft_.Panel().Active());
    ShowTitle();
}

void wBusPanneau::imgClear_Click() {
    draft_.ClearPanel();
    ShowPanel();
}

void wBusPanneau::imgCancel_Click() {
    draft_.ReloadPanel();
    ShowKept(false);
    ShowPanel();
}

void wBusPanneau::lblTitleColor_Click() {
    const QPointer<wBusPanneau> self(this);
    const auto colour = AskColour(draft_.Panel().TitleColor(), draft_.Panel().Title());
    if (!colour || !IsLoaded(self.data()))
        return;
    draft_.Panel().setTitleColor(*colour);
    ShowTitle();
}

void wBusPanneau::EditMirrors() {
    auto* mirrors = dynamic_cast<MirrorOne*>(Forms::Load(FormNames::wBusMirrorOne));
    if (mirrors == nullptr)
        return;
    const bool asAWhole = draft_.Panel().Model() == Models::Q6200XT;
    mirrors->Present(draft_.Mirrors(), draft_.Panel(),
                     asAWhole ? GetText(WholePanel) : QString::number(Channel()));
}
