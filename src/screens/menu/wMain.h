#pragma once

#include "screens/dialogs/AskPassword.h"
#include "screens/touch/Navigation.h"
#include "screens/touch/ScreenForm.h"

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
class wMain : public ScreenForm, public MainMenu, public ShowsLogin {
    Q_OBJECT
public:
    wMain();
    ~wMain() override;

    void imgMenu_Click(int index) override;
    void imgNavig_Click(int index);
    void ShowLogin() override;

protected:
    void Nationality() override;
    void Form_Activate() override;
    void Form_Unload() override;

private:
    void ShowVersion();
    void FillLanguages();
    void NextLanguage();
    void lstLanguage_Click();
    void AligneMenus();
    void ShowFileName(const QString& name);
    void ShowModified();
    void ShrinkLabels();

    void RunTile(MenuTile tile);
    /// Opens a screen in place of the menu.
    void Open(const QString& name);
    void imgRestore_Click();
    void OpenParameters();
    void OpenSystem();

    enum class Saved { Yes, NoName, Failed };
    static void StartScreenKeyboard();
    /// Saves the site under a name that is asked for. `Failed` also when the menu is gone
    /// meanwhile.
    Saved SaveUnderName(bool withKeyboard);
    /// Lets unsaved changes be saved. False to stop what would lose them.
    bool SaveChanges(bool withKeyboard);
    /// False when one of the two files wasn't written, which was told.
    bool SaveSite(const QString& path);
    /// Saves what the program starts from. A failure is told, and leaves the site modified.
    bool SaveCurrent();
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
