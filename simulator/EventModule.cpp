#include "simulator/EventModule.h"

namespace Sim {

namespace {

constexpr std::uint16_t FirstQualifier = 49;
constexpr std::uint16_t LastQualifier = FirstQualifier + AlarmModule::RegisterChannels - 1;
constexpr std::uint16_t EventCount = 144;
constexpr std::uint16_t FirstEvent = 146;
constexpr std::uint16_t Receipt = 288; // ends the window of the events, too

// `Aff` of the events of the panel as a whole.
constexpr std::uint16_t HornAcknowledged = 1;
constexpr std::uint16_t PanelAcknowledged = 2;
constexpr std::uint16_t PanelCleared = 3;

// In no list of the master.
constexpr std::uint16_t OddQualifier = 3;
constexpr std::uint16_t OddCode = 14;

} // namespace

EventModule::EventModule(Model model, TimeSource now)
    : AlarmModule(model, std::move(now), Inputs) {}

bool EventModule::Readable(std::uint16_t reg) const {
    return (reg >= FirstQualifier && reg <= LastQualifier) || reg == EventCount ||
           (reg >= FirstEvent && reg < Receipt) || AlarmModule::Readable(reg);
}

bool EventModule::Writable(std::uint16_t reg) const {
    return reg == Receipt || AlarmModule::Writable(reg);
}

std::uint16_t EventModule::Read(std::uint16_t reg) {
    if (reg >= FirstQualifier && reg <= LastQualifier) {
        return Qualifier(reg - FirstQualifier + 1);
    }
    if (reg == EventCount) {
        return static_cast<std::uint16_t>(memory_.Count());
    }
    if (reg >= FirstEvent && reg < Receipt) {
        return memory_.Word(static_cast<std::size_t>(reg - FirstEvent));
    }
    return AlarmModule::Read(reg);
}

void EventModule::Write(std::uint16_t reg, std::uint16_t value) {
    if (reg == Receipt) {
        memory_.Drop(value);
    } else {
        AlarmModule::Write(reg, value);
    }
}

void EventModule::Acknowledge() {
    AlarmModule::Acknowledge();
    Report(EventMemory::PanelChannel, 0, PanelAcknowledged);
}

void EventModule::ReportOdd() {
    Report(EventMemory::PanelChannel, OddQualifier, OddCode);
}

void EventModule::AcknowledgeHorn() {
    AlarmModule::AcknowledgeHorn();
    Report(EventMemory::PanelChannel, 0, HornAcknowledged);
}

void EventModule::ClearFaults() {
    AlarmModule::ClearFaults();
    Report(EventMemory::PanelChannel, 0, PanelCleared);
}

void EventModule::Report(int channel, std::uint16_t param, std::uint16_t aff) {
    memory_.Store(channel, param, aff, Clock());
}

} // namespace Sim
