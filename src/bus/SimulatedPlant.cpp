#include "bus/SimulatedPlant.h"

#include "bus/wPolling.h"
#include "core/Boxes.h"
#include "core/Config.h"
#include "core/ErrorHandling.h"
#include "core/Global.h"
#include "core/Message.h"
#include "core/Trace.h"
#include "model/CurrentConfig.h"
#include "model/SimulatedSite.h"
#include "platform/Clock.h"
#include "platform/ShutdownWatch.h"

#include <QFile>

using ErrorHandling::Guard;

namespace {

constexpr int StartPatience = 10000; // ms
constexpr int FollowPeriod = 2000;   // ms
/// A rehearsal that nobody touches for an hour is over: the plant waits to be watched.
constexpr int AttendancePeriod = 60000; // ms
constexpr int AttendanceCount = 60;
/// So many deaths of the simulator within a minute are no accident.
constexpr int MostDeaths = 3;
constexpr qint64 DeathSpan = 60000; // ms

constexpr int DiedText = 718031;

SimulatedPlant* current = nullptr;

QByteArray Order(const char* verb, int panel) {
    return QByteArray(verb) + ' ' + QByteArray::number(panel);
}

} // namespace

SimulatedPlant::SimulatedPlant(QObject* parent)
    : QObject(parent) {
    current = this;
    follow_.setInterval(FollowPeriod);
    attendance_.setCheckPeriod(AttendancePeriod);
    attendance_.setCount(AttendanceCount);
    connect(&follow_, &QTimer::timeout, this, &SimulatedPlant::FollowSite);
    connect(&simulator_, &platform::Companion::Died, this, &SimulatedPlant::ComeUpAgain);
    connect(&attendance_, &platform::ActivityDetection::UserIsNotHere, this,
            [this] { Q_EMIT Over(Rehearsal::Ending::Unattended); });
}

SimulatedPlant::~SimulatedPlant() {
    current = nullptr;
}

SimulatedPlant* SimulatedPlant::Current() {
    return current;
}

bool SimulatedPlant::Start() {
    if (!Play(SimulatedSite::ScenarioOf(Global::Configuration())))
        return false;
    follow_.start();
    attendance_.setEnabled(true);
    return true;
}

/// The line is another with each simulator: whoever is on it opens it anew.
bool SimulatedPlant::Play(const QByteArray& scenario) {
    played_ = scenario;
    simulator_.End();
    if (scenario.isEmpty())
        return true;
    const QString path = Global::InApplicationFolder(QStringLiteral("Rehearsal.json"));
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(scenario) != scenario.size())
        return false;
    file.close();
    if (!simulator_.Start(Rehearsal::SimulatorProgram(),
                          {QStringLiteral("--quiet"), QStringLiteral("--link"), Rehearsal::Line(),
                           QStringLiteral("--scenario"), path},
                          StartPatience))
        return false;
    for (const auto& [place, contact] : contacts_.asKeyValueRange())
        TellContact(place.first, place.second, contact);
    for (const int panel : std::as_const(off_))
        simulator_.Tell(Order("mute", panel));
    if (wPolling* polling = Polling()) {
        // What was taken of a former module's events says nothing of this one's.
        polling->Queue().Receipts().DoubtAll();
        polling->ReinitComm();
    }
    return true;
}

/// Panels that an installer sets up meanwhile are there as well.
void SimulatedPlant::FollowSite() {
    Guard("SimulatedPlant.FollowSite", [&] {
        const QByteArray scenario = SimulatedSite::ScenarioOf(Global::Configuration());
        if (scenario != played_ && !Play(scenario))
            ComeUpAgain();
    });
}

void SimulatedPlant::ComeUpAgain() {
    Guard("SimulatedPlant.ComeUpAgain", [&] {
        do {
            // Whoever ends the program may have ended both.
            if (platform::ShutdownWatch::Pending())
                return;
            if (DiesTooOften()) {
                Q_EMIT Over(Rehearsal::Ending::Simulator);
                return;
            }
        } while (!Play(played_));
        Boxes::Post(GetText(DiedText), Messages::Warning);
    });
}

/// Counts a death; one that hasn't come up is dead as well.
bool SimulatedPlant::DiesTooOften() {
    const qint64 now = platform::Clock::Current().MonotonicMs();
    deaths_.removeIf([now](qint64 death) { return now - death > DeathSpan; });
    deaths_ += now;
    Trace::Note(QStringLiteral("SIMULATOR DIED"));
    return deaths_.size() >= MostDeaths;
}

void SimulatedPlant::setContact(int panel, int channel, Contact contact) {
    if (contact == Contact::Normal)
        contacts_.remove({panel, channel});
    else
        contacts_[{panel, channel}] = contact;
    TellContact(panel, channel, contact);
}

void SimulatedPlant::TellContact(int panel, int channel, Contact contact) {
    const char* verbs[] = {"normal", "active", "fault"};
    QByteArray order = Order(verbs[int(contact)], panel) + ' ' + QByteArray::number(channel);
    if (contact == Contact::CableFault)
        order += " cable";
    simulator_.Tell(order);
}

void SimulatedPlant::setOff(int panel, bool off) {
    if (off)
        off_.insert(panel);
    else
        off_.remove(panel);
    simulator_.Tell(Order(off ? "mute" : "unmute", panel));
}

void SimulatedPlant::PressAcknowledge(int panel) {
    simulator_.Tell(Order("ack", panel));
}
