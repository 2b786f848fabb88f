#include "simulator/Scenario.h"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <initializer_list>
#include <iterator>
#include <nlohmann/json.hpp>
#include <string_view>

namespace Sim {

namespace {

using Json = nlohmann::json;

constexpr double LongestTime = 7.0 * 24 * 3600; // s

[[noreturn]] void Fail(const std::string& place, const std::string& what) {
    throw ScenarioError(place + ": " + what);
}

void CheckKeys(const Json& object, const std::string& place,
               std::initializer_list<std::string_view> keys) {
    if (!object.is_object()) {
        Fail(place, "an object is expected");
    }
    for (const auto& item : object.items()) {
        if (std::find(keys.begin(), keys.end(), item.key()) == keys.end()) {
            Fail(place, "unknown key '" + item.key() + "'");
        }
    }
}

const Json& Required(const Json& object, const std::string& place, const char* key) {
    const auto found = object.find(key);
    if (found == object.end()) {
        Fail(place, std::string("'") + key + "' is missing");
    }
    return *found;
}

std::string Text(const Json& value, const std::string& place) {
    if (!value.is_string()) {
        Fail(place, "a text is expected");
    }
    return value.get<std::string>();
}

Milliseconds Seconds(const Json& value, const std::string& place) {
    const double seconds = value.is_number() ? value.get<double>() : -1;
    if (!(seconds >= 0 && seconds <= LongestTime)) {
        Fail(place, "a number of seconds from 0 to a week is expected");
    }
    return Milliseconds(std::llround(seconds * 1000));
}

Model KnownModel(const std::string& name, const std::string& place) {
    const auto model = ModelByName(name);
    if (!model) {
        Fail(place, "unknown model '" + name + "'");
    }
    return *model;
}

ModuleEntry ReadModule(const Json& value, const std::string& place) {
    CheckKeys(value, place, {"address", "model", "title"});
    ModuleEntry entry;
    const auto& address = Required(value, place, "address");
    if (!address.is_number_integer() || address < 1 || address > LastAddress) {
        Fail(place + ".address", "a whole number from 1 to 64 is expected");
    }
    entry.address = address.get<int>();
    const auto modelPlace = place + ".model";
    entry.model = KnownModel(Text(Required(value, place, "model"), modelPlace), modelPlace);
    if (value.contains("title")) {
        entry.title = Text(value["title"], place + ".title");
    }
    return entry;
}

TimelineEntry ReadStep(const Json& value, const std::string& place) {
    CheckKeys(value, place, {"at", "do"});
    TimelineEntry entry;
    entry.at = Seconds(Required(value, place, "at"), place + ".at");
    const auto text = Text(Required(value, place, "do"), place + ".do");
    try {
        entry.command = ParseCommand(text);
    } catch (const CommandError& error) {
        Fail(place + ".do", error.what());
    }
    return entry;
}

const Json& Array(const Json& value, const std::string& place) {
    if (!value.is_array()) {
        Fail(place, "a list is expected");
    }
    return value;
}

std::string Place(const char* list, std::size_t index) {
    return std::string(list) + "[" + std::to_string(index) + "]";
}

void ReadTimeline(const Json& root, Scenario& scenario) {
    if (root.contains("loop")) {
        scenario.loop = Seconds(root["loop"], "loop");
        if (*scenario.loop < Milliseconds(1)) {
            Fail("loop", "a loop of no length");
        }
    }
    if (!root.contains("timeline")) {
        return;
    }
    for (const auto& value : Array(root["timeline"], "timeline")) {
        const auto place = Place("timeline", scenario.timeline.size());
        const auto entry = ReadStep(value, place);
        if (scenario.loop && entry.at >= *scenario.loop) {
            Fail(place + ".at", "not within the loop");
        }
        scenario.timeline.push_back(entry);
    }
    std::stable_sort(scenario.timeline.begin(), scenario.timeline.end(),
                     [](const auto& a, const auto& b) { return a.at < b.at; });
}

} // namespace

Scenario ParseScenario(const std::string& text) {
    const auto root = Json::parse(text, nullptr, false);
    if (root.is_discarded()) {
        throw ScenarioError("not a JSON text");
    }
    CheckKeys(root, "scenario", {"modules", "loop", "timeline"});
    Scenario scenario;
    for (const auto& value : Array(Required(root, "scenario", "modules"), "modules")) {
        scenario.modules.push_back(ReadModule(value, Place("modules", scenario.modules.size())));
    }
    ReadTimeline(root, scenario);
    return scenario;
}

Scenario LoadScenario(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    const std::string text{std::istreambuf_iterator<char>(stream), {}};
    if (!stream.is_open() || stream.bad()) {
        throw ScenarioError("cannot be read");
    }
    return ParseScenario(text);
}

ModuleEntry ParseModule(const std::string& text) {
    const auto equals = text.find('=');
    const auto digits = text.substr(0, equals);
    const bool number = !digits.empty() && digits.size() <= 2 &&
                        digits.find_first_not_of("0123456789") == std::string::npos;
    if (equals == std::string::npos || !number) {
        Fail(text, "ADDRESS=MODEL is expected");
    }
    ModuleEntry entry;
    entry.address = std::stoi(digits);
    if (entry.address < 1 || entry.address > LastAddress) {
        Fail(text, "an address from 1 to 64 is expected");
    }
    entry.model = KnownModel(text.substr(equals + 1), text);
    return entry;
}

void Populate(Bus& bus, const Scenario& scenario) {
    if (scenario.modules.empty()) {
        throw ScenarioError("there are no modules");
    }
    for (const auto& entry : scenario.modules) {
        if (bus.Find(entry.address) != nullptr) {
            throw ScenarioError("address " + std::to_string(entry.address) + " is given twice");
        }
        bus.Add(entry.address, entry.model, entry.title);
    }
    for (const auto& entry : scenario.timeline) {
        try {
            CheckCommand(entry.command, bus);
        } catch (const CommandError& error) {
            const double seconds = static_cast<double>(entry.at.count()) / 1000;
            Fail("timeline at " + std::to_string(seconds) + " s", error.what());
        }
    }
}

} // namespace Sim
