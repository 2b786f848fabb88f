#pragma once

#include "bus/BusEngine.h"
#include "bus/BusSynchro.h"
#include "bus/CommandQueue.h"
#include "bus/Reactivation.h"
#include "events/DirectPrinting.h"
#include "events/EventClass.h"
#include "events/EventForwarder.h"
#include "events/EventPrinter.h"
#include "events/SecondFolder.h"
#include "platform/ActivityDetection.h"
#include "platform/SerialLink.h"
#include "platform/ShutdownWatch.h"

#include <QList>
#include <QObject>
#include <QTimer>
#include <array>
#include <memory>

class BusDiagnosis;
class BusWatch;
class OutOfServiceWatch;
class PanelClass;

/// What can be said of the watch over the panels.
enum class BusState {
    Stopped,      ///< nobody is polled
    WaitsForPort, ///< starts as soon as its port is there
    FirstReading, ///< runs, but not every active panel was asked since the start
    PortLost,     ///< runs, but its port is gone
    Running,      ///< every active panel is watched, or known as missing
};

/// The backbone: owns the bus link, the command queue, the numbering of events and the timers.
/// Loaded before any screen, unloaded last. Screens reach the bus through `SendCommand`, make
/// events through `SendEvent` and learn of the bus through the signals.
class wPolling : public QObject, public BusEngine {
    Q_OBJECT
public:
    /// Addresses of the bus.
    static constexpr int PanelCount = 64;
    /// Rest between two rounds, ms.
    static constexpr int PollRest = 25;

    explicit wPolling(std::unique_ptr<platform::SerialLink> link);
    ~wPolling() override;

    /// `started` is when the program began: a midnight since counts. 0 is now.
    void Form_Load(DateTime started = 0);
    /// Last words before the end: silences the horn and traces an end from outside, once.
    void Form_QueryUnload(platform::UnloadMode mode);
    /// Closes the port and stores the queue. A second call does nothing.
    void Form_Unload();

    /// Polling is on.
    bool Run() const { return run_; }
    /// Starts or stops the bus. A port that can't be opened is told and changes nothing.
    void setRun(bool on);
    /// Starts the bus now, or as soon as its port is there; it is tried each 10 s.
    void RunWhenPortComes();
    bool IsClosing() const { return closing_; }
    /// The polling is at work on the line and lets events run: whoever reads by himself waits.
    bool InRound() const { return inRound_ || synchronising_; }

    /// The panel is to be watched: active, and of a model that there is.
    static bool IsWatched(int address);
    BusState State() const;
    /// Addresses of the active panels that don't answer, upwards. One that wasn't asked since the
    /// start of the bus is not among them.
    QList<int> MissingPanels() const;
    /// One cause for all: the port is gone while the bus runs, or all active panels are missing
    /// and there are at least two.
    bool BusLost() const { return IsLost(MissingPanels()); }

    /// Puts a command into the queue unless it already waits there.
    void SendCommand(const CommandPtr& command) override;
    /// Carries out one command if it is due.
    void TraiteCommande(CommandClass& command) { queue_.TraiteCommande(command); }
    /// Stamps and numbers an event made elsewhere and routes it.
    void SendEvent(EventClass& event) override;

    /// One round: the queue, then the next panel that is due. A queue that takes long is parted:
    /// the round goes on with the next tick, and input comes through in between.
    void RunComm();
    /// Clears all error counters and reconfigures the link.
    void ReinitComm();
    /// Opens the link as the site says.
    void ConfigCommPort();
    /// Reads with which number the events go on, never back behind one that was given.
    void ReadLastEvent();
    /// Reads the retention of the history again.
    void ConfigurationChanged();
    /// Sets the watch on the operator's input to the site's delay.
    void SetupUserSleep();
    /// Puts the printer on the site's port, with the line that is to be printed next.
    void SetupPrinter();

    /// Makes PC and modules agree; runs once by itself, with the first start of the bus.
    void SynchroGeneraleBus();
    /// Starts the slow update: one panel at the end of each turn.
    void StartUpdate() { synchro_.StartUpdate(); }
    /// The day's record of each panel, and the release of mirrored states that nothing holds.
    void MidnightSynchro() { synchro_.MidnightSynchro(); }
    /// The same with a notice of a text that tells how far it is.
    void MidnightSynchro(const QString& notice);

    platform::SerialLink& CommBus() { return *link_; }
    /// Counters of the exchanges and the frames of late.
    const BusDiagnosis& Diagnosis() const { return *diagnosis_; }
    DirectPrinting& dpPrinter() { return dpPrinter_; }
    EventPrinter& Paper() { return paper_; }
    EventForwarder& Forwarder() { return forwarder_; }
    /// Takes what a midnight copies.
    SecondFolder& Second() { return second_; }
    const CommandClasses& Commands() const { return queue_.Commands(); }
    CommandQueue& Queue() { return queue_; }
    /// Counters and next poll of a panel, as the grid shows them; empty before its first poll.
    QString ErrorText(int panel) const { return errorTexts_[size_t(panel)]; }
    /// Panel polled last, 0 before the first.
    int PolledPanel() const { return polledPanel_; }
    /// "hh:mm:ss" of the last round.
    QString LastRound() const { return lastRound_; }
    platform::ActivityDetection& UserSleep() { return userSleep_; }

    /// What is out of service, with its ends and its lines.
    OutOfServiceWatch& ServiceWatch() { return *outOfService_; }

    /// Ticks of the timers.
    void tmrMidnight_Timer();
    void tmrReactiv_Timer();

    /// Number of the next event.
    qint32 IncEvtNum() override;
    /// Routes one event to all its consumers.
    void TraiteEvent(EventClass& event);
    /// Turns the words of a good poll into events.
    void ExploitePanneau(PanelClass& panel, const Words& words);
    /// Makes the event of a panel that came or went.
    void TraitePanelMove(int address, bool present) override;
    /// Counts a failed poll.
    void AddError(int address) override;

Q_SIGNALS:
    /// A command is given up.
    void WriteError(const CommandClass& command);
    /// An event has been routed.
    void BusEvent(const EventClass& event);
    /// A panel came or went.
    void PanelMove(int panel, bool present, int number, int id);
    /// A turn over the addresses ended in which at least one panel was polled.
    void PollDone();
    /// The slow update has gone through the panels.
    void UpdateDone();

    /// A round has ended; what the grid shows of the polled panel is new.
    void RoundDone(int panel);
    void RunChanged(bool on);
    /// `State`, `MissingPanels` or `BusLost` are new.
    void StateChanged();
    /// Port or settings of the link are new.
    void LinkChanged();
    /// A general reading of the bus begins or ends.
    void Synchronising(bool on);
    /// The level of the connected user changed without a screen's doing.
    void UserChanged();

private:
    bool EndIfClosing();
    bool EndWanted() const override;
    void JudgeAnew();
    bool IsLost(const QList<int>& missing) const;
    void TellState();
    void TellService() const;
    void StopRound();
    void CheckFaults();
    bool OpenPort();
    int PickPanel(bool& turnEnded);
    void PollPanel(int address);
    void FollowClock();
    void ResetClocks(DateTime now);
    void ReopenLostPort();
    void KeepPrinterOffTheBus();
    void TellPrinterError(const QString& text);
    void UserSleep_UserIsNotHere();

    void ExploiteQFamily(PanelClass& panel, const Words& words);
    bool ReadMemory(int address, Words& memory);
    void ExploiteEvent(PanelClass& panel, quint16 head, quint16 clock);
    void ExploiteFlag(PanelClass& panel, const Words& words);
    void ExploiteStates(PanelClass& panel, const Words& words);
    void TraiteKlaxon(const EventClass& event);
    void ShowConsole();

    std::unique_ptr<platform::SerialLink> link_;
    std::unique_ptr<BusDiagnosis> diagnosis_;
    platform::ActivityDetection userSleep_;
    DirectPrinting dpPrinter_;
    EventPrinter paper_{dpPrinter_};
    EventForwarder forwarder_;
    SecondFolder second_;
    QTimer tmrPoll_;
    QTimer tmrMidnight_;
    QTimer tmrReactiv_;
    std::unique_ptr<BusWatch> watch_;
    std::unique_ptr<OutOfServiceWatch> outOfService_;
    CommandQueue queue_;
    BusSynchro synchro_;
    Reactivation reactivation_;

    bool run_ = false;
    bool inRound_ = false;
    bool closing_ = false;
    bool unloaded_ = false;
    bool firstStart_ = false;
    bool waitsForPort_ = false;
    bool synchronising_ = false;
    qint32 lastEvent_ = 0;
    qint16 pollPointer_ = 0;
    qint16 polledInTurn_ = 0;
    DateTime lastMidnightCheck_ = 0;
    DateTime lastRoundTime_ = 0;
    // How long histories stay, as the site has it; the purge reads the settings itself.
    bool periodUnit_ = false;
    int periodTime_ = 0;
    bool periodLimit_ = false;

    int polledPanel_ = 0;
    QString lastRound_;
    std::array<QString, PanelCount + 1> errorTexts_;
    // What `StateChanged` told last.
    BusState toldState_ = BusState::Stopped;
    bool toldLost_ = false;
    QList<int> toldMissing_;
    QString printerError_; // told last
    DateTime printerErrorTime_ = 0;
};

/// The one engine, or null before it is made and after its end.
wPolling* Polling();
