#include "technician/TechCommand.h"

#include "bus/wPolling.h"
#include "core/ErrorHandling.h"

using ErrorHandling::Guard;

namespace {

/// Rest between two looks at a command that waits, ms.
constexpr int LookPeriod = 100;

/// The command of the queue that does the same: an older one keeps its place there.
CommandPtr Waiting(const wPolling& engine, const CommandClass& command) {
    for (int position = 1; position <= engine.Commands().Count(); ++position) {
        if (engine.Commands().Item(position)->SameAs(command))
            return engine.Commands().Item(position);
    }
    return nullptr;
}

} // namespace

TechCommand::TechCommand(QObject* parent)
    : QObject(parent) {
    timer_.callOnTimeout([this] { Look(); });
}

void TechCommand::SendCommand(const CommandPtr& command) {
    Guard("TechCommand.SendCommand", [&] {
        wPolling* engine = Polling();
        if (engine == nullptr)
            return;
        command_ = command;
        module_ = command->Module();
        setState(State::Sent);
        if (engine->Run()) {
            engine->SendCommand(command);
            if (const CommandPtr waiting = Waiting(*engine, *command))
                command_ = waiting;
            timer_.start(LookPeriod);
        } else {
            engine->Queue().CarryOut(*command);
            Look();
        }
    });
}

/// What is done or given up has left the queue, or leaves it with the round.
void TechCommand::Look() {
    Guard("TechCommand.Look", [&] {
        const wPolling* engine = Polling();
        if (command_ == nullptr)
            return;
        const bool waits = engine != nullptr && Waiting(*engine, *command_) == command_;
        if (command_->CmdType() == CommandTypes::Done)
            setState(State::Obeyed);
        else if (!waits)
            setState(State::GivenUp);
        else
            return;
        timer_.stop();
        command_.reset();
    });
}

void TechCommand::setState(State state) {
    state_ = state;
    Q_EMIT Changed();
}
