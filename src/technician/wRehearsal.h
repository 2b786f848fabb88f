#pragma once

#include "screens/touch/ScreenForm.h"

#include <QList>
#include <memory>

class QFrame;

namespace Ui {
class wRehearsal;
}

/// The simulated modules of a rehearsal: a touch on a channel does to its wiring what is chosen
/// below. The strip at the foot of every window leads here; an alarm takes the screen away, and
/// panel and choice are found again.
class wRehearsal : public ScreenForm {
    Q_OBJECT
public:
    wRehearsal();
    ~wRehearsal() override;

    /// Shows the channels of a panel of the site.
    void setPanel(int number);

protected:
    void CloseRequested() override { Unload(); }

private:
    void MakeTiles();
    void MakeChannels();
    void ShowPage(int page);
    void ShowPanel();
    void ShowChannel(int channel, const QString& text);
    void ShowChoice();
    void imgNavig_Click(int index);
    void imgPanneau_Click(int index);
    void imgChannel_Click(int index);
    void optContact_Click(int index);
    void cmdModule_Click();

    std::unique_ptr<Ui::wRehearsal> ui_;
    QFrame* shpSelection_ = nullptr;
    QList<int> panels_; // that are played, upwards
    int page_ = 0;
};
