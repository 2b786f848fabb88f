#pragma once

#include <QString>
#include <functional>

/// The file for a picture of a name, in the language that is shown.
using Paths = std::function<QString(const char*)>;

/// Saves a form that is shown. False when it isn't there or the file can't be written.
bool Save(const QString& form, const QString& path);
/// One screen, shown, saved and unloaded. The panel editor shows a panel.
void Take(const QString& form, const QString& path, int panel = 1);

class wPolling;
/// The technician's screens with modules that answer.
void TakeTechnician(wPolling& engine, const Paths& path);

/// The screens of the configuration in the states that the demo site doesn't bring them into: with
/// everything filled, with nothing, with each kind of printer. The site is read again afterwards.
void TakeConfiguration(const Paths& path);

/// Backups on a stick, a comparison, and the first screen of a new machine.
void TakeBackups(const Paths& path);
