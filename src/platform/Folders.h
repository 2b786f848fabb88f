#pragma once

#include <QString>
#include <QStringList>

namespace platform {

/// Folder of all that the program writes, without a separator at its end: settings, site, trace,
/// history and sounds. The executable's own until another is named.
QString ApplicationFolder();
/// Names that folder, as the command line does, and makes it if there is none. What came with the
/// program stays beside the executable or in the folder named before. False when it can't be made
/// or written to.
bool UseApplicationFolder(const QString& folder);
/// Folders that hold what comes with the program: base, help and printer definitions. A file of
/// the application's folder stands ahead of one of a folder named before, and that ahead of one
/// beside the executable.
QStringList ProgramFolders();
/// Path of a file of that kind; in the application's folder when there is none.
QString ProgramFile(const QString& name);
/// Name of the executable without folder or extension.
QString ExecutableName();
/// Puts another folder and name in their place, for tests; empty strings bring the real ones
/// back.
void OverrideApplication(const QString& folder, const QString& name);

/// Makes a folder and those above it. False when it can't.
bool MakeFolder(const QString& path);

} // namespace platform
