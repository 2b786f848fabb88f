#include "bus/CommandClass.h"
#include "fuzz/Targets.h"
#include "fuzz/support/Bench.h"
#include "fuzz/support/Input.h"
#include "platform/RunTimeError.h"

#include <cmath>

using Fuzz::Require;

int FuzzCommand(const uint8_t* data, size_t size) {
    Fuzz::Prepare();
    Input input(data, size);
    const QString text = platform::FromCodePage(input.Rest());
    CommandPtr command;
    try {
        command = CommandClass::FromText(text);
    } catch (const platform::RunTimeError&) {
        return 0;
    }
    Require(command->Module() >= 0 && command->Module() <= 64, "a module is an address or 0");
    Require(command->ValuesCount() >= 1, "a command has values");
    // The register leaves its upper half behind: a frame has no room for it either.
    command->setAddress(command->Address() & 0xFFFF);
    const CommandPtr again = CommandClass::FromText(command->ToText());
    Require(again->SameAs(*command), "a command comes back from its text");
    // A time ahead of day 1 is written without its day: both are long past.
    Require(command->SendTime() < 1 ||
                std::abs(again->SendTime() - command->SendTime()) < platform::OneSecond,
            "a command's time comes back from its text");
    return 0;
}
