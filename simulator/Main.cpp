// korvanelle-sim: a bus of annunciator modules on a pseudo-terminal.

#include "simulator/Loop.h"

#include <CLI/CLI.hpp>
#include <chrono>
#include <csignal>
#include <iomanip>
#include <iostream>
#include <sys/signalfd.h>
#include <system_error>
#include <unistd.h>

namespace {

constexpr int WrongUse = 2;

struct Options {
    std::string link;
    std::string scenario;
    std::vector<std::string> models;
    std::uint32_t seed = 1;
    bool quiet = false;
};

void Declare(CLI::App& app, Options& options) {
    app.add_option("--link", options.link, "Name under which the terminal is reached")->required();
    auto* scenario = app.add_option("--scenario", options.scenario, "Modules and timeline, JSON");
    app.add_option("--model", options.models, "A module, ADDRESS=MODEL; may be repeated")
        ->excludes(scenario);
    app.add_option("--seed", options.seed, "Seed of the line faults' random bits");
    app.add_flag("--quiet", options.quiet, "Do not tell the writes received");
}

Sim::Scenario ReadScenario(const Options& options) {
    if (!options.scenario.empty()) {
        return Sim::LoadScenario(options.scenario);
    }
    Sim::Scenario scenario;
    for (const auto& text : options.models) {
        scenario.modules.push_back(Sim::ParseModule(text));
    }
    return scenario;
}

void TellWrite(const Sim::Request& request) {
    std::cout << "write " << int{request.address} << ' ' << request.first << std::hex
              << std::uppercase << std::setfill('0');
    for (const auto value : request.values) {
        std::cout << ' ' << std::setw(4) << value;
    }
    std::cout << std::dec << std::endl;
}

// SIGTERM and SIGINT become readable instead of killing, so that the link is removed on the way
// out.
Sim::Descriptor CatchSignals() {
    // A reader of the output that goes away is no reason to leave the bus.
    std::signal(SIGPIPE, SIG_IGN);
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGTERM);
    sigaddset(&signals, SIGINT);
    sigprocmask(SIG_BLOCK, &signals, nullptr);
    Sim::Descriptor descriptor(signalfd(-1, &signals, SFD_CLOEXEC));
    if (descriptor.Get() < 0) {
        throw std::system_error(errno, std::generic_category(), "signalfd");
    }
    return descriptor;
}

void Simulate(const Options& options) {
    const auto start = std::chrono::steady_clock::now();
    const Sim::TimeSource now = [start] {
        return std::chrono::duration_cast<Sim::Milliseconds>(std::chrono::steady_clock::now() -
                                                             start);
    };
    const auto scenario = ReadScenario(options);
    Sim::Bus bus(now, options.seed);
    Sim::Populate(bus, scenario);
    if (!options.quiet) {
        bus.setWriteListener(TellWrite);
    }
    const auto stop = CatchSignals();
    Sim::PseudoTerminal terminal(options.link);
    std::cout << "ready " << options.link << std::endl;
    Sim::Loop(bus, terminal, Sim::Timeline(scenario), now, STDIN_FILENO, stop.Get(), std::cout)
        .Run();
}

} // namespace

int main(int argc, char** argv) {
    CLI::App app("Annunciator modules on a pseudo-terminal");
    Options options;
    Declare(app, options);
    try {
        app.parse(argc, argv);
        Simulate(options);
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? 0 : WrongUse;
    } catch (const Sim::ScenarioError& error) {
        std::cerr << "korvanelle-sim: " << (options.scenario.empty() ? "" : options.scenario + ": ")
                  << error.what() << std::endl;
        return WrongUse;
    } catch (const std::exception& error) {
        std::cerr << "korvanelle-sim: " << error.what() << std::endl;
        return 1;
    }
    return 0;
}
