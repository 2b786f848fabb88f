#pragma once

#include "screens/Navigation.h"
#include "screens/ScreenForm.h"

#include <QPointer>
#include <memory>

class QListWidget;
class QMessageBox;

namespace Ui {
class wMain;
}

/// The general menu: six tiles to the work areas, below them the site file, the language, the
/// login and the way out. Keeps nothing of its own: it reads all from globals and settings each
/// time that it is loaded.
class wMain : public ScreenForm {
    Q_OBJECT
public:
    wMain();
    ~wMain() override;

    /// Runs a tile. While another one still asks, it runs when that one is done.
    void imgMenu_Click(int index);
    void imgNavig_Click(int index);

protected:
    void Nationality() override;
    void Form_Activate() override;
    void Form_Unload() override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void ShowVersion();
    void FillLanguages();
    void NextLanguage();
    void lstLanguage_Click();
    void AligneMenus();
    void ShowFileName(const QString& name);
    void ShowLogin();
    void ShowModified();
    void ShrinkLabels();

    /// False for a menu that was unloaded while something waited, though its handler still runs.
    static bool IsLoaded(const QPointer<wMain>& menu);
    void RunTile(MenuTile tile);
    /// Asks for a code until the level is reached. False when the operator gives up or the menu is
    /// gone meanwhile.
    bool InsistOnLevel(int level);
    /// Opens a screen in place of the menu.
    void Open(const QString& name);
    void OpenParameters();
    void OpenSystem();
    void AskLogin();

    /// Saves the site under a name that is asked for. False when there was none, or when the menu
    /// is gone meanwhile.
    bool SaveUnderName(bool withKeyboard);
    /// Lets unsaved changes be saved. False to stop what would lose them.
    bool SaveChanges(bool withKeyboard);
    void SaveSite(const QString& path);
    void ReadSite(const QString& path);
    void OpenSite();
    void MakeNewSite();
    void LeaveProgram();
    /// A failure of a site file is told in a plain box of the platform.
    void TellFailure(qint32 text);

    std::unique_ptr<Ui::wMain> ui_;
    QListWidget* lstLanguage_ = nullptr;
    QPointer<QMessageBox> failure_;
    bool inTile_ = false;
    /// Tile that waits for the one that asks, -1 for none.
    int nextTile_ = -1;
};
