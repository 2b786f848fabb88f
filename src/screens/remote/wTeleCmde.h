#pragma once

#include "bus/CommandClass.h"
#include "screens/touch/ScreenForm.h"

#include <QTimer>
#include <memory>

class PanelClass;
class QFrame;
class Voyant;

namespace Ui {
class wTeleCmde;
}

/// One module that takes remote commands: a lamp for each channel, and what can be ordered to the
/// channel that is chosen.
class wTeleCmde : public ScreenForm {
    Q_OBJECT
public:
    wTeleCmde();
    ~wTeleCmde() override;

    /// The module shown; set ahead of the showing, null for none. The panel belongs to the site.
    const PanelClass* Panel() const { return panel_; }
    void setPanel(const PanelClass* panel);

protected:
    void Nationality() override;
    void Form_Unload() override;

private:
    void Form_Load();
    void MiseEnFormeModule();
    void MakeLamps();
    void lblVoyant_Click(int index);
    void ImgTcmde_Click(int index);
    void imgConsigne_Click();
    void tmrPoll_Timer();
    void ShowTitle();
    void ShowSelection();
    void ShowWait();
    /// Drops the commands that are done, given up or won't be sent any more.
    void DropSettled();
    void Close();

    std::unique_ptr<Ui::wTeleCmde> ui_;
    const PanelClass* panel_ = nullptr;
    /// Chosen channel, 0 for none.
    int channel_ = 0;
    QList<Voyant*> lamps_;
    QFrame* shpSelection_ = nullptr;
    QTimer tmrPoll_;
    /// What the operator waits for.
    QList<CommandPtr> waiting_;
    /// The last order was given up by the bus.
    bool failed_ = false;
};
