#include "simulator/Module.h"

#include <array>
#include <utility>

namespace Sim {

namespace {

constexpr std::array<std::pair<Model, std::string_view>, 5> ModelNames{{
    {Model::Q7100, "Q7100"},
    {Model::Q6200XT, "Q6200XT"},
    {Model::Q7000, "Q7000"},
    {Model::P5000, "P5000"},
    {Model::P5500, "P5500"},
}};

constexpr std::uint16_t HornRegister = 64;
constexpr std::uint16_t LampTestRegister = 66;
constexpr std::uint16_t CommandRegister = 67;
constexpr std::uint16_t FamilyRegister = 132;
constexpr std::uint16_t VariantRegister = 133;
constexpr std::uint16_t ClockResetRegister = 289;
constexpr std::uint32_t ClockMask = 0xFFFFF;

} // namespace

std::string_view ModelName(Model model) {
    for (const auto& [known, name] : ModelNames) {
        if (known == model) {
            return name;
        }
    }
    return {};
}

std::optional<Model> ModelByName(std::string_view name) {
    for (const auto& [model, known] : ModelNames) {
        if (known == name) {
            return model;
        }
    }
    return std::nullopt;
}

Module::Module(Model model, TimeSource now)
    : model_(model)
    , now_(std::move(now))
    , clockStart_(now_()) {}

bool Module::Readable(std::uint16_t reg) const {
    return reg == HornRegister || reg == FamilyRegister ||
           (reg == VariantRegister && Variant().has_value());
}

bool Module::Writable(std::uint16_t reg) const {
    return reg == HornRegister || reg == LampTestRegister || reg == CommandRegister ||
           reg == ClockResetRegister;
}

std::uint16_t Module::Read(std::uint16_t reg) {
    switch (reg) {
    case HornRegister:
        return horn_;
    case FamilyRegister:
        return model_ == Model::Q6200XT ? 2 : 1;
    default:
        return Variant().value_or(0);
    }
}

void Module::Write(std::uint16_t reg, std::uint16_t value) {
    switch (reg) {
    case HornRegister:
        horn_ = value;
        break;
    case LampTestRegister:
        lampTest_ = value;
        break;
    case CommandRegister:
        PanelCommand(value);
        break;
    case ClockResetRegister:
        if (value == 0) {
            clockStart_ = now_();
        }
        break;
    default:
        break;
    }
}

std::uint32_t Module::Clock() const {
    const auto ticks = (now_() - clockStart_).count() * TicksPerSecond / 1000;
    return static_cast<std::uint32_t>(ticks) & ClockMask;
}

std::string Module::Describe() const {
    return std::string(ModelName(model_)) + " states=" + States() + " forced=" + ForcedStates() +
           " waiting=" + std::to_string(Waiting()) + " clock=" + std::to_string(Clock()) +
           " horn=" + std::to_string(horn_) + " lamps=" + std::to_string(lampTest_);
}

// The variants of the first hardware family. A `Q7000` and the second family lack the register.
std::optional<std::uint16_t> Module::Variant() const {
    switch (model_) {
    case Model::P5000:
        return 0;
    case Model::Q7100:
        return 1;
    case Model::P5500:
        return 2;
    default:
        return std::nullopt;
    }
}

void Module::PanelCommand(std::uint16_t command) {
    switch (command) {
    case 1:
        AcknowledgeHorn();
        break;
    case 2:
        Acknowledge();
        break;
    case 3:
        ClearFaults();
        break;
    default:
        break;
    }
}

} // namespace Sim
