#pragma once

#include "screens/touch/ScreenForm.h"

#include <QTimer>
#include <memory>

namespace Ui {
class wHistoric;
}

/// The history files for the operator: a list of them, the lines of one, the instruction that
/// belongs to a line. It only reads.
class wHistoric : public ScreenForm {
    Q_OBJECT
public:
    wHistoric();
    ~wHistoric() override;

protected:
    void Form_Activate() override;
    void Form_Unload() override;
    void CloseRequested() override { imgClose_Click(); }

private:
    void Form_Load();
    void ConnectControls();
    void FillFiles();
    /// Selects another file of the list; there is no further one at its ends.
    void Step(int by);
    void ShowFound();

    void tmrUpdate_Timer();
    void tmrDateTime_Timer();
    void imgControl_Click(int index);
    void imgConsigne_Click();
    void imgTelecommande_Click();
    void imgClose_Click();

    std::unique_ptr<Ui::wHistoric> ui_;
    QTimer tmrUpdate_{this};
    QTimer tmrDateTime_;
    /// The last move through the files went to a later one: reading goes on at its first line.
    bool forward_ = false;
};
