#include "config_screens/mirrors/wBusMirrorOne.h"

#include "config_screens/mirrors/MirrorRules.h"
#include "config_screens/mirrors/dlgEditMirror.h"
#include "core/Config.h"
#include "core/ErrorHandling.h"
#include "core/FormNames.h"
#include "core/Global.h"
#include "core/Message.h"
#include "model/CurrentConfig.h"
#include "model/Models.h"
#include "screens/touch/HoldToRepeat.h"
#include "screens/touch/ModalDialog.h"
#include "screens/touch/Position.h"
#include "screens/touch/ResizeForm.h"
#include "screens/touch/TouchList.h"
#include "screens/touch/ValueLabel.h"
#include "ui_wBusMirrorOne.h"

#include <QApplication>
#include <optional>

using ErrorHandling::Guard;

namespace {

enum Navigation { ToUp = 1, ToDown = 2, Close = 5, FromUp = 101, FromDown = 103 };
enum Images { ChannelDown, ChannelUp };

const QString Navig = QStringLiteral("imgNavig");
const QString ControlImages = QStringLiteral("imgControl");

constexpr int SelectFirst = 30006;
constexpr int ADestination = 520120;
constexpr int DeleteIt = 30007;

/// A title's line breaks make no second line here.
void AddLine(QListWidget* list, QString text, const MirrorClass& rule) {
    auto* item = new QListWidgetItem(text.replace(u'|', u' '), list);
    item->setData(Qt::UserRole, rule.ID().toInt());
}

void MoveBy(QListWidget* list, int rows) {
    const int row = list->currentRow() + rows;
    if (row >= 0 && row < list->count())
        list->setCurrentRow(row);
}

} // namespace

wBusMirrorOne::wBusMirrorOne()
    : ScreenForm(FormNames::wBusMirrorOne)
    , ui_(std::make_unique<Ui::wBusMirrorOne>()) {
    ui_->setupUi(this);
    Prepare();
    for (QListWidget* list : {ui_->lstTo, ui_->lstFrom}) {
        MakeTouchList(*list, IsScaled() ? CurrentScreenFactors().vertical : 1);
        list->setTextElideMode(Qt::ElideRight);
        connect(list, &QListWidget::currentRowChanged, this, &wBusMirrorOne::ShowArrows);
    }
    connect(ui_->lblChannel, &ValueLabel::Changed, this, &wBusMirrorOne::lblChannel_Change);
    OnClick(Navig, [this](int index) { imgNavig_Click(index); });
    OnClick(ControlImages, [this](int index) { imgControl_Click(index); });
    OnClick(ui_->imgNew, [this] { imgNew_Click(); });
    OnClick(ui_->imgDelete, [this] { imgDelete_Click(); });
    auto* repeat = new HoldToRepeat(this);
    for (const int index : {ChannelDown, ChannelUp})
        repeat->Watch(Control(ControlImages, index), [this, index] { imgControl_Click(index); });
    ShowArrows();
}

wBusMirrorOne::~wBusMirrorOne() = default;

void wBusMirrorOne::Present(MirrorClasses& mirrors, const PanelClass& panel,
                            const QString& channel) {
    RunDialog(
        this,
        [&](wBusMirrorOne& form) {
            form.setMirrors(&mirrors);
            form.setPanel(&panel);
            form.ui_->lblChannel->setCaption(channel);
            form.lblChannel_Change();
        },
        [](const wBusMirrorOne&) { return true; });
}

void wBusMirrorOne::setPanel(const PanelClass* panel) {
    panel_ = panel;
    ui_->lblNumModule->setCaption(QString::number(panel->Numero()));
    ui_->lblPanelTitle->setText(ui_->lblPanelTitle->fontMetrics().elidedText(
        ModuleName(panel->Model()) + QStringLiteral("  ") + panel->TitleLine(), Qt::ElideRight,
        ui_->lblPanelTitle->width()));
    for (const int index : {ChannelDown, ChannelUp})
        Control(ControlImages, index)->setEnabled(panel->Model() == Models::Q7100);
}

void wBusMirrorOne::lblChannel_Change() {
    ui_->lstFrom->clear();
    ui_->lstTo->clear();
    if (mirrors_ == nullptr || !ui_->lblNumModule->IsNumeric())
        return;
    const int module = ui_->lblNumModule->Number();
    const int channel = ui_->lblChannel->Number();
    for (const MirrorClass& rule : *mirrors_) {
        if (rule.FromModule() == module && rule.FromChannel() == channel)
            AddLine(ui_->lstTo, FormatChannel(rule, true), rule);
        if (rule.ToModule() == module && rule.ToChannel() == channel)
            AddLine(ui_->lstFrom, FormatChannel(rule, false), rule);
    }
    ShowArrows();
}

void wBusMirrorOne::ShowArrows() {
    EnableByPosition(Control(Navig, ToUp), Control(Navig, ToDown), ui_->lstTo->currentRow(),
                     ui_->lstTo->count());
    EnableByPosition(Control(Navig, FromUp), Control(Navig, FromDown), ui_->lstFrom->currentRow(),
                     ui_->lstFrom->count());
}

QString wBusMirrorOne::FormatChannel(const MirrorClass& mirror, bool toSide) const {
    QString line;
    Guard("wBusMirrorOne.FormatChannel", [&] {
        const Global::State& words = Global::Get();
        const int module = toSide ? mirror.ToModule() : mirror.FromModule();
        const int channel = toSide ? mirror.ToChannel() : mirror.FromChannel();
        const auto digits = [](int number) {
            return QString::number(number).rightJustified(2, u'0');
        };
        line = words.text50012.mid(mirror.MirrorType(), 1) + u'-' + words.panelMark +
               digits(module) + u'-';
        line += channel == 0 ? words.text10100 : words.channelMark + digits(channel);
        line += QStringLiteral("  ");
        const bool own = panel_ != nullptr && panel_->Numero() == module;
        line += (own ? *panel_ : Global::Configuration().Panel(module)).Title();
    });
    return line;
}

/// Beyond either end the panel as a whole is shown.
void wBusMirrorOne::imgControl_Click(int index) {
    if (panel_ == nullptr || panel_->Model() != Models::Q7100)
        return;
    const int channel = ui_->lblChannel->Number() + (index == ChannelUp ? 1 : -1);
    const bool inside = channel >= 1 && channel <= panel_->ChannelCount();
    ui_->lblChannel->setCaption(inside ? QString::number(channel) : Global::Get().text10100);
}

void wBusMirrorOne::imgNavig_Click(int index) {
    switch (index) {
    case ToUp:
    case ToDown:
        MoveBy(ui_->lstTo, index == ToUp ? -1 : 1);
        break;
    case FromUp:
    case FromDown:
        MoveBy(ui_->lstFrom, index == FromUp ? -1 : 1);
        break;
    case Close:
        Hide();
        break;
    default:
        break;
    }
}

void wBusMirrorOne::imgNew_Click() {
    Guard("wBusMirrorOne.imgNew_Click", [&] {
        const QPointer<wBusMirrorOne> self(this);
        const auto entered = RunDialog(
            new dlgEditMirror,
            [&](dlgEditMirror& dialog) {
                dialog.setPanel(panel_);
                dialog.FixSource(ui_->lblNumModule->Number(), ui_->lblChannel->Caption());
                dialog.Begin();
            },
            [](const dlgEditMirror& dialog) {
                return dialog.Ok() ? std::make_optional(dialog.Rule()) : std::nullopt;
            });
        if (!entered || !*entered || !IsLoaded(self.data()))
            return;
        if (!MirrorRules::IsAllowed(*mirrors_, **entered) || !IsLoaded(self.data()))
            return;
        mirrors_->Add(0, 0, 0, 0, 0).Copy(**entered);
        lblChannel_Change();
    });
}

void wBusMirrorOne::imgDelete_Click() {
    Guard("wBusMirrorOne.imgDelete_Click", [&] {
        if (ui_->lstTo->count() == 0) {
            QApplication::beep();
            return;
        }
        const QListWidgetItem* line = ui_->lstTo->currentItem();
        if (line == nullptr) {
            Message(GetText(SelectFirst).replace(QStringLiteral("$$$"), GetText(ADestination)),
                    Messages::Warning);
            return;
        }
        const QString id =
            QString::number(line->data(Qt::UserRole).toInt()).rightJustified(8, u'0');
        const QPointer<wBusMirrorOne> self(this);
        const int answer = Message(GetText(DeleteIt), Messages::Warning | Messages::OkCancel);
        if (answer != Messages::Ok || !IsLoaded(self.data()))
            return;
        MirrorRules::Remove(*mirrors_, id);
        lblChannel_Change();
    });
}
