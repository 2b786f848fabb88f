#pragma once

#include "simulator/Frame.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace Sim {

/// The models of annunciator modules, by the codes that the master gives them.
enum class Model { Q7100 = 1, Q6200XT = 2, Q7000 = 3, P5000 = 4, P5500 = 5 };

/// The name of the model as it stands on the module's front.
std::string_view ModelName(Model model);

/// The model of that name, exactly spelled.
std::optional<Model> ModelByName(std::string_view name);

/// What the field wiring of a channel shows, by the numbers of the state registers.
enum class Contact : std::uint16_t {
    Normal = 0,
    Active = 1,
    CableFault = 2,
    FirstFault = 3,
    SecondFault = 4
};

/// Time since the start of the simulation.
using TimeSource = std::function<Milliseconds()>;

/// One module on the bus: what is common to all models. That is the horn (register 64), the lamp
/// test (66), the panel command (67), the identification (132, 133) and the clock reset (289).
class Module {
public:
    /// Ticks of the module's clock in a second: a day of 864,000 ticks fits its 20 bits.
    static constexpr int TicksPerSecond = 10;

    Module(Model model, TimeSource now);
    virtual ~Module() = default;
    Module(const Module&) = delete;
    Module& operator=(const Module&) = delete;

    Model Kind() const { return model_; }

    /// Whether the register can be read, or written.
    virtual bool Readable(std::uint16_t reg) const;
    virtual bool Writable(std::uint16_t reg) const;

    /// Reads a register, which must be `Readable`. Some registers change by being read.
    virtual std::uint16_t Read(std::uint16_t reg);

    /// Writes a register, which must be `Writable`. A value without a meaning is accepted and has
    /// no effect.
    virtual void Write(std::uint16_t reg, std::uint16_t value);

    /// The number of channels that have field wiring; 0 for a mere display.
    virtual int InputCount() const { return 0; }

    /// The field wiring of a channel, 1 to `InputCount`, changes.
    virtual void SetContact(int channel, Contact contact) = 0;

    /// The acknowledgement key of the front, or panel command 2.
    virtual void Acknowledge() = 0;
    /// The horn key of the front, or panel command 1.
    virtual void AcknowledgeHorn() { setHorn(0); }

    /// Makes an event of the panel as a whole with a code that stands in no list, as a module of
    /// later make may. A module without an event memory has none.
    virtual void ReportOdd() {}

    /// The 20-bit clock counter.
    std::uint32_t Clock() const;

    /// One line on the module's condition, for people and test scripts.
    std::string Describe() const;

protected:
    void setHorn(std::uint16_t value) { horn_ = value; }

    /// Panel command 3.
    virtual void ClearFaults() { setHorn(0); }

    /// The states as digits, channel 1 first.
    virtual std::string States() const = 0;
    /// The forced states as digits, channel 1 first.
    virtual std::string ForcedStates() const = 0;
    /// What waits to be fetched: events, or the flag of an acknowledgement.
    virtual int Waiting() const { return 0; }

private:
    std::optional<std::uint16_t> Variant() const;
    void PanelCommand(std::uint16_t command);

    Model model_;
    TimeSource now_;
    Milliseconds clockStart_;
    std::uint16_t horn_ = 0;
    std::uint16_t lampTest_ = 0;
};

} // namespace Sim
