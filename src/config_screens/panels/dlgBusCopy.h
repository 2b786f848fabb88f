#pragma once

#include "screens/touch/ScreenForm.h"

#include <array>
#include <memory>

class Stepper;

namespace Ui {
class dlgBusCopy;
}

/// Copies one panel over another, and stays for the next one.
class dlgBusCopy : public ScreenForm {
    Q_OBJECT
public:
    dlgBusCopy();
    ~dlgBusCopy() override;

Q_SIGNALS:
    /// A panel of the site is another one.
    void Copied();

protected:
    void CloseRequested() override { Hide(); }

private:
    void lblPanelNo_Change();
    void cmdBoutons_Click(int index);
    void Copy();

    std::unique_ptr<Ui::dlgBusCopy> ui_;
    /// Source and target.
    std::array<Stepper*, 2> panels_{};
};
