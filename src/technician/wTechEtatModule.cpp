#include "technician/wTechEtatModule.h"

#include "bus/Registers.h"
#include "bus/wPolling.h"
#include "core/Config.h"
#include "core/DateTimes.h"
#include "core/ErrorHandling.h"
#include "core/FormNames.h"
#include "core/Yield.h"
#include "model/Models.h"
#include "model/PanelClass.h"
#include "ui_wTechEtatModule.h"

#include <QPointer>

using ErrorHandling::Guard;

namespace {

constexpr int PollPeriod = 1000; // ms
/// Longest rest between two ticks, that of the polling for a panel that has just gone missing, ms.
constexpr int LongestPause = 60000;
constexpr int BlinkPeriod = 150; // ms
/// A tick that falls into a round of the polling comes again after so many ms.
constexpr int RoundPeriod = 50;
/// Failed reads until nothing is known any more.
constexpr int MaxFailures = 3;

/// What each button writes, from the first on.
struct Key {
    qint32 registerNo;
    qint16 value;
};
constexpr Key Keys[] = {
    {Registers::TestLeds, 1},     {Registers::PanelCommand, Registers::Acknowledge},
    {Registers::PanelCommand, 1}, {Registers::Function, 1},
    {Registers::Function, 0},     {Registers::PanelCommand, 3}};

constexpr int OtherModelText = 714301;
constexpr int ReadingText = 830101;
constexpr int ReadText = 830102;
constexpr int FailedText = 830103;
constexpr int SentText = 830011;
constexpr int ObeyedText = 830012;
constexpr int GivenUpText = 830013;

constexpr int TitleLines = 2;

} // namespace

wTechEtatModule::wTechEtatModule()
    : ScreenForm(FormNames::wTechEtatModule)
    , ui_(std::make_unique<Ui::wTechEtatModule>())
    , pause_(PollPeriod) {
    ui_->setupUi(this);
    Prepare();
    Form_Load();
}

wTechEtatModule::~wTechEtatModule() = default;

void wTechEtatModule::Form_Load() {
    Guard("wTechEtatModule.Form_Load", [&] {
        ui_->lblCommResult->clear();
        tmrPoll_.setObjectName(QStringLiteral("tmrPoll"));
        tmrPoll_.setInterval(PollPeriod);
        tmrClign_.setObjectName(QStringLiteral("tmrClign"));
        tmrClign_.setInterval(BlinkPeriod);
        tmrClign_.setTimerType(Qt::PreciseTimer);
        connect(&tmrPoll_, &QTimer::timeout, this, &wTechEtatModule::tmrPoll_Timer);
        connect(&tmrClign_, &QTimer::timeout, this, &wTechEtatModule::tmrClign_Timer);
        connect(&command_, &TechCommand::Changed, this, &wTechEtatModule::ShowCommand);
        if (Polling() != nullptr)
            connect(Polling(), &wPolling::PanelMove, this, [this](int panel, bool present) {
                if (present && panel_ != nullptr && panel == panel_->Numero())
                    setPause(PollPeriod);
            });
        OnClick(QStringLiteral("cmdBoutons"), [this](int index) { cmdBoutons_Click(index); });
        int index = 0;
        for (QLabel* label : {ui_->lblTestLeds, ui_->lblAckCL, ui_->lbAckKL, ui_->lblKlOn,
                              ui_->lblKlOff, ui_->lblEffDEf}) {
            ++index;
            OnClick(label, [this, index] { cmdBoutons_Click(index); });
        }
        OnClick(ui_->imgClose, [this] { imgClose_Click(); });
    });
}

void wTechEtatModule::Form_Unload() {
    EnableTimers(false);
}

void wTechEtatModule::MiseEnFormeModule(PanelClass& panel) {
    Guard("wTechEtatModule.MiseEnFormeModule", [&] {
        panel_ = &panel;
        ui_->lblModType_0->setNum(panel.Numero());
        ui_->lblModType_1->setText(ModuleName(panel.Model()));
        ui_->lblTitle->setText(FrontTiles::Broken(panel.TitleLine(), ui_->lblTitle->fontMetrics(),
                                                  ui_->lblTitle->width(), TitleLines));
        ui_->lblCommand->setText(
            panel.ReportsOtherModel()
                ? GetText(OtherModelText).replace(u'$', ModuleName(panel.ActualModel()))
                : QString());
        ui_->fraVoyants->setPanel(panel);
        for (const int index : Indices(QStringLiteral("cmdBoutons")))
            Control(QStringLiteral("cmdBoutons"), index)->setEnabled(true);
    });
}

void wTechEtatModule::Present(PanelClass& panel) {
    Guard("wTechEtatModule.Present", [&] {
        const QPointer<wTechEtatModule> self(this);
        MiseEnFormeModule(panel);
        EnableTimers(true);
        ShowModal();
        if (!self)
            return;
        EnableTimers(false);
        Unload();
    });
}

void wTechEtatModule::EnableTimers(bool on) {
    for (QTimer* timer : {&tmrPoll_, &tmrClign_}) {
        if (on)
            timer->start();
        else
            timer->stop();
    }
}

void wTechEtatModule::tmrPoll_Timer() {
    Guard("wTechEtatModule.tmrPoll_Timer", [&] {
        if (closing_) {
            reading_ = false;
            imgClose_Click();
            return;
        }
        if (reading_ || !tmrPoll_.isActive())
            return;
        const int period = MayRead() ? pause_ : RoundPeriod;
        if (tmrPoll_.interval() != period)
            tmrPoll_.setInterval(period);
        if (!MayRead())
            return;
        const QPointer<wTechEtatModule> self(this);
        reading_ = true;
        Guard("wTechEtatModule.tmrPoll_Timer", [&] { ReadModule(); });
        if (!self)
            return;
        reading_ = false;
        RestUntilNextTick();
    });
}

/// A read without an answer costs more than a second, in which nobody else is polled. The rest
/// counts from the end of the reads.
void wTechEtatModule::RestUntilNextTick() {
    const bool dead = !lampsKnown_ && !hornKnown_ && Polling() != nullptr && Polling()->Run();
    if (dead)
        setPause(qMin(pause_ * 2, LongestPause));
    else if (pause_ != PollPeriod)
        setPause(PollPeriod);
}

void wTechEtatModule::setPause(int pause) {
    pause_ = pause;
    tmrPoll_.setInterval(pause);
}

/// Not inside a round, which lets events run between two exchanges of its own.
bool wTechEtatModule::MayRead() const {
    const wPolling* engine = Polling();
    return engine != nullptr && panel_ != nullptr && !engine->InRound() &&
           !static_cast<const BusEngine*>(engine)->EndWanted();
}

/// Lamps, then horn. The form may be gone when a read has ended.
void wTechEtatModule::ReadModule() {
    const auto showLamps = [this](const Words* words) {
        if (words != nullptr)
            ui_->fraVoyants->setWords(*words);
        else
            ui_->fraVoyants->setUnknown();
    };
    if (ReadUntilSettled(Registers::State, panel_->ChannelCount(), lampsKnown_, showLamps))
        ReadUntilSettled(Registers::Function, 1, hornKnown_,
                         [this](const Words* words) { ShowHorn(words); });
}

/// Gives `show` the words of each good read, and null after the third that failed. A good read
/// leaves the count of failures as it is: after one the register is read again and again until two
/// more have failed. Where nothing is known any more one read decides, well or not. False when the
/// reading is to end: nothing of the form may be touched then.
bool wTechEtatModule::ReadUntilSettled(qint32 registerNo, int count, bool& known,
                                       const std::function<void(const Words* words)>& show) {
    int failures = known ? 0 : MaxFailures - 1;
    while (tmrPoll_.isActive()) {
        ShowResult(ReadingText);
        Words words(count);
        const bool read = LitMots(Polling()->CommBus(), panel_->Numero(), registerNo, words);
        ShowResult(read ? ReadText : FailedText);
        if (!read)
            failures = (failures + 1) % MaxFailures;
        else if (!known)
            failures = 0;
        if (read || failures == 0)
            known = read;
        if (read)
            show(&words);
        else if (failures == 0)
            show(nullptr);
        if (!LetEventsRun())
            return false;
        if (failures == 0)
            return true;
    }
    return false;
}

/// False when the form is closed or hidden, was taken away by an event, or may not read any more.
bool wTechEtatModule::LetEventsRun() {
    const QPointer<wTechEtatModule> self(this);
    Yield();
    return self && !closing_ && IsLoaded(this) && isVisible() && MayRead();
}

void wTechEtatModule::ShowResult(int text) {
    ui_->lblCommResult->setText(GetText(text));
    ui_->lblCommResult->repaint();
}

void wTechEtatModule::ShowHorn(const Words* words) {
    ui_->shpKlaxon->setFillColor(words == nullptr    ? LampColours::Yellow
                                 : words->at(0) == 0 ? LampColours::Grey
                                                     : LampColours::Red);
}

void wTechEtatModule::tmrClign_Timer() {
    Guard("wTechEtatModule.tmrClign_Timer", [&] {
        if (!closing_)
            ui_->fraVoyants->Blink();
    });
}

/// A touch may come between two reads: those go on behind it, as the timer has its former state.
void wTechEtatModule::cmdBoutons_Click(int index) {
    if (panel_ == nullptr || !Control(QStringLiteral("cmdBoutons"), index)->isEnabled())
        return;
    const Key& key = Keys[index - 1];
    const QPointer<wTechEtatModule> self(this);
    const bool polls = tmrPoll_.isActive();
    tmrPoll_.stop();
    button_ = index;
    command_.SendCommand(std::make_shared<CommandClass>(panel_->Numero(), key.registerNo,
                                                        Words{key.value}, DateTimes::Now()));
    if (self && polls && !closing_)
        tmrPoll_.start();
}

/// With the polling stopped a command blocks for its tries: what is told is painted at once.
void wTechEtatModule::ShowCommand() {
    const QLabel* const labels[] = {ui_->lblTestLeds, ui_->lblAckCL, ui_->lbAckKL,
                                    ui_->lblKlOn,     ui_->lblKlOff, ui_->lblEffDEf};
    const auto state = command_.Outcome();
    if (state == TechCommand::State::Obeyed)
        setPause(PollPeriod);
    const int text = state == TechCommand::State::Sent     ? SentText
                     : state == TechCommand::State::Obeyed ? ObeyedText
                                                           : GivenUpText;
    ui_->lblCommand->setText(GetText(text).replace(u'$', labels[button_ - 1]->text()));
    ui_->lblCommand->repaint();
}

void wTechEtatModule::imgClose_Click() {
    EnableTimers(false);
    closing_ = true;
    Unload();
}
