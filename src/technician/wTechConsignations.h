#pragma once

#include "config_screens/ConfigForm.h"
#include "model/OutOfService.h"
#include "screens/touch/HoldToRepeat.h"
#include "technician/dlgOutOfService.h"

#include <QString>
#include <memory>

class Stepper;
class TouchTable;

namespace Ui {
class wTechConsignations;
}

/// What is out of service: since when, who did it, why and until when. Changes are collected in a
/// list of their own and reach the site when the screen is left with a yes. What is taken out takes
/// the reason and the end along that the screen shows, and a line that is touched gets others.
class wTechConsignations : public ConfigForm {
    Q_OBJECT
public:
    wTechConsignations();
    ~wTechConsignations() override;

    /// Marks and two-digit numbers, in the language in use: "P12C07", and "P12" for channel 0.
    static QString FormatKey(int panel, int channel);

protected:
    bool Differs() const override { return !new_.entries.isEmpty(); }
    bool Take() override;
    void Drop() override { new_.entries.clear(); }
    void Keep() override;
    void CloseRequested() override { LeaveModal(); }

private:
    enum Image {
        ChannelDown,
        ChannelUp,
        ChannelOut,
        ChannelBack,
        ModuleDown,
        ModuleUp,
        PanelOut,
        PanelBack
    };
    using Entry = OutOfService::Change;
    struct List {
        TouchTable* table;
        bool withTime;
        QList<Entry> entries = {};
    };

    void MakeTables();
    void Form_Load();
    void FillPresent();
    void AjouteItem(List& list, const Entry& entry);
    static const Entry* GetItem(const List& list, const QString& key);
    Entry* ChosenToGoOut();
    void Remove(List& list, const QString& key);
    void Fill(const List& list);
    void RefreshNavigation();
    void imgControl_Click(int index);
    void imgNavig_Click(int index);
    void imgDelete_Click();
    void imgReason_Click();
    void ShowReason();
    void lblModule_Click();
    void lblChannel_Change();
    void Choose(List& list);
    void Request(int channel, bool out);
    void Move(List& list, int by);

    std::unique_ptr<Ui::wTechConsignations> ui_;
    HoldToRepeat repeat_;
    Stepper* module_;
    Stepper* channel_;
    List present_;
    List new_;
    /// Of what is taken out next.
    dlgOutOfService::Choice reason_;
};
