#pragma once

#include "screens/touch/ScreenForm.h"

#include <memory>
#include <optional>

class dlgUserCodes;

namespace Ui {
class dlgDefPwds;
}

/// The table of users. What is changed here goes into the site only when it is saved. Users of a
/// level above the connected one can't be seen on a guarded site, and are kept.
class dlgDefPwds : public ScreenForm {
    Q_OBJECT
public:
    dlgDefPwds();
    ~dlgDefPwds() override;

protected:
    void CloseRequested() override { Close(); }

private:
    struct User {
        QString name;
        QString code;
        int level = 0;
        /// Number in the table of the site, 0 for one that isn't in it yet.
        int number = 0;
    };

    void Form_Load();
    User UserOf(int row) const;
    void WriteRow(int row, const User& user);
    void ShowActions();
    void imgControl_Click(int index);
    void cmdBoutons_Click(int index);
    void AddUser();
    void ChangeUser();
    void DeleteUser();
    void SendKey(int key);
    /// What was entered, starting with `user`; nothing when the entry was given up or doubles
    /// another user.
    static std::optional<User> Edit(const User& user);
    static bool IsDouble(const User& user);
    void Save();
    void Close();

    std::unique_ptr<Ui::dlgDefPwds> ui_;
};
