#pragma once

#include "model/OutOfService.h"
#include "screens/touch/HoldToRepeat.h"
#include "screens/touch/ScreenForm.h"

#include <QString>
#include <QStringList>
#include <memory>
#include <optional>

namespace Ui {
class dlgOutOfService;
}

/// Why a thing is taken out of service and for how long: one of the site's five reasons or one from
/// the keyboard, and a shift, a day, a date or no end. The five are edited here as well.
class dlgOutOfService : public ScreenForm {
    Q_OBJECT
public:
    struct Choice {
        QString why = {};
        /// `OutOfService::ForEver` for no end.
        int minutes = OutOfService::ForEver;
    };

    dlgOutOfService();
    ~dlgOutOfService() override;

    bool Ok() const { return ok_; }
    const Choice& Chosen() const { return choice_; }
    void setChoice(const Choice& choice);

protected:
    void CloseRequested() override { Hide(); }

private:
    enum Reason { NoReason = OutOfService::ReasonCount, OtherReason };
    enum End { Shift, Day, ForEver, Date };

    void ShowChoice();
    void imgReason_Click(int index);
    void imgEdit_Click(int index);
    void imgEnd_Click(int index);
    void imgDate_Click(int index);
    void imgControl_Click(int index);
    int ReasonChosen() const;
    int EndChosen() const;

    std::unique_ptr<Ui::dlgOutOfService> ui_;
    HoldToRepeat repeat_;
    QStringList reasons_;
    Choice choice_;
    bool ok_ = false;
};

/// The words of an end that begins now: a shift, a day, a date with its time, or none.
QString EndText(int minutes);

/// Asks for reason and end; nothing when that was left otherwise, also when it was unloaded while
/// it waited.
std::optional<dlgOutOfService::Choice> AskOutOfService(const dlgOutOfService::Choice& present);
