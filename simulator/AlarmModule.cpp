#include "simulator/AlarmModule.h"

namespace Sim {

namespace {

constexpr std::uint16_t FirstState = 1;
constexpr std::uint16_t FirstForced = 17;
constexpr std::uint16_t ForcedFault = 2;
constexpr std::uint16_t ForcedActive = 3;

/// Code of the change of state: a fault is an active contact, and its kind follows as an alarm.
constexpr std::uint16_t StateCode(Contact contact) {
    return contact == Contact::FirstFault || contact == Contact::SecondFault
               ? static_cast<std::uint16_t>(Contact::Active)
               : static_cast<std::uint16_t>(contact);
}

constexpr bool InBlock(std::uint16_t reg, std::uint16_t first) {
    return reg >= first && reg < first + AlarmModule::RegisterChannels;
}

} // namespace

AlarmModule::AlarmModule(Model model, TimeSource now, int inputs)
    : Module(model, std::move(now))
    , channels_(static_cast<std::size_t>(inputs)) {}

bool AlarmModule::Readable(std::uint16_t reg) const {
    return InBlock(reg, FirstState) || Module::Readable(reg);
}

bool AlarmModule::Writable(std::uint16_t reg) const {
    return InBlock(reg, FirstForced) || Module::Writable(reg);
}

std::uint16_t AlarmModule::Read(std::uint16_t reg) {
    return InBlock(reg, FirstState) ? At(reg).state : Module::Read(reg);
}

void AlarmModule::Write(std::uint16_t reg, std::uint16_t value) {
    if (InBlock(reg, FirstForced)) {
        Force(reg - FirstForced + 1, value);
    } else {
        Module::Write(reg, value);
    }
}

void AlarmModule::SetContact(int channel, Contact contact) {
    const auto before = At(channel).Effective();
    At(channel).wiring = contact;
    Follow(channel, before);
}

void AlarmModule::Acknowledge() {
    setHorn(0);
    for (int channel = 1; channel <= InputCount(); ++channel) {
        auto& self = At(channel);
        if (!self.unacknowledged) {
            continue;
        }
        self.unacknowledged = false;
        self.qualifier = 1;
        self.state = self.state == 0 ? 0 : 1;
        Report(channel, self.qualifier, self.state);
    }
}

std::uint16_t AlarmModule::Qualifier(int channel) const {
    return At(channel).qualifier;
}

// Alarms that have already gone are forgotten; those that stand are left for the acknowledgement.
void AlarmModule::ClearFaults() {
    Module::ClearFaults();
    for (auto& channel : channels_) {
        channel.unacknowledged = channel.unacknowledged && channel.state != 0;
    }
}

std::string AlarmModule::States() const {
    std::string text;
    for (int channel = 1; channel <= RegisterChannels; ++channel) {
        text += std::to_string(At(channel).state);
    }
    return text;
}

std::string AlarmModule::ForcedStates() const {
    std::string text;
    for (int channel = 1; channel <= RegisterChannels; ++channel) {
        text += std::to_string(At(channel).forced);
    }
    return text;
}

void AlarmModule::Report(int /*channel*/, std::uint16_t /*param*/, std::uint16_t /*aff*/) {}

Contact AlarmModule::Channel::Effective() const {
    switch (forced) {
    case ForcedFault:
        return Contact::FirstFault;
    case ForcedActive:
        return Contact::Active;
    default:
        return wiring;
    }
}

// Takes over what the wiring or the forcing has made of a channel. Only a change counts, so an
// acknowledged channel stays acknowledged while its contact stands.
void AlarmModule::Follow(int channel, Contact before) {
    auto& self = At(channel);
    const auto contact = self.Effective();
    if (contact == before) {
        return;
    }
    self.state = static_cast<std::uint16_t>(contact);
    self.qualifier = contact == Contact::Normal || contact == Contact::Active ? 0 : 1;
    if (contact != Contact::Normal) {
        self.unacknowledged = true;
        setHorn(1);
    }
    Report(channel, 0, StateCode(contact));
    // The alarm behind the change of state: a fault that comes, an acknowledged alarm that is over.
    if (self.qualifier == 1 || (contact == Contact::Normal && !self.unacknowledged)) {
        Report(channel, 1, self.state);
    }
}

void AlarmModule::Force(int channel, std::uint16_t value) {
    if (value != 0 && value != ForcedFault && value != ForcedActive) {
        return;
    }
    const auto before = At(channel).Effective();
    At(channel).forced = value;
    Follow(channel, before);
}

} // namespace Sim
