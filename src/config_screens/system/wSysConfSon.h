#pragma once

#include "config_screens/ConfigForm.h"
#include "platform/SoundChoice.h"
#include "screens/touch/HoldToRepeat.h"
#include "screens/touch/WorkingCopy.h"

#include <QString>
#include <memory>

class Stepper;

namespace Ui {
class wSysConfSon;
}

/// Where and for how long histories are kept, and the sound of each alarm priority. A sound is
/// assigned at once by its own button; the files wait for theirs, or for the answer at the end.
class wSysConfSon : public ConfigForm {
    Q_OBJECT
public:
    wSysConfSon();
    ~wSysConfSon() override;

protected:
    bool Differs() const override;
    bool Take() override;
    void Keep() override;
    void Closing() override;

private:
    enum Image {
        SoundDown,
        SoundUp,
        Stop,
        Play,
        UndoSound,
        ApplySound,
        UndoFiles,
        ApplyFiles,
        PriorityDown,
        PriorityUp,
        Browse
    };
    /// Keys of the settings that are edited here.
    struct Files {
        QString folder;
        bool limit = false;
        bool daily = false;
        int time = 0;
        bool noResize = true;
        bool operator==(const Files&) const = default;
    };
    struct Edit {
        Files files;
        int sound = 0;
        bool operator==(const Edit&) const = default;
    };
    struct Memory;
    static Memory& Kept();
    static Files OfSettings();

    int SiteSound() const;
    void RestoreKept();
    void ShowFiles();
    void ShowSound();
    void setSound(int number);
    void ShowPlaying(const QString& text);
    void ConnectFiles();
    void imgControl_Click(int index);
    void imgNavig_Click(int index);
    void lblSoundPrio_Click();
    void cmdPeriod_Click();
    void cmdChooseHistoPath_Click();
    void txtHistoPath_Click();
    void UndoFileEdit();
    /// False when the settings can't be written, which is told.
    bool WriteFiles();
    void AssignSound();
    void PlaySound();
    void BrowseSounds();
    void Try(const QString& path, const platform::SoundReserve& reserve, const QString& text);

    std::unique_ptr<Ui::wSysConfSon> ui_;
    HoldToRepeat repeat_;
    Stepper* priority_;
    Stepper* sound_;
    int highest_;
    WorkingCopy<Files> files_;
    QString trial_; // file that was written to be played
};
