#include "bus/wPolling.h"

#include "bus/BusDiagnosis.h"
#include "bus/BusWatch.h"
#include "bus/CommFunctions.h"
#include "bus/LineOpening.h"
#include "bus/OutOfServiceWatch.h"
#include "core/Bytes.h"
#include "core/Config.h"
#include "core/ErrorHandling.h"
#include "core/Faults.h"
#include "core/FormNames.h"
#include "core/Forms.h"
#include "core/Global.h"
#include "core/Message.h"
#include "core/Pointer.h"
#include "core/SLVfonctions.h"
#include "core/Trace.h"
#include "events/Klaxon.h"
#include "model/BusSettings.h"
#include "model/ConfigClass.h"
#include "model/CurrentConfig.h"
#include "platform/DiskFlush.h"
#include "platform/RunTimeError.h"

#include <QStringList>

using ErrorHandling::Guard;

namespace {

wPolling* engine = nullptr;

constexpr int MidnightInterval = 1000;
constexpr int ReactivInterval = 10000;
/// One check of the operator's input each 6 s, ten checks a minute.
constexpr int InputCheckPeriod = 6000;
constexpr int InputChecksAMinute = 10;

} // namespace

wPolling* Polling() {
    return engine;
}

wPolling::wPolling(std::unique_ptr<platform::SerialLink> link)
    : link_(std::move(link))
    , diagnosis_(std::make_unique<BusDiagnosis>())
    , watch_(std::make_unique<BusWatch>())
    , outOfService_(std::make_unique<OutOfServiceWatch>(*this))
    , queue_(*link_, *watch_)
    , synchro_(*this, *link_, queue_)
    , reactivation_([this] { ShowConsole(); }) {
    engine = this;
    CommFunctions::ReportTo(diagnosis_.get());
    queue_.onGivenUp = [this](const CommandClass& command) { Q_EMIT WriteError(command); };
    tmrPoll_.setSingleShot(true);
    tmrPoll_.setInterval(1);
    tmrMidnight_.setInterval(MidnightInterval);
    tmrReactiv_.setInterval(ReactivInterval);
    connect(&tmrPoll_, &QTimer::timeout, this, &wPolling::RunComm);
    connect(&tmrMidnight_, &QTimer::timeout, this, &wPolling::tmrMidnight_Timer);
    connect(&tmrReactiv_, &QTimer::timeout, this, &wPolling::tmrReactiv_Timer);
    connect(this, &wPolling::BusEvent, &forwarder_, &EventForwarder::Forward);
    connect(&userSleep_, &platform::ActivityDetection::UserIsNotHere, this,
            &wPolling::UserSleep_UserIsNotHere);
}

wPolling::~wPolling() {
    if (engine != this)
        return;
    engine = nullptr;
    CommFunctions::ReportTo(nullptr);
}

void wPolling::Form_Load(DateTime started) {
    lastMidnightCheck_ = started != 0 ? started : DateTimes::Now();
    Guard("wPolling.Form_Load", [&] {
        BusWatch::CheckDisk();
        ReadLastEvent();
        ConfigurationChanged();
        closing_ = false;
        run_ = false;
        ReinitComm();
        queue_.Clear();
        SetupPrinter();
        paper_.Recall();
        forwarder_.Start();
        // The end of the program may have come while a box of the two stood.
        if (closing_)
            return;
        queue_.Restore();
        SetupUserSleep();
    });
    if (closing_)
        return;
    tmrMidnight_.start();
    tmrReactiv_.start();
}

void wPolling::SetupUserSleep() {
    Guard("wPolling.SetupUserSleep", [&] {
        const int minutes = Global::Configuration().InactivityTime();
        userSleep_.setEnabled(false);
        userSleep_.setCheckPeriod(InputCheckPeriod);
        userSleep_.setCount(InputChecksAMinute * Bytes::Greater(minutes, 1));
        userSleep_.setEnabled(minutes >= 1);
    });
}

void wPolling::Form_QueryUnload(platform::UnloadMode mode) {
    Guard("wPolling.Form_QueryUnload", [&] {
        Alarme(StopAlarme);
        if (closing_)
            return;
        QString who;
        if (mode == platform::UnloadMode::TaskManager)
            who = QStringLiteral("TASK  MANAGER");
        else if (mode == platform::UnloadMode::System)
            who = QStringLiteral("CLOSE  WINDOWS");
        else
            return;
        Trace::Write(DateTimes::DateAndTime(DateTimes::Now()) + u' ' + who +
                     QStringLiteral("  ******** SYSTEM  APPLI STOP    ") + Trace::Stars(26) + u' ' +
                     Trace::Stars(39));
    });
}

void wPolling::Form_Unload() {
    closing_ = true;
    if (unloaded_)
        return;
    unloaded_ = true;
    tmrPoll_.stop();
    tmrMidnight_.stop();
    tmrReactiv_.stop();
    userSleep_.setEnabled(false);
    Guard("wPolling.Form_Unload", [&] {
        if (link_->PortOpen())
            link_->setPortOpen(false);
        queue_.Store();
        paper_.Finish();
        forwarder_.Stop();
        platform::DiskFlush::Pay();
    });
}

void wPolling::setRun(bool on) {
    Guard("wPolling.Run", [&] {
        if (on && (closing_ || synchronising_))
            return;
        if (on && !OpenPort()) {
            TellState();
            Message(GetText(20008).replace(u'$', QString::number(link_->CommPort())),
                    Messages::Critical);
            return;
        }
        // A bus that was started in vain waits on.
        waitsForPort_ = false;
        if (on)
            Faults::Clear(Faults::Kind::RoundStopped);
        else
            queue_.Receipts().DoubtAll();
        EventClass event(0, Family::System, 0,
                         on ? SystemEvents::CommStarted : SystemEvents::CommStopped);
        SendEvent(event);
        tmrPoll_.setInterval(PollRest);
        if (on && !run_) {
            if (!inRound_)
                queue_.LeaveWalk();
            JudgeAnew();
            if (!firstStart_) {
                SynchroGeneraleBus();
                if (EndWanted())
                    return;
                firstStart_ = true;
            }
            tmrPoll_.start();
        }
        run_ = on;
        Q_EMIT RunChanged(on);
        TellState();
    });
}

/// False when there is no port.
bool wPolling::OpenPort() {
    try {
        OpenLine(*link_);
    } catch (const platform::RunTimeError&) {
        return false;
    }
    return link_->PortOpen();
}

void wPolling::RunWhenPortComes() {
    if (OpenPort()) {
        setRun(true);
        return;
    }
    waitsForPort_ = true;
    Q_EMIT RunChanged(false);
    TellState();
}

void wPolling::SendCommand(const CommandPtr& command) {
    Guard("wPolling.SendCommand", [&] { queue_.Add(command); });
}

void wPolling::ReadLastEvent() {
    lastEvent_ =
        qMax(lastEvent_, Bytes::LongVal(IniRead(QStringLiteral("General"),
                                                QStringLiteral("LastEvent"), QStringLiteral("0"))));
}

void wPolling::ConfigurationChanged() {
    Guard("wPolling.ConfigurationChanged", [&] {
        const auto read = [](const QString& key) {
            return int(Bytes::ShortVal(IniRead(QStringLiteral("Files"), key, QStringLiteral("0"))));
        };
        periodUnit_ = read(QStringLiteral("PeriodUnit")) != 0;
        periodTime_ = read(QStringLiteral("PeriodTime"));
        periodLimit_ = read(QStringLiteral("PeriodLimit")) != 0;
    });
}

void wPolling::ConfigCommPort() {
    KeepPrinterOffTheBus();
    Pointer::Hourglass();
    try {
        link_->setPortOpen(false);
        const BusSettings settings = BusSettings::Of(Global::Configuration().BusSettings());
        link_->setCommPort(Bytes::ShortVal(settings.port));
        if (settings.line.isEmpty())
            throw platform::RunTimeError(platform::errors::Subscript);
        link_->setSettings(settings.line);
        OpenLine(*link_);
    } catch (const platform::RunTimeError&) {
        // Told below by what it leads to: the port is closed.
    }
    Pointer::Default();
    Q_EMIT LinkChanged();
    if (!link_->PortOpen())
        Message(GetText(20008).replace(u'$', QString::number(link_->CommPort())),
                Messages::Critical);
}

void wPolling::ReinitComm() {
    Guard("wPolling.ReinitComm", [&] {
        const DateTime due = DateTimes::Now() - platform::OneSecond;
        for (int address = 1; address <= PanelCount; ++address) {
            PanelClass& panel = Global::Configuration().Panel(address);
            for (int counter = 0; counter <= 2; ++counter)
                panel.setErrCptr(counter, 0);
            panel.setNextPoll(due);
        }
        watch_->ForgetMemories();
        ConfigCommPort();
        TellState();
        Trace::Write(Trace::SystemLine(DateTimes::Now(), QStringLiteral("REINIT"),
                                       QStringLiteral("REINIT")));
    });
}

/// Level 1 is never thrown out: acknowledging must stay possible.
void wPolling::UserSleep_UserIsNotHere() {
    Guard("wPolling.UserSleep_UserIsNotHere", [&] {
        const QString& own = FormNames::wPolling;
        const QString& console = FormNames::wRunAlarms;
        if (Global::Get().userLevel <= 1)
            return;
        Global::Get().userLevel = 0;
        Forms::UnloadAllBut({own});
        Forms::Show(console);
        Forms::BringToFront(console);
        Forms::UnloadAllBut({own, console});
        Q_EMIT UserChanged();
    });
}
