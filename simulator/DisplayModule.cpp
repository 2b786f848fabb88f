#include "simulator/DisplayModule.h"

#include <utility>

namespace Sim {

namespace {

constexpr std::uint16_t ResetRegister = 0;
constexpr std::uint16_t FirstPacked = 25;
constexpr std::uint16_t LastPacked = 29;
constexpr std::uint16_t AcknowledgedRegister = 68;
constexpr unsigned LampsPerWord = 5;
constexpr unsigned BitsPerLamp = 3;
constexpr std::uint16_t LampMask = 7;

constexpr bool IsLamp(std::uint16_t reg) {
    return reg >= 1 && reg <= DisplayModule::Lamps;
}

} // namespace

DisplayModule::DisplayModule(TimeSource now)
    : Module(Model::Q6200XT, std::move(now)) {}

bool DisplayModule::Readable(std::uint16_t reg) const {
    return IsLamp(reg) || reg == AcknowledgedRegister || Module::Readable(reg);
}

bool DisplayModule::Writable(std::uint16_t reg) const {
    return reg <= LastPacked || Module::Writable(reg);
}

std::uint16_t DisplayModule::Read(std::uint16_t reg) {
    if (IsLamp(reg)) {
        return lamps_[reg - 1U];
    }
    if (reg == AcknowledgedRegister) {
        return std::exchange(acknowledged_, std::uint16_t{0});
    }
    return Module::Read(reg);
}

void DisplayModule::Write(std::uint16_t reg, std::uint16_t value) {
    if (reg == ResetRegister) {
        lamps_.fill(0);
    } else if (IsLamp(reg)) {
        lamps_[reg - 1U] = value & LampMask;
    } else if (reg <= LastPacked) {
        const unsigned first = (reg - FirstPacked) * LampsPerWord;
        for (unsigned i = 0; i < LampsPerWord && first + i < Lamps; ++i) {
            lamps_[first + i] = (value >> (BitsPerLamp * i)) & LampMask;
        }
    } else {
        Module::Write(reg, value);
    }
}

void DisplayModule::SetContact(int /*channel*/, Contact /*contact*/) {}

void DisplayModule::Acknowledge() {
    setHorn(0);
    acknowledged_ = 1;
}

std::string DisplayModule::States() const {
    std::string text;
    for (const auto lamp : lamps_) {
        text += std::to_string(lamp);
    }
    return text;
}

} // namespace Sim
