#pragma once

#include "config_screens/panel/MirrorOne.h"
#include "screens/touch/ScreenForm.h"

#include <QString>
#include <memory>

class MirrorClass;
class QListWidget;

namespace Ui {
class wBusMirrorOne;
}

/// The rules that touch one channel of the panel that is edited: where it goes to, where it comes
/// from. They are changed in the editor's list.
class wBusMirrorOne : public ScreenForm, public MirrorOne {
    Q_OBJECT
public:
    wBusMirrorOne();
    ~wBusMirrorOne() override;

    void Present(MirrorClasses& mirrors, const PanelClass& panel, const QString& channel) override;
    void setMirrors(MirrorClasses* mirrors) { mirrors_ = mirrors; }
    void setPanel(const PanelClass* panel);
    /// A line of a list: kind, destination or source, and the title of its panel.
    QString FormatChannel(const MirrorClass& mirror, bool toSide) const;

protected:
    void CloseRequested() override { Hide(); }

private:
    void lblChannel_Change();
    void ShowArrows();
    void imgControl_Click(int index);
    void imgNavig_Click(int index);
    void imgNew_Click();
    void imgDelete_Click();

    std::unique_ptr<Ui::wBusMirrorOne> ui_;
    MirrorClasses* mirrors_ = nullptr;
    const PanelClass* panel_ = nullptr;
};
