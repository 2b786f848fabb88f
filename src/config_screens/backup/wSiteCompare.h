#pragma once

#include "model/SiteDifference.h"
#include "screens/touch/ScreenForm.h"

#include <QList>
#include <QString>
#include <array>
#include <memory>

class ConfigClass;

namespace Ui {
class wSiteCompare;
}

/// What two sites have otherwise, panel by panel and channel by channel: the present one or those
/// of any files. With a backup that waits to be restored, what that would change, and the button
/// that takes it.
class wSiteCompare : public ScreenForm {
    Q_OBJECT
public:
    wSiteCompare();
    ~wSiteCompare() override;

protected:
    void Form_Unload() override;
    void CloseRequested() override;

private:
    enum Navigation { ToMenu = 0, Help = 7 };
    static constexpr int Sides = 2;
    static constexpr int Columns = 4;
    /// The present site, a file, or nothing yet.
    struct Side {
        bool present = false;
        QString path;

        bool IsChosen() const { return present || !path.isEmpty(); }
    };

    void Leave(const QString& form);
    void ShowRestore();
    void SetColumns(int first);
    void ShowSides();
    void CompareSides();
    void Present(QList<SiteDifference> differences);
    void ShowWhole();
    void lblSite_Click(int side);
    void imgPresent_Click(int side);
    void imgNavig_Click(int index);
    void imgSave_Click();
    void imgRestore_Click();

    std::unique_ptr<Ui::wSiteCompare> ui_;
    std::array<Side, Sides> sides_;
    QList<SiteDifference> differences_;
};
