#pragma once

#include <QString>

namespace platform {

/// Asks every process of this executable's name to end, but never this program itself. The result
/// is always false.
bool KillProcess(const QString& name);

/// Starts a program that lives on by itself. False when there is none of that name.
bool StartProcess(const QString& command);

} // namespace platform
