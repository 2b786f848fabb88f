#pragma once

#include "config_screens/ConfigForm.h"

#include <memory>

class ChannelSheetImport;

namespace Ui {
class wBusModules;
}

/// The panels of the site, sixteen to a page, and the ways to what is set up around them.
class wBusModules : public ConfigForm {
    Q_OBJECT
public:
    wBusModules();
    ~wBusModules() override;

    /// Fills the tiles of the page.
    void HabillePanneaux();

protected:
    bool Differs() const override { return false; }
    bool Take() override { return true; }

private:
    /// Turns to the page of a panel.
    void GoToPanel(int number);
    void AskPanel();
    void imgNavig_Click(int index);
    void imgPanneau_Click(int index);
    void imgMiroirs_Click();
    void imgCopyPanel_Click();
    void imgImportExport_Click(int index);
    void Export();
    void Import();
    static void TellOf(const ChannelSheetImport& sheet);
    void Open(const QString& form);

    std::unique_ptr<Ui::wBusModules> ui_;
    /// Bus number of the first panel on the page.
    int panelPage_ = 1;
};
