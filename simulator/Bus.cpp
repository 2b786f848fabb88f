#include "simulator/Bus.h"

#include "simulator/DisplayModule.h"
#include "simulator/EventModule.h"

#include <stdexcept>

namespace Sim {

namespace {

constexpr int MostRead = 125;
constexpr int MostWritten = 123;

std::unique_ptr<Module> MakeModule(Model model, const TimeSource& now) {
    switch (model) {
    case Model::Q7100:
    case Model::Q7000:
        return std::make_unique<EventModule>(model, now);
    case Model::Q6200XT:
        return std::make_unique<DisplayModule>(now);
    case Model::P5000:
    case Model::P5500:
        return std::make_unique<AlarmModule>(model, now);
    }
    return nullptr;
}

bool IsRead(const Request& request) {
    return request.function == Function::ReadRegisters;
}

// A request is obeyed as a whole or not at all.
bool Knows(const Module& module, const Request& request) {
    for (std::uint32_t reg = request.first; reg < request.first + std::uint32_t{request.count};
         ++reg) {
        const auto number = static_cast<std::uint16_t>(reg);
        const bool known =
            reg <= 0xFFFF && (IsRead(request) ? module.Readable(number) : module.Writable(number));
        if (!known) {
            return false;
        }
    }
    return true;
}

void WriteAll(Module& module, const Request& request) {
    auto reg = request.first;
    for (const auto value : request.values) {
        module.Write(reg++, value);
    }
}

Bytes Answer(Module& module, const Request& request) {
    if (request.count < 1 || request.count > (IsRead(request) ? MostRead : MostWritten)) {
        return RefusalReply(request, Refusal::BadValue);
    }
    if (!Knows(module, request)) {
        return RefusalReply(request, Refusal::UnknownRegister);
    }
    if (!IsRead(request)) {
        WriteAll(module, request);
        return WriteReply(request);
    }
    Words words;
    for (std::uint16_t i = 0; i < request.count; ++i) {
        words.push_back(module.Read(static_cast<std::uint16_t>(request.first + i)));
    }
    return ReadReply(request, words);
}

} // namespace

Bus::Bus(TimeSource now, std::uint32_t seed)
    : now_(std::move(now))
    , random_(seed) {}

void Bus::Add(int address, Model model, std::string title) {
    if (address < 1 || address > LastAddress || Find(address) != nullptr) {
        throw std::invalid_argument("address " + std::to_string(address) + " is not free");
    }
    stations_[address] = {std::move(title), MakeModule(model, now_), {}};
}

Station* Bus::Find(int address) {
    const auto found = stations_.find(address);
    return found == stations_.end() ? nullptr : &found->second;
}

const Station* Bus::Find(int address) const {
    const auto found = stations_.find(address);
    return found == stations_.end() ? nullptr : &found->second;
}

// The line at rest looks like a start bit to an adapter with swapped wires; one of eight takes it
// for a byte when the master lets go.
std::optional<Reply> Bus::Noise() {
    if (random_() % 8 != 0) {
        return std::nullopt;
    }
    return Reply{{0}, Milliseconds(0)};
}

std::optional<Reply> Bus::Handle(const Request& request) {
    if (swapped_) {
        return Noise();
    }
    if (request.address == 0) {
        Broadcast(request);
        return std::nullopt;
    }
    auto* station = Find(request.address);
    if (station == nullptr || station->faults.muted) {
        return std::nullopt;
    }
    if (!IsRead(request) && listener_) {
        listener_(request);
    }
    Reply reply{Answer(*station->module, request), station->faults.delay};
    station->faults.Spoil(reply.frame, random_);
    return reply;
}

// All modules obey, none answers. A reading makes no sense here and is ignored.
void Bus::Broadcast(const Request& request) {
    if (IsRead(request)) {
        return;
    }
    bool received = false;
    for (auto& [address, station] : stations_) {
        if (station.faults.muted) {
            continue;
        }
        received = true;
        if (Knows(*station.module, request)) {
            WriteAll(*station.module, request);
        }
    }
    if (received && listener_) {
        listener_(request);
    }
}

} // namespace Sim
