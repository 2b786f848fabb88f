#include "screens/history/dlgHistoryPeriod.h"

#include "core/Config.h"
#include "core/DateTimes.h"
#include "core/FormNames.h"
#include "events/AlarmTables.h"
#include "screens/touch/ModalDialog.h"
#include "screens/touch/Theme.h"
#include "ui_dlgHistoryPeriod.h"

#include <QLocale>
#include <QTextCharFormat>
#include <algorithm>

namespace {

enum Side { From, To };
enum Image { Cancel, Confirm };
enum Preset { Today, Week, Month, Everything };

constexpr int FirstTitle = 711181;

/// Months that the arrows turn by.
constexpr int Turns[] = {-12, -1, 1, 12};

const QString Months = QStringLiteral("imgMonth");

QDate CurrentDay() {
    return DateTimes::DateOf(DateTimes::Now());
}

/// The days of all files, the present one among them. Where a clock was set back some lie ahead.
dlgHistoryPeriod::Period AllDays() {
    dlgHistoryPeriod::Period days(CurrentDay(), CurrentDay());
    for (const HistoryRecords::File& file : HistoryRecords::Files())
        days = {std::min(days.first, file.first), std::max(days.second, file.last)};
    return days;
}

} // namespace

dlgHistoryPeriod::dlgHistoryPeriod()
    : ScreenForm(FormNames::dlgHistoryPeriod, Kind::Dialog)
    , ui_(std::make_unique<Ui::dlgHistoryPeriod>())
    , calendars_() {
    ui_->setupUi(this);
    Prepare();
    OnKey(Qt::Key_Return, [this] { imgControl_Click(Confirm); });
    OnKey(Qt::Key_Escape, [this] { imgControl_Click(Cancel); });
    calendars_ = {ui_->calDays_0, ui_->calDays_1};
    for (const int side : {From, To})
        Dress(*calendars_[size_t(side)], side);
    OnClick(Months, [this](int index) { Turn(index / 4, index % 4); });
    OnClick(QStringLiteral("imgPreset"), [this](int index) { imgPreset_Click(index); });
    OnClick(QStringLiteral("imgControl"), [this](int index) { imgControl_Click(index); });
    setPeriod({CurrentDay(), CurrentDay()});
}

dlgHistoryPeriod::~dlgHistoryPeriod() = default;

/// Only days are touched on a calendar: its own head has parts that no finger hits.
void dlgHistoryPeriod::Dress(QCalendarWidget& calendar, int side) {
    QTextCharFormat plain;
    plain.setForeground(Theme::Ink);
    for (int day = Qt::Monday; day <= Qt::Sunday; ++day)
        calendar.setWeekdayTextFormat(Qt::DayOfWeek(day), plain);
    plain.setForeground(Theme::QuietInk);
    calendar.setHeaderTextFormat(plain);
    if (auto* days = calendar.findChild<QWidget*>(QStringLiteral("qt_calendar_calendarview"))) {
        // They don't follow the letters of the calendar once they have got some.
        days->setFont(calendar.font());
        days->ensurePolished();
        QPalette palette = days->palette();
        palette.setColor(QPalette::Disabled, QPalette::Text, Theme::Dormant);
        days->setPalette(palette);
    }
    calendar.setLocale(AlarmTables::Language());
    calendar.setFirstDayOfWeek(QLocale::system().firstDayOfWeek());
    calendar.setNavigationBarVisible(false);
    calendar.setDateEditEnabled(false);
    calendar.setVerticalHeaderFormat(QCalendarWidget::NoVerticalHeader);
    calendar.setHorizontalHeaderFormat(QCalendarWidget::ShortDayNames);
    calendar.setMaximumDate(AllDays().second);
    connect(&calendar, &QCalendarWidget::currentPageChanged, this,
            [this, side] { ShowMonth(side); });
    connect(&calendar, &QCalendarWidget::selectionChanged, this, [this, side] { ShowDay(side); });
}

void dlgHistoryPeriod::setPeriod(const Period& period) {
    calendars_[From]->setSelectedDate(period.first);
    calendars_[To]->setSelectedDate(period.second);
    for (const int side : {From, To}) {
        calendars_[size_t(side)]->showSelectedDate();
        ShowMonth(side);
        ShowDay(side);
    }
}

std::optional<dlgHistoryPeriod::Period> dlgHistoryPeriod::Chosen() const {
    if (!ok_)
        return std::nullopt;
    return std::minmax({calendars_[From]->selectedDate(), calendars_[To]->selectedDate()});
}

void dlgHistoryPeriod::Form_Activate() {
    ok_ = false;
}

void dlgHistoryPeriod::Turn(int side, int index) {
    QCalendarWidget& calendar = *calendars_[size_t(side)];
    const QDate month =
        QDate(calendar.yearShown(), calendar.monthShown(), 1).addMonths(Turns[index]);
    calendar.setCurrentPage(month.year(), month.month());
}

void dlgHistoryPeriod::ShowMonth(int side) {
    const QCalendarWidget& calendar = *calendars_[size_t(side)];
    Control<QLabel>(QStringLiteral("lblMonth"), side)
        ->setText(AlarmTables::Language().standaloneMonthName(calendar.monthShown()) + u'\n' +
                  QString::number(calendar.yearShown()));
}

void dlgHistoryPeriod::ShowDay(int side) {
    const QDate day = calendars_[size_t(side)]->selectedDate();
    Control<QLabel>(QStringLiteral("lblDay"), side)
        ->setText(GetText(FirstTitle + side) + u' ' +
                  AlarmTables::Language().dayName(day.dayOfWeek()) + u' ' +
                  DateTimes::ShortDate(DateTimes::FromDate(day)));
}

void dlgHistoryPeriod::imgPreset_Click(int index) {
    const QDate today = CurrentDay();
    switch (index) {
    case Today:
        return setPeriod({today, today});
    case Week:
        return setPeriod({today.addDays(-6), today});
    case Month:
        return setPeriod({today.addDays(-30), today});
    default:
        return setPeriod(AllDays());
    }
}

void dlgHistoryPeriod::imgControl_Click(int index) {
    ok_ = index == Confirm;
    Hide();
}

std::optional<dlgHistoryPeriod::Period> AskPeriod(const dlgHistoryPeriod::Period& present) {
    return RunDialog(
               new dlgHistoryPeriod, [&](dlgHistoryPeriod& dialog) { dialog.setPeriod(present); },
               [](const dlgHistoryPeriod& dialog) { return dialog.Chosen(); })
        .value_or(std::nullopt);
}
