#include "config_screens/mirrors/wBusMiroirs.h"

#include "config_screens/mirrors/MirrorRules.h"
#include "config_screens/mirrors/dlgEditMirror.h"
#include "core/Config.h"
#include "core/ErrorHandling.h"
#include "core/Message.h"
#include "model/CurrentConfig.h"
#include "model/Models.h"
#include "screens/dialogs/wHelp.h"
#include "screens/touch/HoldToRepeat.h"
#include "screens/touch/KeptEdit.h"
#include "screens/touch/Position.h"
#include "screens/touch/ResizeForm.h"
#include "screens/touch/TouchTable.h"
#include "ui_wBusMiroirs.h"

#include <QApplication>
#include <QPointer>

using ErrorHandling::Guard;

namespace {

enum Navigation { RowUp = 1, RowDown = 2 };

const QString Navig = QStringLiteral("imgNavig");

constexpr int NothingOrKind = 510300;
constexpr int FirstColumn = 510401;
constexpr int SelectFirst = 30004;
constexpr int DeleteIt = 30007;

/// What an alarm interrupted.
KeptEdit<QByteArray> keptEdit;

QString ModelOf(int number) {
    const bool isPanel = number >= 1 && number <= ConfigClass::PanelCount;
    return isPanel ? ModuleName(Global::Configuration().Panel(number).Model()) : QString();
}

TouchTable::Row RowOf(const MirrorClass& rule) {
    return {{ModelOf(rule.FromModule()), QString::number(rule.FromModule()),
             rule.FromChannel() < 1 ? GetText(NothingOrKind) : QString::number(rule.FromChannel()),
             ModelOf(rule.ToModule()), QString::number(rule.ToModule()),
             rule.ToChannel() < 1 ? QString() : QString::number(rule.ToChannel()),
             GetText(NothingOrKind + rule.MirrorType())},
            rule.ID()};
}

} // namespace

wBusMiroirs::wBusMiroirs()
    : ConfigForm(FormNames::wBusMiroirs)
    , ui_(std::make_unique<Ui::wBusMiroirs>()) {
    ui_->setupUi(this);
    Prepare();
    const Qt::Alignment middle = Qt::AlignCenter;
    ui_->lvwMirrors->setColumns({{GetText(FirstColumn), 17},
                                 {GetText(FirstColumn + 1), 13, middle},
                                 {GetText(FirstColumn + 2), 13, middle},
                                 {GetText(FirstColumn), 17},
                                 {GetText(FirstColumn + 3), 13, middle},
                                 {GetText(FirstColumn + 2), 13, middle},
                                 {GetText(FirstColumn + 4), 14, middle}},
                                IsScaled() ? CurrentScreenFactors().vertical : 1);
    connect(ui_->lvwMirrors, &TouchTable::RowChanged, this, &wBusMiroirs::lvwMirrors_Click);
    OnClick(Navig, [this](int index) { imgNavig_Click(index); });
    OnClick(ui_->imgNew, [this] { imgNew_Click(); });
    OnClick(ui_->imgModif, [this] { imgModif_Click(); });
    OnClick(ui_->imgDelete, [this] { imgDelete_Click(); });
    OnClick(ui_->imgCancel, [this] { imgCancel_Click(); });
    auto* repeat = new HoldToRepeat(this);
    for (const int index : {RowUp, RowDown})
        repeat->Watch(Control(Navig, index), [this, index] { imgNavig_Click(index); });
    Form_Load();
}

wBusMiroirs::~wBusMiroirs() = default;

void wBusMiroirs::Form_Load() {
    imgCancel_Click();
    const auto kept = keptEdit.Take(MirrorRules::BytesOf(rules_));
    if (kept) {
        MirrorRules::Restore(rules_, *kept);
        FillTable();
    }
    ShowKept(kept.has_value());
}

void wBusMiroirs::FillTable() {
    Guard("wBusMiroirs.FillTable", [&] {
        QList<TouchTable::Row> rows;
        rows.reserve(rules_.Count());
        for (const MirrorClass& rule : rules_)
            rows += RowOf(rule);
        const QString selected = selected_;
        ui_->lvwMirrors->setRows(rows);
        ui_->lvwMirrors->SelectTag(selected);
        lvwMirrors_Click();
    });
}

void wBusMiroirs::lvwMirrors_Click() {
    selected_ = ui_->lvwMirrors->CurrentTag();
    EnableByPosition(Control(Navig, RowUp), Control(Navig, RowDown), ui_->lvwMirrors->CurrentRow(),
                     ui_->lvwMirrors->RowCount());
    ui_->lblCount->setText(QString::number(rules_.Count()));
}

void wBusMiroirs::imgNew_Click() {
    Guard("wBusMiroirs.imgNew_Click", [&] { EditRule(nullptr); });
}

void wBusMiroirs::imgModif_Click() {
    Guard("wBusMiroirs.imgModif_Click", [&] {
        MirrorClass* rule = rules_.GetByID(selected_);
        if (selected_.isEmpty() || rule == nullptr)
            QApplication::beep();
        else
            EditRule(rule);
    });
}

/// Asks again after each refusal, with what was entered.
void wBusMiroirs::EditRule(MirrorClass* changed) {
    const QPointer<wBusMiroirs> self(this);
    const QPointer<dlgEditMirror> dialog(new dlgEditMirror);
    const QString oldId = changed == nullptr ? QString() : changed->ID();
    if (changed != nullptr)
        dialog->setRule(*changed);
    for (;;) {
        dialog->Ask();
        if (!dialog || !IsLoaded(dialog.data()) || !dialog->Ok() || !IsLoaded(self.data()))
            break;
        const MirrorClass rule = dialog->Rule();
        const bool allowed = MirrorRules::IsAllowed(rules_, rule, oldId);
        if (!dialog || !IsLoaded(self.data()))
            break;
        if (!allowed)
            continue;
        (changed == nullptr ? rules_.Add(0, 0, 0, 0, 0) : *changed).Copy(rule);
        selected_ = rule.ID();
        FillTable();
        break;
    }
    if (dialog)
        dialog->Unload();
}

void wBusMiroirs::imgDelete_Click() {
    Guard("wBusMiroirs.imgDelete_Click", [&] {
        if (rules_.Count() == 0) {
            QApplication::beep();
            return;
        }
        if (selected_.isEmpty()) {
            Message(GetText(SelectFirst), Messages::Warning);
            return;
        }
        const QPointer<wBusMiroirs> self(this);
        const int answer = Message(GetText(DeleteIt), Messages::Warning | Messages::OkCancel);
        if (answer != Messages::Ok || !IsLoaded(self.data()))
            return;
        MirrorRules::Remove(rules_, selected_);
        FillTable();
    });
}

void wBusMiroirs::imgCancel_Click() {
    rules_.Copy(Global::Configuration().Mirrors());
    rules_.setModified(false);
    ShowKept(false);
    FillTable();
}

bool wBusMiroirs::Take() {
    Global::Configuration().Mirrors().Copy(rules_);
    rules_.setModified(false);
    SaveSite();
    return true;
}

void wBusMiroirs::Keep() {
    keptEdit.Keep(MirrorRules::BytesOf(Global::Configuration().Mirrors()),
                  MirrorRules::BytesOf(rules_));
}

void wBusMiroirs::imgNavig_Click(int index) {
    switch (index) {
    case ToMenu:
        Leave();
        break;
    case ToPanels:
        Leave(FormNames::wBusModules);
        break;
    case RowUp:
        ui_->lvwMirrors->MoveBy(-1);
        break;
    case RowDown:
        ui_->lvwMirrors->MoveBy(1);
        break;
    case Help:
        ShowHelp();
        break;
    default:
        break;
    }
}
