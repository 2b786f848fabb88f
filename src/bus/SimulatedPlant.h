#pragma once

#include "core/Rehearsal.h"
#include "platform/ActivityDetection.h"
#include "platform/Companion.h"

#include <QList>
#include <QMap>
#include <QObject>
#include <QSet>
#include <QTimer>
#include <utility>

/// The modules of a rehearsal: the simulator on the far end of the bus, and what was done to the
/// wiring of its channels. It plays the panels of the site as the site has them now, and comes up
/// again with the same wiring when it dies. The rehearsal ends with it, and when nobody is there.
class SimulatedPlant : public QObject {
    Q_OBJECT
public:
    /// What a channel's wiring shows.
    enum class Contact { Normal, Active, CableFault };

    explicit SimulatedPlant(QObject* parent = nullptr);
    ~SimulatedPlant() override;

    /// Starts the modules. False when they can't be played.
    bool Start();
    /// Number of the simulator's process, 0 for none.
    qint64 Process() const { return simulator_.Number(); }

    Contact ContactOf(int panel, int channel) const { return contacts_.value({panel, channel}); }
    void setContact(int panel, int channel, Contact contact);
    /// A module that is off hears nothing and doesn't answer.
    bool IsOff(int panel) const { return off_.contains(panel); }
    void setOff(int panel, bool off);
    /// The acknowledgement key on the module's front.
    void PressAcknowledge(int panel);

    /// The watch on whoever rehearses.
    platform::ActivityDetection& Attendance() { return attendance_; }

    /// That of this program, null outside a rehearsal.
    static SimulatedPlant* Current();

Q_SIGNALS:
    /// The rehearsal must end.
    void Over(Rehearsal::Ending ending);

private:
    bool Play(const QByteArray& scenario);
    void FollowSite();
    void ComeUpAgain();
    bool DiesTooOften();
    void TellContact(int panel, int channel, Contact contact);

    platform::Companion simulator_{this};
    platform::ActivityDetection attendance_{this};
    QTimer follow_{this};
    QByteArray played_; // scenario, empty for none
    QMap<std::pair<int, int>, Contact> contacts_;
    QSet<int> off_;
    QList<qint64> deaths_; // monotonic, ms
};
