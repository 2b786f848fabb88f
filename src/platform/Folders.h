#pragma once

#include <QString>

namespace platform {

/// Folder of the executable, without a separator at its end. Settings, base, trace, history and
/// sounds lie in it.
QString ApplicationFolder();
/// Name of the executable without folder or extension.
QString ExecutableName();
/// Puts another folder and name in their place, for tests; empty strings bring the real ones
/// back.
void OverrideApplication(const QString& folder, const QString& name);

/// Makes a folder and those above it. False when it can't.
bool MakeFolder(const QString& path);

} // namespace platform
