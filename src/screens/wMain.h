#pragma once

#include "screens/ScreenForm.h"

#include <memory>

class QListWidget;

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

    void imgMenu_Click(int index);
    void imgNavig_Click(int index);

protected:
    void Nationality() override;
    void Form_Activate() override;

private:
    void ShowVersion();
    void FillLanguages();
    void NextLanguage();
    void lstLanguage_Click();
    void AligneMenus();
    void ShowFileName(const QString& name);
    void ShowLogin();
    void LockMissing();
    void ShrinkLabels();

    std::unique_ptr<Ui::wMain> ui_;
    QListWidget* lstLanguage_ = nullptr;
};
