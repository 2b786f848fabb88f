#pragma once

#include "screens/touch/ScreenForm.h"

/// What the submenus have in common: buttons, of which the pressed one is told.
class MenuDialog : public ScreenForm {
    Q_OBJECT
public:
    using ScreenForm::ScreenForm;

    /// Index of the button pressed, 0 for cancel and for a menu left without a press.
    qint16 Cmd() const { return cmd_; }

protected:
    /// The end of a constructor, after the controls are there.
    void PrepareMenu();
    void CloseRequested() override { Hide(); }

private:
    qint16 cmd_ = 0;
};
