#pragma once

class QCoreApplication;

/// What the program is told when it is started.
namespace CommandLine {

/// Only words are asked for, as by `--help`: these need no display.
bool WantsWords(int argc, char** argv);

/// Reads the options that the toolkit left and takes the folder named by `--folder`. Ends the
/// process when words were asked for, with status 0, or for what can't be done, with another.
/// True when a rehearsal is wanted.
bool Take(const QCoreApplication& application);

} // namespace CommandLine
