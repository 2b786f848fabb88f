#include "simulator/Command.h"

#include <array>
#include <charconv>
#include <sstream>
#include <string_view>
#include <vector>

namespace Sim {

namespace {

constexpr int MostCorrupt = 1'000'000;
constexpr int LongestDelay = 600'000; // ms

enum class Argument { None, Channel, Kind, Count, Time, Switch };

struct Form {
    std::string_view word;
    Verb verb;
    Argument argument;
    std::string_view usage;
};

constexpr std::array<Form, 18> Forms{{
    {"active", Verb::Active, Argument::Channel, "active MODULE CHANNEL"},
    {"normal", Verb::Normal, Argument::Channel, "normal MODULE CHANNEL"},
    {"fault", Verb::Fault, Argument::Kind, "fault MODULE CHANNEL first|second|cable"},
    {"ack", Verb::Ack, Argument::None, "ack MODULE"},
    {"horn", Verb::Horn, Argument::None, "horn MODULE"},
    {"mute", Verb::Mute, Argument::None, "mute MODULE"},
    {"unmute", Verb::Unmute, Argument::None, "unmute MODULE"},
    {"corrupt", Verb::Corrupt, Argument::Count, "corrupt MODULE REPLIES"},
    {"delay", Verb::Delay, Argument::Time, "delay MODULE MILLISECONDS"},
    {"surplus", Verb::Surplus, Argument::None, "surplus MODULE"},
    {"short", Verb::Short, Argument::None, "short MODULE"},
    {"alien", Verb::Alien, Argument::None, "alien MODULE"},
    {"terminator", Verb::Terminator, Argument::Switch, "terminator MODULE on|off"},
    {"twin", Verb::Twin, Argument::Switch, "twin MODULE on|off"},
    {"swap", Verb::Swap, Argument::Switch, "swap on|off"},
    {"odd", Verb::Odd, Argument::None, "odd MODULE"},
    {"show", Verb::Show, Argument::None, "show MODULE"},
    {"quit", Verb::Quit, Argument::None, "quit"},
}};

std::vector<std::string> Split(const std::string& text) {
    std::istringstream stream(text);
    std::vector<std::string> words;
    for (std::string word; stream >> word;) {
        words.push_back(word);
    }
    return words;
}

int Number(const std::string& word, int least, int most, std::string_view what) {
    int value = 0;
    const auto* end = word.data() + word.size();
    const auto [stop, error] = std::from_chars(word.data(), end, value);
    if (error != std::errc{} || stop != end || value < least || value > most) {
        throw CommandError(std::string(what) + " must be a number from " + std::to_string(least) +
                           " to " + std::to_string(most) + ", not '" + word + "'");
    }
    return value;
}

Contact FaultKind(const std::string& word) {
    if (word == "first") {
        return Contact::FirstFault;
    }
    if (word == "second") {
        return Contact::SecondFault;
    }
    if (word == "cable") {
        return Contact::CableFault;
    }
    throw CommandError("a fault is first, second or cable, not '" + word + "'");
}

int Switch(const std::string& word) {
    if (word != "on" && word != "off") {
        throw CommandError("a switch is on or off, not '" + word + "'");
    }
    return word == "on" ? 1 : 0;
}

const Form& FindForm(const std::string& word) {
    for (const auto& form : Forms) {
        if (form.word == word) {
            return form;
        }
    }
    throw CommandError("unknown command '" + word + "'");
}

bool HasModule(Verb verb) {
    return verb != Verb::Quit && verb != Verb::Swap;
}

std::size_t WordCount(const Form& form) {
    const std::size_t head = HasModule(form.verb) ? 2 : 1;
    switch (form.argument) {
    case Argument::None:
        return head;
    case Argument::Kind:
        return head + 2;
    default:
        return head + 1;
    }
}

} // namespace

Command ParseCommand(const std::string& text) {
    const auto words = Split(text);
    if (words.empty()) {
        throw CommandError("empty command");
    }
    const auto& form = FindForm(words[0]);
    if (words.size() != WordCount(form)) {
        throw CommandError("usage: " + std::string(form.usage));
    }
    Command command;
    command.verb = form.verb;
    if (HasModule(form.verb)) {
        command.address = Number(words[1], 1, LastAddress, "the module");
    }
    switch (form.argument) {
    case Argument::None:
        break;
    case Argument::Kind:
        command.contact = FaultKind(words[3]);
        [[fallthrough]];
    case Argument::Channel:
        command.argument = Number(words[2], 1, 24, "the channel");
        break;
    case Argument::Count:
        command.argument = Number(words[2], 0, MostCorrupt, "the number of replies");
        break;
    case Argument::Time:
        command.argument = Number(words[2], 0, LongestDelay, "the delay");
        break;
    case Argument::Switch:
        command.argument = Switch(words.back());
        break;
    }
    if (form.verb == Verb::Active) {
        command.contact = Contact::Active;
    }
    return command;
}

void CheckCommand(const Command& command, const Bus& bus) {
    if (!HasModule(command.verb)) {
        return;
    }
    const auto* station = bus.Find(command.address);
    if (station == nullptr) {
        throw CommandError("there is no module " + std::to_string(command.address));
    }
    const bool wiring =
        command.verb == Verb::Active || command.verb == Verb::Normal || command.verb == Verb::Fault;
    if (wiring && command.argument > station->module->InputCount()) {
        throw CommandError("module " + std::to_string(command.address) + ", a " +
                           std::string(ModelName(station->module->Kind())) + ", has no input " +
                           std::to_string(command.argument));
    }
}

void RunCommand(const Command& command, Bus& bus, std::ostream& out) {
    if (command.verb == Verb::Swap) {
        bus.setSwapped(command.argument != 0);
    }
    if (!HasModule(command.verb)) {
        return;
    }
    auto& station = *bus.Find(command.address);
    switch (command.verb) {
    case Verb::Active:
    case Verb::Normal:
    case Verb::Fault:
        station.module->SetContact(command.argument, command.contact);
        break;
    case Verb::Ack:
        station.module->Acknowledge();
        break;
    case Verb::Horn:
        station.module->AcknowledgeHorn();
        break;
    case Verb::Mute:
    case Verb::Unmute:
        station.faults.muted = command.verb == Verb::Mute;
        break;
    case Verb::Corrupt:
        station.faults.corrupt = command.argument;
        break;
    case Verb::Delay:
        station.faults.delay = Milliseconds(command.argument);
        break;
    case Verb::Surplus:
        station.faults.surplus = true;
        break;
    case Verb::Short:
        station.faults.cut = true;
        break;
    case Verb::Alien:
        station.faults.alien = true;
        break;
    case Verb::Terminator:
        station.faults.ringing = command.argument == 0;
        break;
    case Verb::Twin:
        station.faults.twin = command.argument != 0;
        break;
    case Verb::Odd:
        station.module->ReportOdd();
        break;
    case Verb::Show:
        out << "show " << command.address << ' ' << station.module->Describe()
            << (station.faults.muted ? " muted" : "") << " title=" << station.title << std::endl;
        break;
    case Verb::Swap:
    case Verb::Quit:
        break;
    }
}

} // namespace Sim
