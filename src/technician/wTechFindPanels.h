#pragma once

#include "config_screens/ConfigForm.h"
#include "model/ConfigClass.h"

#include <array>
#include <memory>

namespace Ui {
class wTechFindPanels;
}

/// Asks each address of the bus what model of module answers there, and takes what was found into
/// the panels. All edits go to a copy until the screen closes.
///
/// The selection follows the search until the table or its arrows are touched; from then on the
/// search only marks its rows, and a command goes to the row that was touched.
class wTechFindPanels : public ConfigForm {
    Q_OBJECT
public:
    wTechFindPanels();
    ~wTechFindPanels() override;

protected:
    bool Differs() const override;
    bool Take() override;
    void Keep() override;
    int Question() const override;
    void CloseRequested() override { imgNavig_Click(ToPanels); }
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    static constexpr int PanelCount = ConfigClass::PanelCount;
    /// No model is known of an address.
    static constexpr int NotKnown = -1;
    template <class T> using OfPanels = std::array<T, PanelCount + 1>;

    void LoadCopies();
    void FillGrid();
    void ShowLink();
    QStringList CellsOf(int panel) const;
    void ShowRow(int panel);
    void grdPanels_RowColChange();
    int CurrentPanel() const;

    void imgFind_Click(int index);
    void imgCommand_Click(int index);
    void imgControl_Click(int index);
    void imgNavig_Click(int index);

    void StartScan();
    void Scan();
    void BeginScan();
    void EndScan();
    void FollowTo(int panel);
    void Ask(int panel);
    void ShowProgress(int asked);
    void ShowResult();
    void ShowScanning();

    std::unique_ptr<Ui::wTechFindPanels> ui_;
    OfPanels<PanelClass> copies_;
    /// Model found, by panel.
    OfPanels<int> found_;
    OfPanels<QString> results_;
    /// Text that tells why nothing was found, by panel; 0 for none.
    OfPanels<int> reasons_{};
    bool scanning_ = false;
    bool abort_ = false;
    bool follows_ = false;
    int asked_ = 0;
    qint64 scanStart_ = 0; // monotonic, ms
};
