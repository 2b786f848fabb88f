#pragma once

#include "simulator/AlarmModule.h"
#include "simulator/EventMemory.h"

namespace Sim {

/// A module of the Q family, `Q7100` or `Q7000`: wired channels, and a memory of all that happened.
/// The master reads the count at 144 and the events at 146, and gives its receipt at 288.
/// Channels 13 and 14 are inputs that show in events only.
class EventModule : public AlarmModule {
public:
    static constexpr int Inputs = 14;

    EventModule(Model model, TimeSource now);

    bool Readable(std::uint16_t reg) const override;
    bool Writable(std::uint16_t reg) const override;
    std::uint16_t Read(std::uint16_t reg) override;
    void Write(std::uint16_t reg, std::uint16_t value) override;

    void Acknowledge() override;
    void ReportOdd() override;

protected:
    void AcknowledgeHorn() override;
    void ClearFaults() override;
    void Report(int channel, std::uint16_t param, std::uint16_t aff) override;
    int Waiting() const override { return static_cast<int>(memory_.Count()); }

private:
    EventMemory memory_;
};

} // namespace Sim
