#pragma once

#include "config_screens/ConfigForm.h"
#include "model/MirrorClass.h"

#include <memory>

namespace Ui {
class wBusMiroirs;
}

/// All mirror rules of the site in one table.
class wBusMiroirs : public ConfigForm {
    Q_OBJECT
public:
    wBusMiroirs();
    ~wBusMiroirs() override;

    /// Shows the working list, sorted as before.
    void FillTable();

protected:
    bool Differs() const override { return rules_.Modified(); }
    bool Take() override;
    void Keep() override;

private:
    void Form_Load();
    void imgNavig_Click(int index);
    void imgNew_Click();
    void imgModif_Click();
    void imgDelete_Click();
    void imgCancel_Click();
    void lvwMirrors_Click();
    void EditRule(MirrorClass* changed);

    std::unique_ptr<Ui::wBusMiroirs> ui_;
    MirrorClasses rules_;
    /// The `ID` of the selected rule, empty for none.
    QString selected_;
};
