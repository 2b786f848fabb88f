// Carrying out queued commands and telling of those that failed.

#include "bus/BusWatch.h"
#include "bus/wPolling.h"
#include "core/Bytes.h"
#include "core/ErrorHandling.h"
#include "core/Global.h"
#include "core/Trace.h"
#include "model/ConfigClass.h"
#include "model/CurrentConfig.h"
#include "platform/Clock.h"

using ErrorHandling::Guard;

namespace {

constexpr qint32 StateRegister = 1;

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

void wPolling::TraiteCommande(CommandClass& command) {
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
            watch_->Taken(command.Module());
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

bool wPolling::IsReceipt(const CommandClass& command) {
    return command.CmdType() == CommandTypes::Write && command.Module() >= 1 &&
           command.Module() <= PanelCount && command.Address() == EventReceipts::Register;
}

/// A receipt that failed once, or that waited long, is sent only while the memory still begins with
/// what it stands for; otherwise the module has obeyed and only its reply was lost. Nothing when
/// the memory can't be read: sent blindly, the receipt might drop events that nobody has read.
std::optional<bool> wPolling::IsObeyedReceipt(const CommandClass& command) {
    if (!IsReceipt(command) ||
        (command.ErrorCount() == 0 && !receipts_.IsDoubtful(command.Module())))
        return false;
    const Words taken = receipts_.Receipted(command.Module());
    if (taken.isEmpty())
        return false;
    Words memory(taken.size());
    if (!LitMots(*link_, quint8(command.Module()), EventReceipts::MemoryRegister, memory))
        return std::nullopt;
    return memory != taken;
}

/// Adds the word of the kind to the trace line and makes the exchange.
bool wPolling::SendByType(CommandClass& command, QString& line) {
    const auto module = quint8(command.Module());
    bool done = true;
    if (command.CmdType() == CommandTypes::Write) {
        line += QStringLiteral("WRITE  ");
        done = command.ValuesCount() == 1
                   ? EcritUnMot(*link_, module, command.Address(), command.Value(0))
                   : EcritMots(*link_, module, command.Address(), command.Values());
        // No reply paces the frame behind a broadcast.
        if (module == 0)
            platform::Clock::Current().Sleep(CommFunctions::FrameGap);
    } else if (command.CmdType() == CommandTypes::Read) {
        line += QStringLiteral("READ   ");
        Words words = command.Values();
        done = LitMots(*link_, module, command.Address(), words);
        if (done && command.Address() == StateRegister)
            StoreStates(command);
    } else {
        line += QStringLiteral("CMD??? ");
    }
    return done;
}

void wPolling::TraceWriteError(const CommandClass& command) {
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
