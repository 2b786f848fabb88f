#pragma once

#include "simulator/Module.h"

#include <vector>

namespace Sim {

/// A module with wired channels, without an event memory: `P5000` and `P5500`.
///
/// A channel shows its state in registers 1 to 12: 0 normal, 1 active, 2 cable fault, 3 first
/// fault, 4 second fault. Each state that is not normal sounds the horn and stays unacknowledged
/// until the panel is acknowledged; its lamp then burns steadily, which is state 1 whatever it was
/// before. Registers 17 to 28 put a state in the place of the wiring: 3 is an active channel and 2
/// a first fault, 0 gives the channel back to its wiring.
class AlarmModule : public Module {
public:
    /// Channels that have registers.
    static constexpr int RegisterChannels = 12;

    AlarmModule(Model model, TimeSource now, int inputs = RegisterChannels);

    bool Readable(std::uint16_t reg) const override;
    bool Writable(std::uint16_t reg) const override;
    std::uint16_t Read(std::uint16_t reg) override;
    void Write(std::uint16_t reg, std::uint16_t value) override;

    int InputCount() const override { return static_cast<int>(channels_.size()); }
    void SetContact(int channel, Contact contact) override;
    void Acknowledge() override;

protected:
    /// The value of `Param` that goes with the present state of a channel: 0 for a change of the
    /// contact, 1 for a fault or what follows an acknowledgement.
    std::uint16_t Qualifier(int channel) const;

    void ClearFaults() override;
    std::string States() const override;
    std::string ForcedStates() const override;

    /// Called when a channel has taken the state `aff` with the qualifier `param`.
    virtual void Report(int channel, std::uint16_t param, std::uint16_t aff);

private:
    struct Channel {
        Contact wiring = Contact::Normal;
        std::uint16_t forced = 0;
        std::uint16_t state = 0;
        std::uint16_t qualifier = 0;
        bool unacknowledged = false;

        Contact Effective() const;
    };

    Channel& At(int channel) { return channels_[static_cast<std::size_t>(channel - 1)]; }
    const Channel& At(int channel) const {
        return channels_[static_cast<std::size_t>(channel - 1)];
    }
    void Follow(int channel, Contact before);
    void Force(int channel, std::uint16_t value);

    std::vector<Channel> channels_;
};

} // namespace Sim
