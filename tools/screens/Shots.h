#pragma once

#include <QString>
#include <functional>

class QWidget;

/// The file for a picture of a name, in the language that is shown.
using Paths = std::function<QString(const char*)>;

/// Saves a form that is shown. False when it isn't there or the file can't be written.
bool Save(const QString& form, const QString& path);
/// One screen, shown, saved and unloaded. The panel editor shows a panel.
void Take(const QString& form, const QString& path, int panel = 1);

/// A control of a form that is loaded; touches it.
QWidget* Child(const QString& form, const char* name);
void Click(const QString& form, const char* name);

/// History of the present month and the one before: quiet days and busy ones, floods, a contact
/// that chatters, an alarm that nobody deals with.
void WriteAlarms();
/// Each page of the report of a month.
void TakeReport(const Paths& path);
/// What the search finds of one channel, with the course of an alarm.
void TakeHistorySearch(const Paths& path);

class wPolling;
/// The technician's screens with modules that answer.
void TakeTechnician(wPolling& engine, const Paths& path);

/// The screens of the configuration in the states that the demo site doesn't bring them into: with
/// everything filled, with nothing, with each kind of printer. The site is read again afterwards.
void TakeConfiguration(const Paths& path);

/// Backups on a stick, a comparison, and the first screen of a new machine.
void TakeBackups(const Paths& path);
