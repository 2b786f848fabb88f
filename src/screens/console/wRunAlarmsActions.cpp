// What the operator's touches on the alarm console do.

#include "bus/Registers.h"
#include "bus/wPolling.h"
#include "core/FormNames.h"
#include "core/Global.h"
#include "events/Klaxon.h"
#include "model/Access.h"
#include "model/CurrentConfig.h"
#include "model/Models.h"
#include "platform/Clock.h"
#include "screens/console/wRunAlarms.h"
#include "screens/dialogs/AskPassword.h"
#include "screens/dialogs/dlgConsigne.h"
#include "screens/touch/Navigation.h"
#include "ui_wRunAlarms.h"

#include <QKeyEvent>
#include <QPointer>
#include <utility>

namespace {

/// Two touches within this are one, ms.
constexpr qint64 BounceMs = 300;

/// The last channel whose instruction the console looks up. Sites count on it as it is.
constexpr qint16 LastChannelWithInstruction = 23;

/// Only a fault that still waits for its acknowledgement concerns the panel. What was merely
/// brought back to the list does not, and the Q6200XT takes no acknowledgement over the bus.
bool ConcernsPanel(const EventClass& event) {
    return Family::IsChannel(event.Chnl()) && event.Param() != 0 &&
           !(event.Param() == 1 && event.Aff() < 2) && event.Aff() != ReactivatedAff &&
           Global::Configuration().Panel(event.Panel()).Model() != Models::Q6200XT;
}

void AcknowledgeOnBus(qint16 panel) {
    wPolling* comm = Polling();
    if (comm == nullptr)
        return;
    comm->SendCommand(std::make_shared<CommandClass>(
        panel, Registers::PanelCommand, Words{Registers::Acknowledge}, DateTimes::Now()));
    EventClass event(panel, Family::System, 0, SystemEvents::AcknowledgedOnPc);
    comm->SendEvent(event);
}

} // namespace

bool wRunAlarms::HasSelectionInSight() {
    if (Rows().Position().InSight())
        return true;
    Rows().Position().ShowCurrent();
    RecaleCurseur();
    return false;
}

/// Nothing is acknowledged that the operator doesn't see, and a finger that bounces acknowledges
/// one row and not the next as well.
void wRunAlarms::imgAcquit_Click() {
    const qint64 now = platform::Clock::Current().MonotonicMs();
    const qint64 last = std::exchange(acquitTouched_, now);
    if (now - last < BounceMs || Rows().IsEmpty() || !HasSelectionInSight() ||
        !InsistOnLevel(*this, Levels::Operator))
        return;
    // The bus may have changed the list while the code was entered, at the last moment even the
    // selection.
    const bool seen = !guard_->Holds() && !selectionGuard_->Holds() &&
                      (Rows().IsEmpty() || HasSelectionInSight());
    Alarme(StopAlarme);
    if (seen && !Rows().IsEmpty())
        Acknowledge();
}

void wRunAlarms::Acknowledge() {
    const int row = Rows().Current();
    EventClass event;
    event.setID(Rows().Row(row).data);
    const bool isGone = event.Chnl() == Family::Presence;
    const bool isState = event.Chnl() <= Family::LastChannel && event.Param() == 0;
    if (isGone || isState)
        RemoveSelected();
    else if (event.Aff() == ReactivatedAff)
        Rows().SetColour(row, AlarmRows::White);
    if (ConcernsPanel(event))
        AcknowledgeOnBus(event.Panel());
    RecaleCurseur();
}

void wRunAlarms::RemoveSelected() {
    Rows().Remove(Rows().Current());
    RecaleCurseur();
}

void wRunAlarms::imgConsigne_Click() {
    if (Rows().IsEmpty())
        return;
    EventClass event;
    event.setID(Rows().Row(Rows().Current()).data);
    int number = 0;
    if (event.Panel() >= 1 && event.Panel() <= ConfigClass::PanelCount && event.Chnl() >= 1 &&
        event.Chnl() <= LastChannelWithInstruction)
        number = Global::Configuration().Panel(event.Panel()).Channel(event.Chnl()).HelpNum();
    dlgConsigne::PresentNumber(Rows().Row(Rows().Current()).text, number);
}

/// The buttons are the keys of the list.
void wRunAlarms::imgControl_Click(int index) {
    static constexpr Qt::Key Keys[] = {Qt::Key_PageUp, Qt::Key_Up, Qt::Key_Down, Qt::Key_PageDown};
    static constexpr int FirstIndex = 4;
    QKeyEvent press(QEvent::KeyPress, Keys[index - FirstIndex], Qt::NoModifier);
    QCoreApplication::sendEvent(ui_->grdAlarms, &press);
    RecaleCurseur();
}

void wRunAlarms::imgHisto_Click() {
    OpenScreen(FormNames::wHistoric);
}

void wRunAlarms::imgTelecommande_Click() {
    if (InsistOnLevel(*this, Levels::Operator))
        OpenScreen(FormNames::wTeleCmdes);
}

void wRunAlarms::imgStopRun_Click() {
    wPolling* comm = Polling();
    if (comm == nullptr || !TryLevel(*this, Levels::Configuration))
        return;
    // A port that doesn't open is told in a box; the operator may be gone before it.
    const QPointer<wRunAlarms> self(this);
    comm->setRun(!comm->Run());
    if (self)
        ShowRunState();
}

void wRunAlarms::imgNavig_Click() {
    if (!TryLevel(*this, Levels::Configuration) || Forms::Load(FormNames::wMain) == nullptr)
        return;
    Forms::Show(FormNames::wMain);
    Unload();
}

/// For the technician: the traffic on the bus.
void wRunAlarms::imgCommWatch_Click() {
    OpenScreen(FormNames::wPolling);
}

void wRunAlarms::lblLogin_Click() {
    const QPointer<wRunAlarms> self(this);
    AskPassword(this);
    if (self)
        Form_Activate();
}
