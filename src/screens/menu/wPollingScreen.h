#pragma once

#include "screens/touch/ScreenForm.h"

#include <memory>

namespace Ui {
class wPollingScreen;
}

/// The technician's view of the engine: error counters of all panels, the link, start and stop.
/// It is there as long as the program lives, mostly hidden, and ends the engine when it goes.
class wPollingScreen : public ScreenForm {
    Q_OBJECT
public:
    wPollingScreen();
    ~wPollingScreen() override;

    /// First panel that the grid shows, 1 to 64.
    int TopRow() const;
    void setTopRow(int row);

protected:
    void Form_Activate() override;
    void Form_Unload() override;
    void CloseRequested() override { Hide(); }
    void changeEvent(QEvent* event) override;

private:
    void FillGrid();
    void FitGrid();
    void ListenToEngine();
    void imgControl_Click(int index);
    void ShowLink();
    void ShowRun();
    void ShowRound(int panel);
    void ShowRow(int panel);

    std::unique_ptr<Ui::wPollingScreen> ui_;
};
