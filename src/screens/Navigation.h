#pragma once

#include <QString>

class ScreenForm;

/// Tiles of the main menu.
enum class MenuTile { BusModules, Parameters, System, RunMode, Technician, Factory };

/// Brings the main menu, unloads the screen that is left and runs a tile of the menu, so that the
/// operator lands in the submenu that the screen belongs to: 1 for the general parameters, 2 for
/// the system. A menu that is asking already runs the tile as soon as its question is done.
void ReturnToMenu(ScreenForm& screen, int tile);

/// Shows a screen in front of all. False when the program has none of that name: the operator is
/// told.
bool OpenScreen(const QString& name);

/// Shows a dialog until it closes and unloads it. False when the program has none of that name:
/// the operator is told.
bool OpenDialog(const QString& name);
