#pragma once

#include "bus/CommFunctions.h"
#include "screens/touch/ScreenForm.h"
#include "technician/ModuleFront.h"
#include "technician/TechCommand.h"

#include <QTimer>
#include <functional>
#include <memory>

namespace Ui {
class wTechEtatModule;
}

/// A live copy of a module's front: a lamp for each channel and one for the horn, and buttons that
/// act as the module's own keys. It reads the module itself, whether the polling runs or not. A
/// module that doesn't answer is read more and more rarely, so that the others are polled.
class wTechEtatModule : public ScreenForm, public ModuleFront {
    Q_OBJECT
public:
    wTechEtatModule();
    ~wTechEtatModule() override;

    /// Builds the front of a panel of the site, ahead of the showing.
    void MiseEnFormeModule(PanelClass& panel);
    void Present(PanelClass& panel) override;
    /// Reads, once a second while the module answers, and blinks, or does neither.
    void EnableTimers(bool on);

    /// Ticks of the timers.
    void tmrPoll_Timer();
    void tmrClign_Timer();

protected:
    void Form_Unload() override;

private:
    void Form_Load();
    bool MayRead() const;
    void ReadModule();
    bool ReadUntilSettled(qint32 registerNo, int count, bool& known,
                          const std::function<void(const Words* words)>& show);
    void RestUntilNextTick();
    void setPause(int pause);
    bool LetEventsRun();
    void ShowResult(int text);
    void ShowHorn(const Words* words);
    void cmdBoutons_Click(int index);
    void ShowCommand();
    void imgClose_Click();

    std::unique_ptr<Ui::wTechEtatModule> ui_;
    const PanelClass* panel_ = nullptr;
    QTimer tmrPoll_{this};
    QTimer tmrClign_{this};
    TechCommand command_;
    int button_ = 0; // whose command was sent last
    bool closing_ = false;
    bool reading_ = false; // a tick reads, and may let events run
    // By the last reads; before the first nothing speaks against it.
    bool lampsKnown_ = true;
    bool hornKnown_ = true;
    int pause_; // between two ticks, ms
};
