#pragma once

#include "config_screens/ConfigForm.h"
#include "screens/touch/WorkingCopy.h"

#include <array>
#include <memory>

class ValueLabel;

namespace Ui {
class wParamEcran;
}

/// Where each kind of event goes, and after how long without a touch the user is disconnected.
class wParamEcran : public ConfigForm {
    Q_OBJECT
public:
    wParamEcran();
    ~wParamEcran() override;

    /// Kinds of events: the bits of the option masks.
    static constexpr int KindCount = 5;
    /// Screen, history, printer, horn.
    static constexpr int RoadCount = 4;

protected:
    bool Differs() const override { return edit_.Differs(); }
    bool Take() override;
    void Keep() override;

private:
    struct Edit {
        std::array<std::array<bool, KindCount>, RoadCount> options = {};
        int inactivity = 0;
        bool operator==(const Edit&) const = default;
    };
    struct Memory;
    static Memory& Kept();
    static Edit OfSite();

    void ShowEdit();
    void Toggle(int road, int kind);
    void imgControl_Click();
    void imgNavig_Click(int index);

    std::unique_ptr<Ui::wParamEcran> ui_;
    WorkingCopy<Edit> edit_;
};
