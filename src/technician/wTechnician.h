#pragma once

#include "screens/touch/ScreenForm.h"
#include "technician/TechCommand.h"

#include <memory>

class QLabel;
class TraceCopy;

namespace Ui {
class wTechnician;
}

/// The service screen of the bus: commands to one module or to all, the work on the whole bus, the
/// copying of the traces, and the way to the technician's other tools.
class wTechnician : public ScreenForm {
    Q_OBJECT
public:
    wTechnician();
    ~wTechnician() override;

    /// The chosen module, 1 to 64; 0 for all.
    int Numero() const;
    void setNumero(int number);

protected:
    void Form_Unload() override;
    void CloseRequested() override { imgNavig_Click(0); }

private:
    void ConnectControls();
    void Form_Load();
    void lblNumero_Change();
    void VisiButtons();
    void ShowRun();
    void ShowOutcome(const TechCommand& command, QLabel& label);
    void ShowCopy();
    void ShowRehearsal();
    void Ask(int text, TechCommand& command, int registerNo, int value);
    void Send(TechCommand& command, int registerNo, int value);

    void imgControl_Click(int index);
    void imgStopRun_Click(int index);
    void imgNavig_Click(int index);
    void cmdPanelState_Click();
    void cmdSynchroMinuit_Click();
    void cmdForceHisto_Click();
    void cmdCopyTraces_Click();
    void cmdRehearse_Click();
    void mwPolling_PollDone();

    std::unique_ptr<Ui::wTechnician> ui_;
    TechCommand reset_;
    TechCommand clear_;
    TechCommand leds_;
};
