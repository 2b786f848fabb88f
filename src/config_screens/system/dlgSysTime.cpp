#include "config_screens/system/dlgSysTime.h"

#include "core/Config.h"
#include "core/DateTimes.h"
#include "core/FormNames.h"
#include "core/Message.h"
#include "core/Rehearsal.h"
#include "platform/RunTimeError.h"
#include "screens/dialogs/wHelp.h"
#include "screens/touch/Navigation.h"
#include "screens/touch/Stepper.h"
#include "screens/touch/ValueLabel.h"
#include "ui_dlgSysTime.h"

#include <array>

using platform::SystemClock;

namespace {

enum Field { Day, Month, Year, Hour, Minute, Second, FieldCount };

struct Bounds {
    int low;
    int high;
};
constexpr std::array<Bounds, FieldCount> FieldBounds = {
    {{1, 31}, {1, 12}, {2000, 2099}, {0, 23}, {0, 59}, {0, 59}}};
constexpr int FieldDigits = 2;
/// A second shown may lag by this, ms.
constexpr int Tick = 250;

constexpr int KeptByNetwork = 630210;
constexpr int NoRight = 630211;
constexpr int NotSet = 630212;
constexpr int NotInRehearsal = 718051;

} // namespace

dlgSysTime::dlgSysTime()
    : ScreenForm(FormNames::dlgSysTime, Kind::Dialog)
    , ui_(std::make_unique<Ui::dlgSysTime>())
    , repeat_(this) {
    ui_->setupUi(this);
    Prepare();
    OnKey(Qt::Key_F1, [] { ShowHelp(); });
    OnKey(Qt::Key_Escape, [this] { cmdBoutons_Click(CloseButton); });
    const QString images = QStringLiteral("imgControl");
    for (int field = 0; field < FieldCount; ++field) {
        auto* stepper = new Stepper(repeat_, Control<ValueLabel>(QStringLiteral("lblDate"), field),
                                    {Control<QAbstractButton>(images, 2 * field),
                                     Control<QAbstractButton>(images, 2 * field + 1)},
                                    FieldDigits);
        stepper->setBounds(FieldBounds[size_t(field)].low, FieldBounds[size_t(field)].high);
        connect(stepper, &Stepper::Changed, this, [this](int, bool byTouch) {
            if (byTouch)
                tmrTimeUpdate_.stop();
        });
        fields_ += stepper;
    }
    OnClick(images, [this](int index) { imgControl_Click(index); });
    OnClick(QStringLiteral("cmdBoutons"), [this](int index) { cmdBoutons_Click(index); });
    tmrTimeUpdate_.setObjectName(QStringLiteral("tmrTimeUpdate"));
    tmrTimeUpdate_.callOnTimeout(this, &dlgSysTime::ShowClock);
    tmrTimeUpdate_.start(Tick);
    ShowClock();
    ShowZone();
}

dlgSysTime::~dlgSysTime() = default;

void dlgSysTime::ShowClock() {
    const DateTime now = DateTimes::Now();
    const QDate date = DateTimes::DateOf(now);
    const QTime time = DateTimes::TimeOf(now);
    const std::array<int, FieldCount> values = {date.day(),  date.month(),  date.year(),
                                                time.hour(), time.minute(), time.second()};
    for (int field = 0; field < FieldCount; ++field)
        fields_[field]->setValue(values[size_t(field)]);
}

void dlgSysTime::ShowZone() {
    ui_->lblTimeZone->setText(SystemClock::Current().TimeZone());
}

void dlgSysTime::imgControl_Click(int index) {
    fields_[index / 2]->StepBy(index % 2 == 0 ? -1 : 1);
}

void dlgSysTime::cmdBoutons_Click(int index) {
    if (index == SetButton) {
        SetClock();
        return;
    }
    Unload();
    if (NbInstances(FormNames::wMain) > 0)
        ReturnToMenu(*this, int(MenuTile::System));
}

/// A day that the month doesn't have runs over into the next one.
void dlgSysTime::SetClock() {
    // The plant's records go by the machine's clock.
    if (Rehearsal::Runs()) {
        Message(GetText(NotInRehearsal), Messages::Information);
        return;
    }
    const auto value = [this](Field field) { return fields_[field]->Value(); };
    const QDate date = QDate(value(Year), value(Month), 1).addDays(value(Day) - 1);
    const QTime time(value(Hour), value(Minute), value(Second));
    const SystemClock::Result result = SystemClock::Current().Set(QDateTime(date, time));
    ui_->lblNote->clear();
    if (result.outcome != SystemClock::Outcome::Done) {
        Tell(result);
        return;
    }
    tmrTimeUpdate_.start();
    ShowClock();
    ShowZone();
}

/// What was entered stays. A refusal goes to the error handler as well, which traces it.
void dlgSysTime::Tell(const SystemClock::Result& result) {
    switch (result.outcome) {
    case SystemClock::Outcome::KeptByNetwork:
        Message(GetText(KeptByNetwork), Messages::Information);
        break;
    case SystemClock::Outcome::Refused:
        ui_->lblNote->setText(GetText(NoRight));
        throw platform::RunTimeError(platform::errors::PermissionDenied);
    default:
        ui_->lblNote->setText(GetText(NotSet).replace(u'$', result.words));
        throw platform::RunTimeError(platform::errors::DeviceIo);
    }
}
