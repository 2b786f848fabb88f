#pragma once

#include "simulator/Command.h"

#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace Sim {

/// What is wrong with a scenario, with the place in it.
class ScenarioError : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

struct ModuleEntry {
    int address = 0;
    Model model = Model::Q7100;
    std::string title;
};

struct TimelineEntry {
    Milliseconds at{0}; ///< From the start, or from the start of each loop.
    Command command;
};

/// A site, and what happens on it.
struct Scenario {
    std::vector<ModuleEntry> modules;
    std::vector<TimelineEntry> timeline; ///< In order of time.
    std::optional<Milliseconds> loop;    ///< The period of the timeline, if it repeats.
};

/// Reads a scenario from its JSON text:
///   {"modules": [{"address": 1, "model": "Q7100", "title": "Pump room"}, ...],
///    "loop": 60, "timeline": [{"at": 2.0, "do": "active 1 7"}, ...]}
/// Times are seconds; "title", "loop" and "timeline" may be left out. Anything unknown, out of
/// range or given twice throws `ScenarioError`.
Scenario ParseScenario(const std::string& text);

/// The same from a file.
Scenario LoadScenario(const std::filesystem::path& file);

/// A module as the command line gives it, ADDRESS=MODEL. Throws `ScenarioError`.
ModuleEntry ParseModule(const std::string& text);

/// Puts the modules on the bus and looks through the timeline whether they can do it all. Throws
/// `ScenarioError`.
void Populate(Bus& bus, const Scenario& scenario);

} // namespace Sim
