#pragma once

#include "simulator/Module.h"

#include <array>

namespace Sim {

/// The display module `Q6200XT`: 24 lamps that the master alone lights, and an acknowledgement key.
///
/// A lamp is written at its number, or all of them packed at 25 to 29, five lamps of three bits a
/// word, the first lamp lowest. Register 0 puts all lamps out. Register 68 is not 0 once after the
/// key was pressed; the master then sends the lamps anew.
class DisplayModule : public Module {
public:
    static constexpr int Lamps = 24;

    explicit DisplayModule(TimeSource now);

    bool Readable(std::uint16_t reg) const override;
    bool Writable(std::uint16_t reg) const override;
    std::uint16_t Read(std::uint16_t reg) override;
    void Write(std::uint16_t reg, std::uint16_t value) override;

    /// There is no wiring: nothing happens.
    void SetContact(int channel, Contact contact) override;
    void Acknowledge() override;

protected:
    std::string States() const override;
    /// All states are the master's.
    std::string ForcedStates() const override { return States(); }
    int Waiting() const override { return acknowledged_; }

private:
    std::array<std::uint16_t, Lamps> lamps_{};
    std::uint16_t acknowledged_ = 0;
};

} // namespace Sim
