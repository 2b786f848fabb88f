#pragma once

#include "screens/touch/ScreenForm.h"

#include <QList>
#include <memory>

class Telecommande;

namespace Ui {
class wTeleCmdes;
}

/// All modules that take remote commands, twelve to a page. A tile leads to its module.
class wTeleCmdes : public ScreenForm {
    Q_OBJECT
public:
    wTeleCmdes();
    ~wTeleCmdes() override;

protected:
    void Form_Activate() override;

private:
    void Form_Load();
    void HabillePanneaux();
    void MakeTile(int place, int panel);
    void ShowArrows();
    void imgNavig_Click(int index);
    void OpenPanel(const Telecommande& tile);
    void UpdateTiles();
    void Close();

    std::unique_ptr<Ui::wTeleCmdes> ui_;
    /// Numbers of the modules in order of address. Their places count from 1.
    QList<int> panels_;
    /// Place of the first tile of the page.
    int pageBase_ = 1;
};
