#pragma once

#include <QByteArray>
#include <QStringList>
#include <optional>

/// The program in its own place: at its end it is started again in the same process, with the same
/// number, so that whoever watches over it sees no end.
namespace platform::Replacement {

/// Keeps what the program was started with, ahead of what takes arguments out and opens handles.
/// The handles that are open now go on to the successor, and no others: whoever started the program
/// may know its end by them, as a compositor does.
void KeepStart(int argc, char** argv);
/// The arguments without the program's own name.
QStringList Arguments();

/// At its end the program is to be started again, with these arguments. `note` is left to it.
void Ask(const QStringList& arguments, const QByteArray& note);
bool IsAsked();
/// Takes the asking back, for tests.
void Forget();
/// Starts the program that was asked for. To be called when nothing of the present one is left.
/// Returns only if that fails.
void Run();

/// The note of the program that was in this process before; none for the first.
std::optional<QByteArray> Note();

} // namespace platform::Replacement
