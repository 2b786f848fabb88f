#include "technician/wTechConsignations.h"

#include "bus/OutOfServiceWatch.h"
#include "bus/wPolling.h"
#include "core/Bytes.h"
#include "core/Config.h"
#include "core/ErrorHandling.h"
#include "core/Global.h"
#include "core/Message.h"
#include "model/CurrentConfig.h"
#include "model/Models.h"
#include "screens/dialogs/wHelp.h"
#include "screens/touch/KeptEdit.h"
#include "screens/touch/Position.h"
#include "screens/touch/ResizeForm.h"
#include "screens/touch/Stepper.h"
#include "screens/touch/TouchTable.h"
#include "ui_wTechConsignations.h"

#include <QApplication>
#include <QPointer>
#include <QSignalBlocker>
#include <algorithm>

using ErrorHandling::Guard;
using OutOfService::Thing;

namespace {

enum Navigation {
    NewUp = 1,
    NewDown = 2,
    CloseScreen = 5,
    HelpOnScreen = 7,
    PresentUp = 101,
    PresentDown = 103
};

const QString Navig = QStringLiteral("imgNavig");
const QString Images = QStringLiteral("imgControl");

constexpr int DeleteIt = 30007;
/// Of the line below the lists.
enum Detail {
    NoReason = 850103,
    Since = 850111,
    Until,
    UnknownTime,
    Nobody,
    TouchALine,
    ByWhom,
    NoEnd
};
constexpr int FirstColumn = 840010;
constexpr int MinuteLetters = 5;

/// What an alarm interrupted, tied to what was out of service then.
KeptEdit<QList<OutOfService::Change>> keptEdit;

const PanelClass* PanelOf(int number) {
    return number < 1 ? nullptr : &Global::Configuration().Panel(number);
}

QString NameOf(const Thing& thing) {
    const PanelClass& panel = *PanelOf(thing.panel);
    return thing.channel > 0 ? panel.Channel(thing.channel).ScreenText()
                             : panel.TitleLine().trimmed();
}

QString IconOf(const OutOfService::Change& entry) {
    if (entry.thing.channel > 0)
        return entry.out ? QStringLiteral("channel_out") : QStringLiteral("channel_on");
    return entry.out ? QStringLiteral("panel_out") : QStringLiteral("panel_ok");
}

QString Minutes(DateTime when) {
    return DateTimes::ShortDate(when) + u' ' + DateTimes::LongTime(when).left(MinuteLetters);
}

QString OrElse(const QString& text, int otherwise) {
    return text.isEmpty() ? GetText(otherwise) : text;
}

/// What is remembered of a thing that is out; all unknown where that is nothing.
OutOfService::Entry Remembered(const Thing& thing) {
    const auto entry = OutOfService::Find(thing);
    return entry && entry->IsOut() ? *entry : OutOfService::Entry();
}

/// A sentence about something, or another one when that isn't known.
QString Said(int text, const QString& what, int otherwise) {
    return what.isEmpty() ? GetText(otherwise) : GetText(text).replace(u'$', what);
}

/// Since when, who, until when, and the reason on a line of its own.
QString DetailOf(const Thing& thing) {
    const OutOfService::Entry entry = Remembered(thing);
    const auto time = [](DateTime when) { return when == 0 ? QString() : Minutes(when); };
    return QStringList{Said(Since, time(entry.since), UnknownTime), Said(ByWhom, entry.who, Nobody),
                       Said(Until, time(entry.until), NoEnd)}
               .join(QStringLiteral(", ")) +
           u'\n' + OrElse(entry.why, NoReason);
}

QString ReasonText(const QString& why, int minutes) {
    return OrElse(why, NoReason) + u'\n' + EndText(minutes);
}

TouchTable::Row RowOf(const OutOfService::Change& entry, bool withTime) {
    const auto [panel, channel] = entry.thing;
    const QString key = wTechConsignations::FormatKey(panel, channel);
    TouchTable::Row row{{key, NameOf(entry.thing), QString()}, key, IconOf(entry)};
    const DateTime since = withTime ? Remembered(entry.thing).since : 0;
    if (since != 0) {
        row.cells[2] = Minutes(since);
        row.order = {{}, {}, DateTimes::FileDate(since) + u' ' + DateTimes::LongTime(since)};
    }
    return row;
}

} // namespace

wTechConsignations::wTechConsignations()
    : ConfigForm(FormNames::wTechConsignations)
    , ui_(std::make_unique<Ui::wTechConsignations>())
    , repeat_(this) {
    ui_->setupUi(this);
    Prepare();
    MakeTables();
    module_ = new Stepper(repeat_, ui_->lblModule, {ui_->imgControl_4, ui_->imgControl_5});
    channel_ = new Stepper(repeat_, ui_->lblChannel, {ui_->imgControl_0, ui_->imgControl_1});
    module_->setBounds(0, ConfigClass::PanelCount);
    module_->setValue(0);
    channel_->setBounds(0, 0);
    connect(module_, &Stepper::Changed, this, &wTechConsignations::lblModule_Click);
    connect(channel_, &Stepper::Changed, this, &wTechConsignations::lblChannel_Change);
    OnClick(Images, [this](int index) { imgControl_Click(index); });
    OnClick(Navig, [this](int index) { imgNavig_Click(index); });
    OnClick(ui_->imgDelete, [this] { imgDelete_Click(); });
    OnClick(ui_->imgReason, [this] { imgReason_Click(); });
    for (const int index : {NewUp, NewDown, PresentUp, PresentDown})
        repeat_.Watch(Control(Navig, index), [this, index] { imgNavig_Click(index); });
    // What comes back by itself goes from the list.
    if (wPolling* polling = Polling())
        connect(polling, &wPolling::BusEvent, this, [this](const EventClass& event) {
            if (event.Chnl() == Family::System && event.Aff() == SystemEvents::BackInService)
                FillPresent();
        });
    Form_Load();
}

wTechConsignations::~wTechConsignations() = default;

void wTechConsignations::MakeTables() {
    present_ = {ui_->lvwPresent, true};
    new_ = {ui_->lvwNew, false};
    const double scale = IsScaled() ? CurrentScreenFactors().vertical : 1;
    ui_->lvwPresent->setColumns({{GetText(FirstColumn), 124},
                                 {GetText(FirstColumn + 1), 148},
                                 {GetText(FirstColumn + 2), 158}},
                                scale);
    ui_->lvwNew->setColumns({{GetText(FirstColumn), 124}, {GetText(FirstColumn + 1), 142}}, scale);
    for (List* list : {&present_, &new_})
        connect(list->table, &TouchTable::RowChanged, this, [this, list] { Choose(*list); });
}

void wTechConsignations::Form_Load() {
    Guard("wTechConsignations.Form_Load", [&] {
        OutOfService::NoticeReturns();
        TellOutOfService();
        FillPresent();
        const auto kept = keptEdit.Take(present_.entries);
        new_.entries = kept.value_or(QList<Entry>());
        ShowKept(kept.has_value());
        Fill(new_);
        lblModule_Click();
        ShowReason();
    });
}

void wTechConsignations::FillPresent() {
    present_.entries.clear();
    for (const Thing& thing : OutOfService::Present())
        present_.entries.append({thing, true});
    Fill(present_);
}

QString wTechConsignations::FormatKey(int panel, int channel) {
    const QString key = Global::Get().panelMark + Bytes::Padded(panel, 2);
    return channel > 0 ? key + Global::Get().channelMark + Bytes::Padded(channel, 2) : key;
}

void wTechConsignations::AjouteItem(List& list, const Entry& entry) {
    Guard("wTechConsignations.AjouteItem", [&] {
        list.entries.append(entry);
        Fill(list);
    });
}

const wTechConsignations::Entry* wTechConsignations::GetItem(const List& list, const QString& key) {
    const auto found =
        std::find_if(list.entries.cbegin(), list.entries.cend(), [&](const Entry& entry) {
            return FormatKey(entry.thing.panel, entry.thing.channel) == key;
        });
    return found == list.entries.cend() ? nullptr : &*found;
}

void wTechConsignations::Remove(List& list, const QString& key) {
    if (const Entry* entry = GetItem(list, key))
        list.entries.removeOne(Entry(*entry));
    Fill(list);
}

void wTechConsignations::Fill(const List& list) {
    QList<TouchTable::Row> rows;
    rows.reserve(list.entries.size());
    for (const Entry& entry : list.entries)
        rows += RowOf(entry, list.withTime);
    // Only a touch chooses another thing.
    const QSignalBlocker blocker(list.table);
    list.table->setRows(rows);
    RefreshNavigation();
}

/// Without a selected row the arrow down takes the first one.
void wTechConsignations::RefreshNavigation() {
    const auto refresh = [this](const TouchTable& table, int up, int down) {
        const int row = table.CurrentRow();
        EnableByPosition(Control(Navig, up), Control(Navig, down), row, table.RowCount());
        if (row < 0)
            Control(Navig, down)->setEnabled(table.RowCount() > 0);
    };
    refresh(*ui_->lvwPresent, PresentUp, PresentDown);
    refresh(*ui_->lvwNew, NewUp, NewDown);
    if (ui_->lvwPresent->CurrentRow() < 0 && ui_->lvwNew->CurrentRow() < 0)
        ui_->lblDetail->setText(GetText(TouchALine));
}

void wTechConsignations::imgControl_Click(int index) {
    switch (index) {
    case ChannelDown:
    case ChannelUp:
        channel_->StepBy(index == ChannelUp ? 1 : -1);
        break;
    case ModuleDown:
    case ModuleUp:
        module_->StepBy(index == ModuleUp ? 1 : -1);
        break;
    case ChannelOut:
    case ChannelBack:
        if (channel_->Value() == 0)
            QApplication::beep();
        else
            Request(channel_->Value(), index == ChannelOut);
        break;
    default:
        Request(0, index == PanelOut);
    }
}

/// A second request for the same thing undoes the first.
void wTechConsignations::Request(int channel, bool out) {
    const Thing thing{module_->Value(), channel};
    const QString key = FormatKey(thing.panel, channel);
    if (GetItem(new_, key) != nullptr)
        Remove(new_, key);
    else if (thing.panel == 0 || OutOfService::IsOut(thing) == out)
        QApplication::beep();
    else
        AjouteItem(new_, out ? Entry{thing, true, reason_.why, reason_.minutes} : Entry{thing});
}

void wTechConsignations::lblModule_Click() {
    const PanelClass* panel = PanelOf(module_->Value());
    channel_->setBounds(0, panel == nullptr ? 0 : panel->ChannelCount());
    ui_->lblTitle_0->setText(panel == nullptr ? QString() : NameOf({module_->Value()}));
    ui_->imgControl_6->setEnabled(panel != nullptr);
    ui_->imgControl_7->setEnabled(panel != nullptr);
    lblChannel_Change();
}

void wTechConsignations::lblChannel_Change() {
    const Thing thing{module_->Value(), channel_->Value()};
    const PanelClass* panel = PanelOf(thing.panel);
    const bool isThere = panel != nullptr && panel->Model() != Models::None && thing.channel >= 1;
    ui_->lblTitle_1->setText(isThere ? NameOf(thing) : QString());
    const bool isOut = isThere && OutOfService::IsOut(thing);
    ui_->imgControl_2->setEnabled(isThere && !isOut);
    ui_->imgControl_3->setEnabled(isOut);
}

/// What is touched in a list is what the buttons work on.
void wTechConsignations::Choose(List& list) {
    RefreshNavigation();
    const Entry* entry = GetItem(list, list.table->CurrentTag());
    if (entry == nullptr)
        return;
    module_->setValue(entry->thing.panel);
    channel_->setValue(entry->thing.channel);
    if (&list == &new_ && entry->out) {
        reason_ = {entry->why, entry->minutes};
        ShowReason();
    }
    const bool isOut = OutOfService::IsOut(entry->thing);
    ui_->lblDetail->setText(isOut ? DetailOf(entry->thing)
                                  : ReasonText(entry->why, entry->minutes));
}

void wTechConsignations::ShowReason() {
    ui_->lblReason->setText(ReasonText(reason_.why, reason_.minutes));
}

/// The touched line that is to go out, or null.
wTechConsignations::Entry* wTechConsignations::ChosenToGoOut() {
    const Entry* chosen = GetItem(new_, ui_->lvwNew->CurrentTag());
    return chosen == nullptr || !chosen->out ? nullptr
                                             : &new_.entries[new_.entries.indexOf(*chosen)];
}

void wTechConsignations::imgReason_Click() {
    const QPointer<wTechConsignations> self(this);
    const auto chosen = AskOutOfService(reason_);
    if (!chosen || !IsLoaded(self.data()))
        return;
    reason_ = *chosen;
    ShowReason();
    if (Entry* entry = ChosenToGoOut()) {
        entry->why = reason_.why;
        entry->minutes = reason_.minutes;
        ui_->lblDetail->setText(ReasonText(entry->why, entry->minutes));
    }
}

void wTechConsignations::imgNavig_Click(int index) {
    switch (index) {
    case NewUp:
    case NewDown:
        Move(new_, index == NewDown ? 1 : -1);
        break;
    case PresentUp:
    case PresentDown:
        Move(present_, index == PresentDown ? 1 : -1);
        break;
    case HelpOnScreen:
        ShowHelp();
        break;
    case CloseScreen:
        LeaveModal();
        break;
    default:
        break;
    }
}

void wTechConsignations::Move(List& list, int by) {
    TouchTable& table = *list.table;
    if (table.CurrentRow() >= 0)
        table.MoveBy(by);
    else if (table.RowCount() > 0)
        table.SelectTag(table.Cell(0, 0));
}

void wTechConsignations::imgDelete_Click() {
    const QString key = ui_->lvwNew->CurrentTag();
    if (key.isEmpty()) {
        QApplication::beep();
        return;
    }
    const QPointer<wTechConsignations> self(this);
    const int answer = Message(GetText(DeleteIt), Messages::Question | Messages::OkCancel);
    if (IsLoaded(self.data()) && answer == Messages::Ok)
        Remove(new_, key);
}

bool wTechConsignations::Take() {
    OutOfService::Apply(new_.entries);
    new_.entries.clear();
    TellOutOfService();
    return true;
}

void wTechConsignations::Keep() {
    keptEdit.Keep(present_.entries, new_.entries);
}
