#pragma once

#include "simulator/Bus.h"

#include <gtest/gtest.h>

/// A bus whose time the test sets, with requests as the master sends them.
class BusTest : public ::testing::Test {
protected:
    Sim::Milliseconds time{0};
    Sim::Bus bus{[this] { return time; }};

    static Sim::Request Reading(int address, int first, int count) {
        return {static_cast<std::uint8_t>(address),
                Sim::Function::ReadRegisters,
                static_cast<std::uint16_t>(first),
                static_cast<std::uint16_t>(count),
                {}};
    }

    static Sim::Request Writing(int address, int first, Sim::Words values) {
        const auto count = static_cast<std::uint16_t>(values.size());
        return {static_cast<std::uint8_t>(address),
                count == 1 ? Sim::Function::WriteRegister : Sim::Function::WriteRegisters,
                static_cast<std::uint16_t>(first), count, std::move(values)};
    }

    /// The reply as bytes, empty when there is none.
    Sim::Bytes Exchange(const Sim::Request& request) {
        const auto reply = bus.Handle(request);
        return reply ? reply->frame : Sim::Bytes{};
    }

    /// The words read; empty after a refusal or silence.
    Sim::Words Read(int address, int first, int count) {
        const auto frame = Exchange(Reading(address, first, count));
        Sim::Words words;
        if (frame.size() != 5U + 2U * static_cast<unsigned>(count)) {
            return words;
        }
        for (std::size_t at = 3; at + 2 < frame.size(); at += 2) {
            words.push_back(static_cast<std::uint16_t>(frame[at] << 8 | frame[at + 1]));
        }
        return words;
    }

    /// Whether the writing was acknowledged.
    bool Write(int address, int first, Sim::Words values) {
        return Exchange(Writing(address, first, std::move(values))).size() == 8;
    }
};
