#pragma once

#include "screens/touch/ScreenForm.h"

#include <QDate>
#include <array>
#include <memory>
#include <optional>
#include <utility>

class QCalendarWidget;

namespace Ui {
class dlgHistoryPeriod;
}

/// Chooses a first and a last day on two calendars.
class dlgHistoryPeriod : public ScreenForm {
    Q_OBJECT
public:
    using Period = std::pair<QDate, QDate>;

    dlgHistoryPeriod();
    ~dlgHistoryPeriod() override;

    void setPeriod(const Period& period);
    /// The earlier day first. Nothing when the dialog was left otherwise than by a confirmation.
    std::optional<Period> Chosen() const;

protected:
    void CloseRequested() override { Hide(); }
    void Form_Activate() override;

private:
    void Dress(QCalendarWidget& calendar, int side);
    void Turn(int side, int index);
    void ShowMonth(int side);
    void ShowDay(int side);
    void imgPreset_Click(int index);
    void imgControl_Click(int index);

    std::unique_ptr<Ui::dlgHistoryPeriod> ui_;
    std::array<QCalendarWidget*, 2> calendars_;
    bool ok_ = false;
};

/// Lets the user choose a period; nothing when it wasn't confirmed, also when the dialog was taken
/// away while it stood.
std::optional<dlgHistoryPeriod::Period> AskPeriod(const dlgHistoryPeriod::Period& present);
