#pragma once

#include "screens/touch/ScreenForm.h"

#include <QList>
#include <QPointer>
#include <memory>
#include <optional>

class dlgUserCodes;

namespace Ui {
class dlgDefPwds;
}

/// The table of users. What is changed here goes into the site only when it is saved. Users of a
/// level above the connected one can't be seen on a guarded site, and are kept. Changes that an
/// alarm takes off the display, a user who is half entered among them, stand there again for
/// whoever has the level of their maker.
class dlgDefPwds : public ScreenForm {
    Q_OBJECT
public:
    dlgDefPwds();
    ~dlgDefPwds() override;

protected:
    void CloseRequested() override { Close(); }
    void Form_Unload() override;

private:
    struct User {
        QString name;
        QString code;
        int level = 0;
        /// Number in the table of the site, 0 for one that isn't in it yet.
        int number = 0;
        bool operator==(const User&) const = default;
    };
    /// A user being entered: what the form began with and what stands in it.
    struct Entry {
        User original;
        User entered;
        bool operator==(const Entry&) const = default;
    };
    struct Draft {
        QList<User> users;
        std::optional<Entry> entry;
        bool operator==(const Draft&) const = default;
    };
    struct Memory;
    static Memory& Kept();
    static QList<User> OfSite();

    void Form_Load();
    void FillGrid();
    User UserOf(int row) const;
    /// The table as it is shown.
    QList<User> Users() const;
    /// The entry that stands on the display, or the one that an alarm took off it before.
    std::optional<Entry> OpenEntry() const;
    void WriteRow(int row, const User& user);
    void ShowActions();
    void imgControl_Click(int index);
    void cmdBoutons_Click(int index);
    void AddUser();
    void ChangeUser();
    void DeleteUser();
    void SendKey(int key);
    /// What was entered, starting with `user`; nothing when the entry was given up or doubles
    /// another user. The table may be gone then.
    std::optional<User> Edit(const User& user);
    static User UserIn(const dlgUserCodes& form, int number);
    static bool IsDouble(const User& user);
    void Save();
    void Close();

    std::unique_ptr<Ui::dlgDefPwds> ui_;
    int level_; // of whoever opened the table
    QPointer<const dlgUserCodes> form_;
    User formOriginal_;
    std::optional<Entry> keptEntry_; // of before the alarm, until it is taken up
    bool left_ = false;
};
