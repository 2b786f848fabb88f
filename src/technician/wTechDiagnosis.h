#pragma once

#include "bus/BusDiagnosis.h"
#include "screens/touch/ScreenForm.h"
#include "screens/touch/TouchTable.h"

#include <QTimer>
#include <array>
#include <memory>
#include <optional>

namespace Ui {
class wTechDiagnosis;
}

/// What the bus itself tells: counters of the exchanges with each panel, and the frames as they go
/// by. It only looks on; the bus goes on as before.
class wTechDiagnosis : public ScreenForm {
    Q_OBJECT
public:
    wTechDiagnosis();
    ~wTechDiagnosis() override;

    /// Shows what is new. Runs by itself four times a second.
    void Refresh();

protected:
    void CloseRequested() override { Hide(); }

private:
    bool LastHour() const;
    BusDiagnosis::Counters CountersOf(int panel) const;
    void ShowCounters();
    void ShowTrace();
    void tblPanels_Click();
    void imgSpan_Click();
    void imgHold_Click();
    void imgFilter_Click(int index);
    void imgSave_Click();
    QString Report() const;

    std::unique_ptr<Ui::wTechDiagnosis> ui_;
    QTimer tmrRefresh_;
    /// What the table shows of each panel that has a row, by its address less 1.
    std::array<std::optional<BusDiagnosis::Counters>, BusDiagnosis::PanelCount> shown_;
};
