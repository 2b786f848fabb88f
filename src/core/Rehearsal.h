#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <optional>

/// A rehearsal: the program on a copy of the plant's site, with simulated modules at the other end
/// of a line of its own. It runs in place of the watch over the plant, in a folder of its own, and
/// reaches nothing of the plant's.
namespace Rehearsal {

/// Why a rehearsal is over.
enum class Ending {
    Asked,      ///< somebody ended it
    Unattended, ///< nobody has touched the screen for an hour
    Simulator,  ///< the modules can't be played any more
    NotBegun,   ///< its folder couldn't be made
};

/// This program is a rehearsal.
bool Runs();
/// Arguments of the program in a rehearsal, and of the normal one.
QStringList BeginArguments();
QStringList EndArguments();
/// What the program leaves to its successor, and what it says; none from the normal program or
/// when there was none.
QByteArray NoteOf(Ending ending);
std::optional<Ending> EndingOf(const std::optional<QByteArray>& note);

/// Makes the folder "Rehearsal" in the application's folder and makes it the application's: site,
/// sounds and what of the settings belongs to the program and not to the machine around it are
/// copied afresh. Histories, traces and prints of former rehearsals stay. Throws RunTimeError.
void Begin();
/// Puts this process into a rehearsal without any of that, for tests, and out of it.
void Override(bool runs);

/// The program that plays the modules, beside this one; another for tests until an empty one.
QString SimulatorProgram();
bool HasSimulator();
void OverrideSimulator(const QString& program);

/// The far end of the bus, and the file that takes what is printed.
QString Line();
QString Prints();

} // namespace Rehearsal
