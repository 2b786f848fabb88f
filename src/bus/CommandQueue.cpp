#include "bus/CommandQueue.h"

#include "bus/BusWatch.h"
#include "bus/Registers.h"
#include "core/Bytes.h"
#include "core/ErrorHandling.h"
#include "core/Global.h"
#include "core/SLVfonctions.h"
#include "core/Trace.h"
#include "core/Yield.h"
#include "model/ConfigClass.h"
#include "model/CurrentConfig.h"
#include "platform/Clock.h"

using ErrorHandling::Guard;

namespace {

const QString PendingCommands = QStringLiteral("PendingCommands");
/// Time that the queue takes of a tick, ms. With the exchange that runs when it is over, a dead
/// module keeps input waiting for little more than half a second.
constexpr int QueueShare = 100;

/// A stored read of the states takes the states that the command was made with; the words read
/// are not kept.
void StoreStates(const CommandClass& command) {
    PanelClass& panel = Global::Configuration().Panel(command.Module());
    const int count = Bytes::Less<int>(command.ValuesCount(), panel.ChannelCount());
    for (int i = 0; i < count; ++i)
        panel.Channel(i + 1).setState(command.Value(i));
}

QString Target(const CommandClass& command) {
    return Global::Get().panelMark + Bytes::Padded(command.Module(), 2) + u':' +
           Bytes::Hex4(command.Address()) + u' ';
}

QString TimeOf(const CommandClass& command) {
    return DateTimes::DateAndTime(command.SendTime()) + u' ';
}

} // namespace

void CommandQueue::TraiteCommande(CommandClass& command) {
    Guard("wPolling.TraiteCommande", [&] {
        const DateTime now = DateTimes::Now();
        if (now < command.SendTime())
            return;
        if (command.SendTime() == 0)
            command.setSendTime(now);
        const std::optional<bool> obeyed = IsObeyedReceipt(command);
        if (!obeyed) {
            command.setError(true);
            command.ErrorInc();
            return;
        }
        if (*obeyed) {
            receipts_.Settle(command.Module());
            command.setCmdType(CommandTypes::Done);
            return;
        }
        QString line = TimeOf(command);
        // What the exchange came to is settled ahead of the trace: a trace that can't be written
        // must not have a command sent again.
        if (SendByType(command, line)) {
            if (IsReceipt(command))
                receipts_.Settle(command.Module());
            watch_.Taken(command.Module());
            command.setCmdType(CommandTypes::Done);
        } else {
            command.setError(true);
            command.ErrorInc();
        }
        line += QStringLiteral("COMMAND ") + Target(command);
        const Words values = command.Values();
        for (const qint16 value : values)
            line += Bytes::Hex4(value) + u' ';
        Trace::Write(line.trimmed().left(Trace::LineWidth));
    });
}

bool CommandQueue::IsReceipt(const CommandClass& command) {
    return command.CmdType() == CommandTypes::Write && command.Module() >= 1 &&
           command.Module() <= ConfigClass::PanelCount &&
           command.Address() == Registers::EventReceipt;
}

/// A receipt that failed once, or that waited long, is sent only while the memory still begins with
/// what it stands for; otherwise the module has obeyed and only its reply was lost. Nothing when
/// the memory can't be read: sent blindly, the receipt might drop events that nobody has read.
std::optional<bool> CommandQueue::IsObeyedReceipt(const CommandClass& command) {
    if (!IsReceipt(command) ||
        (command.ErrorCount() == 0 && !receipts_.IsDoubtful(command.Module())))
        return false;
    const Words taken = receipts_.Receipted(command.Module());
    if (taken.isEmpty())
        return false;
    Words memory(taken.size());
    if (!LitMots(link_, quint8(command.Module()), Registers::EventMemory, memory))
        return std::nullopt;
    return memory != taken;
}

/// Adds the word of the kind to the trace line and makes the exchange.
bool CommandQueue::SendByType(CommandClass& command, QString& line) {
    const auto module = quint8(command.Module());
    bool done = true;
    if (command.CmdType() == CommandTypes::Write) {
        line += QStringLiteral("WRITE  ");
        done = command.ValuesCount() == 1
                   ? EcritUnMot(link_, module, command.Address(), command.Value(0))
                   : EcritMots(link_, module, command.Address(), command.Values());
        // No reply paces the frame behind a broadcast.
        if (module == 0)
            platform::Clock::Current().Sleep(CommFunctions::FrameGap);
    } else if (command.CmdType() == CommandTypes::Read) {
        line += QStringLiteral("READ   ");
        Words words = command.Values();
        done = LitMots(link_, module, command.Address(), words);
        if (done && command.Address() == Registers::State)
            StoreStates(command);
    } else {
        line += QStringLiteral("CMD??? ");
    }
    return done;
}

void CommandQueue::TraceWriteError(const CommandClass& command) {
    Guard("wPolling.TraceWriteError", [&] {
        QString line = TimeOf(command);
        if (command.CmdType() == CommandTypes::Read)
            line += QStringLiteral("READ");
        else if (command.CmdType() == CommandTypes::Write)
            line += QStringLiteral("WRITE ");
        else
            line += QStringLiteral("CMD???");
        line += QStringLiteral(" ERROR   ") + Target(command);
        const Words values = command.Values();
        for (const qint16 value : values)
            line += Bytes::Hex4(value);
        Trace::Write(line.trimmed().left(Trace::LineWidth));
    });
}

void CommandQueue::CarryOut(CommandClass& command) {
    command.ErrorsClear();
    while (command.CmdType() != CommandTypes::Done && command.ErrorCount() < MaxTries) {
        const qint16 errors = command.ErrorCount();
        TraiteCommande(command);
        if (command.CmdType() != CommandTypes::Done && command.ErrorCount() == errors)
            return; // an error of the program itself, told already: no further try
    }
}

/// By position and not by iterator: a yield may append commands.
CommandQueue::Walk CommandQueue::Work(const std::function<bool()>& ended) {
    const qint64 start = platform::Clock::Current().MonotonicMs();
    for (int position = 1; position <= commands_.Count(); ++position) {
        // Without a port a try says nothing about the panel.
        if (!link_.PortOpen())
            break;
        if (ended())
            return Walk::Ended;
        const CommandPtr command = commands_.Item(position);
        if (!walked_.insert(command).second)
            continue;
        const qint16 errors = command->ErrorCount();
        TraiteCommande(*command);
        if (!link_.PortOpen())
            command->setErrorCount(errors);
        YieldWithoutInput();
        if (ended())
            return Walk::Ended;
        if (platform::Clock::Current().MonotonicMs() - start >= QueueShare)
            return Walk::Parted;
    }
    walked_.clear();
    return Walk::Through;
}

void CommandQueue::Purge() {
    for (int position = commands_.Count(); position >= 1; --position) {
        const CommandPtr command = commands_.Item(position);
        if (command->CmdType() == CommandTypes::Done) {
            commands_.Remove(position);
        } else if (command->ErrorCount() >= CommandClass::MaxErrors) {
            commands_.Remove(position);
            if (IsReceipt(*command))
                receipts_.GiveUp(command->Module());
            TraceWriteError(*command);
            watch_.GivenUp(*command);
            if (onGivenUp)
                onGivenUp(*command);
        }
    }
}

/// What was carried out so far is settled.
void CommandQueue::LeaveWalk() {
    if (walked_.empty())
        return;
    walked_.clear();
    Purge();
}

void CommandQueue::FollowClock(DateTime now, DateTime back) {
    for (int position = 1; position <= commands_.Count(); ++position) {
        CommandClass& command = *commands_.Item(position);
        if (command.SendTime() > now)
            command.setSendTime(command.SendTime() - back);
    }
}

/// A receipt that still waits would drop as many of the events that come next. Without a good reply
/// it is open what stands in the memory: the next read compares.
void CommandQueue::MemoryDropped(int address, bool surely) {
    for (int position = commands_.Count(); position >= 1; --position) {
        const CommandPtr command = commands_.Item(position);
        if (IsReceipt(*command) && command->Module() == address)
            commands_.Remove(position);
    }
    if (surely)
        receipts_.Forget(address);
    else
        receipts_.GiveUp(address);
}

void CommandQueue::MemoryTaken(int address, const Words& memory, int known) {
    receipts_.Take(address, memory, known);
    const auto events = qint16(memory.size() / EventReceipts::WordsAnEvent);
    commands_.Add(
        std::make_shared<CommandClass>(qint16(address), Registers::EventReceipt, Words{events}));
}

/// They leave the settings when all are held, readable or not: an end meanwhile loses none, and one
/// that can't be read must not come back at every start. A time that lies ahead is that of a clock
/// that was set back meanwhile, as by an empty battery: the command would wait for years, and keep
/// the same one out of the queue for as long.
void CommandQueue::Restore() {
    const DateTime now = DateTimes::Now();
    const auto stored = SLVfonctions::IniReadSection(PendingCommands);
    for (const auto& entry : stored) {
        if (entry.second.isEmpty())
            continue;
        Guard("wPolling.Form_Load", [&] {
            const CommandPtr command = CommandClass::FromText(entry.second);
            command->setSendTime(Bytes::Less(command->SendTime(), now));
            // The first start of the bus throws the event memories away: a receipt of the former
            // run would drop events that nobody has read.
            if (!IsReceipt(*command))
                commands_.Add(command);
        });
    }
    restored_ = true;
    if (!stored.isEmpty())
        IniDeleteSection(PendingCommands);
}

/// What was carried out in the round that the end interrupts isn't sent a second time.
void CommandQueue::Store() const {
    // An end before they were taken leaves those of the former run to the next start.
    if (!restored_)
        return;
    QList<std::pair<QString, QString>> stored;
    for (int position = 1; position <= commands_.Count(); ++position) {
        const CommandPtr command = commands_.Item(position);
        if (command->CmdType() != CommandTypes::Done)
            stored.append({QString::number(stored.size() + 1), command->ToText()});
    }
    IniWriteSection(PendingCommands, stored);
}
