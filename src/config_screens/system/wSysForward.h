#pragma once

#include "config_screens/ConfigForm.h"
#include "events/ForwardSettings.h"
#include "screens/touch/WorkingCopy.h"

#include <QString>
#include <memory>

class ValueLabel;

namespace Ui {
class wSysForward;
}

/// Whether and where events are forwarded to outside, and how that goes.
class wSysForward : public ConfigForm {
    Q_OBJECT
public:
    wSysForward();
    ~wSysForward() override;

protected:
    bool Differs() const override { return edit_.Differs(); }
    bool Take() override;
    void Keep() override;

private:
    enum Image { Undo, Apply };
    struct Memory;
    static Memory& Kept();

    void ConnectChecks();
    void ConnectFile(const QString& images, ValueLabel* label,
                     QString platform::LogServerSetup::*file);
    void ShowEdit();
    void ShowState();
    void imgControl_Click(int index);
    void imgNavig_Click(int index);
    void txtServer_Click();
    void lblPort_Click();
    void imgTest_Click();
    void ChooseFile(QString platform::LogServerSetup::*file);

    std::unique_ptr<Ui::wSysForward> ui_;
    WorkingCopy<ForwardSettings> edit_;
};
