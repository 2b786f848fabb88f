#pragma once

#include "screens/touch/ScreenForm.h"

#include <QPointer>
#include <QTimer>
#include <functional>
#include <memory>

class QLineEdit;

namespace Ui {
class dlgUserCodes;
}

/// Where codes are entered: all of a user, or as a bare prompt the code alone. The keys on the
/// form give capitals, digits and "-"; a real keyboard gives what it has.
class dlgUserCodes : public ScreenForm {
    Q_OBJECT
public:
    dlgUserCodes();
    ~dlgUserCodes() override;

    /// What becomes of a code that was confirmed. Only the first closes the prompt, the others are
    /// told in it.
    enum class Verdict { Taken, Unknown, TooLow };
    using Taker = std::function<Verdict(const QString& code)>;

    /// True when the entry was confirmed.
    bool Ok() const { return ok_; }
    /// Leaves the code alone, hidden behind stars, at the foot of the display, and lets the form
    /// close by itself after the seconds of the base. It stays over events as long as `caller`
    /// does. A `level` above 0 is told.
    void AskCodeOnly(ScreenForm* caller, int level, Taker taker);
    bool StaysOverEvents() const override { return IsLoaded(caller_.data()); }

    QString UserName() const;
    void setUserName(const QString& name);
    QString UserPwd() const;
    void setUserPwd(const QString& code);
    int UserLevel() const;
    void setUserLevel(int level);
    /// Tells that the user is one whose entry an alarm took off the display.
    void ShowKept();

protected:
    void Form_Activate() override;
    void Form_Unload() override;
    void CloseRequested() override { Close(false); }
    QRect PlaceIn(const QRect& area) const override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void MakeKeys();
    void Compact();
    QLineEdit* Box(int index) const;
    void MakeActive(int index);
    void ShowBoxes();
    void cmdChar_Click(int index);
    void imgControl_Click(int index);
    void Confirm();
    void Tell(const QString& text, bool failed);
    void Close(bool ok);

    std::unique_ptr<Ui::dlgUserCodes> ui_;
    QTimer* tmrAutoClose_ = nullptr;
    bool ok_ = false;
    /// Of the bare prompt: who asks, the level that is needed and where a code goes.
    QPointer<const ScreenForm> caller_;
    int neededLevel_ = 0;
    Taker taker_;
    /// A user of level 1 exists: levels are guarded.
    bool guarded_ = false;
    /// The box that the keys write into, -1 for none.
    int active_ = -1;
};
