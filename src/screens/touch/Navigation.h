#pragma once

#include <QString>

class ScreenForm;

/// Tiles of the main menu.
enum class MenuTile { BusModules, Parameters, System, RunMode, Technician, Factory };

/// What leads back into the main menu; the menu's form is one.
class MainMenu {
public:
    virtual ~MainMenu() = default;
    /// Runs a tile. While another one still asks, it runs when that one is done.
    virtual void imgMenu_Click(int index) = 0;
};

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
