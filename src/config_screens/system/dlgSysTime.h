#pragma once

#include "platform/SystemClock.h"
#include "screens/touch/HoldToRepeat.h"
#include "screens/touch/ScreenForm.h"

#include <QList>
#include <QTimer>
#include <memory>

class Stepper;

namespace Ui {
class dlgSysTime;
}

/// Sets the clock of the machine. It shows the running clock until a field is changed, and then
/// stands still.
class dlgSysTime : public ScreenForm {
    Q_OBJECT
public:
    dlgSysTime();
    ~dlgSysTime() override;

protected:
    void CloseRequested() override { cmdBoutons_Click(CloseButton); }

private:
    enum Buttons { CloseButton, SetButton };

    void ShowClock();
    void ShowZone();
    void imgControl_Click(int index);
    void cmdBoutons_Click(int index);
    void SetClock();
    void Tell(const platform::SystemClock::Result& result);

    std::unique_ptr<Ui::dlgSysTime> ui_;
    HoldToRepeat repeat_;
    QList<Stepper*> fields_;
    QTimer tmrTimeUpdate_{this};
};
