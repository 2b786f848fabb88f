#pragma once

#include "platform/Clock.h"
#include "platform/ShutdownWatch.h"
#include "platform/SingleInstance.h"

#include <QObject>
#include <memory>

class SimulatedPlant;
class BackupSchedule;
class wPolling;

/// The program from its first step to its last. After `Main` the event loop and the timers of
/// `wPolling` drive everything.
class Startup : public QObject {
    Q_OBJECT
public:
    Startup();
    ~Startup() override;

    /// Comes up; the event loop runs already, so that an end can come meanwhile. False when the
    /// program must end at once: it runs already, or there is no configuration base; the operator
    /// has been told. A rehearsal that can't be entered is an end as well.
    bool Main(bool rehearses = false);
    /// Ends the program: horn, trace, port, queue, screens.
    void End(platform::UnloadMode mode);

private:
    /// The start behind what could stop it: site, bus, sounds, first screen. An end that comes
    /// inside, in a box or a yield, leaves the rest out.
    void ComeUp();
    bool HasEnded() const;
    bool ClaimInstance();
    bool EnterRehearsal();
    void DropFormerAlarms();
    /// Reads the current-configuration file; the result is that of `ConfigClass.Read`, or -1
    /// when there is no file.
    qint32 ReadConfiguration();
    /// `result` is that of reading the site. False when the rehearsal is over.
    bool PlaySite(qint32 result);
    void LoadPolling();
    void StartByItself();
    void TellRehearsal();
    void TellStart();
    void TellStop();

    std::unique_ptr<platform::SingleInstance> instance_;
    std::unique_ptr<platform::ShutdownWatch> shutdownWatch_;
    std::unique_ptr<SimulatedPlant> plant_;
    std::unique_ptr<wPolling> polling_;
    std::unique_ptr<BackupSchedule> backups_;
    /// The day's change is due when a midnight has passed since.
    platform::DateTime started_ = platform::Clock::Current().Now();
    bool ended_ = false;
    bool stopTold_ = false;
};
