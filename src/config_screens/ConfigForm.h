#pragma once

#include "config_screens/SiteEdit.h"
#include "core/FormNames.h"
#include "screens/touch/ScreenForm.h"

#include <QString>

/// What the screens of the configuration have in common: they edit a copy, and leaving asks whether
/// to take it, drop it or stay. An edit that an alarm takes off the display is kept and stands
/// there again at the next visit, which the label `lblKept` tells if the form has one.
class ConfigForm : public ScreenForm {
    Q_OBJECT
public:
    explicit ConfigForm(const QString& name);

protected:
    /// Indices of `imgNavig` that mean the same on all of them.
    enum CommonNavigation { ToMenu = 0, ToPanels = 5, Keyboard = 6, Help = 7 };

    /// What is being edited is not what the site or the settings hold.
    virtual bool Differs() const = 0;
    /// Takes the edit over. False when that was refused and told: the screen stays.
    virtual bool Take() = 0;
    /// Number of the text that asks whether to take what is edited.
    virtual int Question() const;
    /// Undoes what was done ahead of an answer, when the edit is dropped.
    virtual void Drop() {}
    /// Keeps the edit, which differs, for the next visit.
    virtual void Keep() {}
    /// The last words of the form, whichever way it goes.
    virtual void Closing() {}

    /// Asks if something differs, and takes or drops. True when the caller may go on; false to
    /// stay, also when the screen is gone meanwhile.
    bool AskForClose();
    /// Asks, brings another form and unloads this one. False when the screen stays.
    bool Leave(const QString& form = FormNames::wMain);
    /// The same, back into a submenu of the main menu.
    bool LeaveToMenu(int tile);
    /// The same for a form that was shown modally: back to what showed it.
    bool LeaveModal();
    /// Tells that the edit is one that was kept.
    void ShowKept(bool kept);

    void Form_Unload() final;
    void CloseRequested() override { Leave(); }

private:
    bool left_ = false;
};
