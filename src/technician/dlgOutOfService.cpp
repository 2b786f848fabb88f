#include "technician/dlgOutOfService.h"

#include "core/Bytes.h"
#include "core/Config.h"
#include "core/DateTimes.h"
#include "core/FormNames.h"
#include "screens/dialogs/dlgKeyboard.h"
#include "screens/dialogs/wHelp.h"
#include "screens/touch/ModalDialog.h"
#include "screens/touch/TouchImage.h"
#include "screens/touch/ValueLabel.h"
#include "ui_dlgOutOfService.h"

#include <QPointer>

namespace {

enum Text {
    OtherTitle = 850104,
    ShiftText = 850105,
    DayText = 850106,
    ForEverText = 850108,
    EditTitle = 850110,
    UntilText = 850112
};
enum Control { Cancel, Confirm };
enum Step { Earlier, Later };

const QString Reasons = QStringLiteral("imgReason");
const QString Ends = QStringLiteral("imgEnd");
const QString Dates = QStringLiteral("imgDate");

constexpr int MinuteLetters = 5;

/// The first date that is no other choice, in days.
constexpr int FirstDate = 2;

int DaysOf(int minutes) {
    return Bytes::Limit(minutes / OutOfService::Day, FirstDate, OutOfService::MaxDays);
}

DateTime EndOf(int minutes) {
    return DateTimes::Now() + minutes * platform::OneMinute;
}

QString UntilWords(int minutes) {
    const DateTime end = EndOf(minutes);
    return GetText(UntilText).replace(u'$', DateTimes::ShortDate(end) + u' ' +
                                                DateTimes::LongTime(end).left(MinuteLetters));
}

} // namespace

QString EndText(int minutes) {
    switch (minutes) {
    case OutOfService::ForEver:
        return GetText(ForEverText);
    case OutOfService::Shift:
        return GetText(ShiftText);
    case OutOfService::Day:
        return GetText(DayText);
    default:
        return UntilWords(minutes);
    }
}

std::optional<dlgOutOfService::Choice> AskOutOfService(const dlgOutOfService::Choice& present) {
    return RunDialog(
               new dlgOutOfService, [&](dlgOutOfService& dialog) { dialog.setChoice(present); },
               [](const dlgOutOfService& dialog) {
                   return dialog.Ok() ? std::make_optional(dialog.Chosen()) : std::nullopt;
               })
        .value_or(std::nullopt);
}

dlgOutOfService::dlgOutOfService()
    : ScreenForm(FormNames::dlgOutOfService, Kind::Dialog)
    , ui_(std::make_unique<Ui::dlgOutOfService>())
    , repeat_(this)
    , reasons_(OutOfService::Reasons()) {
    ui_->setupUi(this);
    Prepare();
    OnKey(Qt::Key_F1, [] { ShowHelp(); });
    OnKey(Qt::Key_Escape, [this] { imgControl_Click(Cancel); });
    OnClick(Reasons, [this](int index) { imgReason_Click(index); });
    OnClick(QStringLiteral("imgEdit"), [this](int index) { imgEdit_Click(index); });
    OnClick(Ends, [this](int index) { imgEnd_Click(index); });
    OnClick(Dates, [this](int index) { imgDate_Click(index); });
    OnClick(QStringLiteral("imgControl"), [this](int index) { imgControl_Click(index); });
    for (const int index : {Earlier, Later})
        repeat_.Watch(ScreenForm::Control(Dates, index), [this, index] { imgDate_Click(index); });
    ShowChoice();
}

dlgOutOfService::~dlgOutOfService() = default;

void dlgOutOfService::setChoice(const Choice& choice) {
    choice_ = choice;
    ShowChoice();
}

int dlgOutOfService::ReasonChosen() const {
    if (choice_.why.isEmpty())
        return NoReason;
    const qsizetype place = reasons_.indexOf(choice_.why);
    return place < 0 ? int(OtherReason) : int(place);
}

int dlgOutOfService::EndChosen() const {
    switch (choice_.minutes) {
    case OutOfService::ForEver:
        return ForEver;
    case OutOfService::Shift:
        return Shift;
    case OutOfService::Day:
        return Day;
    default:
        return Date;
    }
}

void dlgOutOfService::ShowChoice() {
    for (int place = 0; place < OutOfService::ReasonCount; ++place) {
        auto* image = ScreenForm::Control<TouchImage>(Reasons, place);
        image->setText(reasons_[place]);
        image->setEnabled(!reasons_[place].isEmpty());
    }
    const bool other = ReasonChosen() == OtherReason;
    ui_->imgReason_6->setText(other ? choice_.why : GetText(OtherTitle));
    ScreenForm::Control<TouchImage>(Reasons, ReasonChosen())->setChecked(true);
    ScreenForm::Control<TouchImage>(Ends, EndChosen())->setChecked(true);
    const int days = DaysOf(choice_.minutes);
    ui_->lblDate->setCaption(DateTimes::ShortDate(EndOf(days * OutOfService::Day)));
    ui_->imgDate_0->setEnabled(days > FirstDate);
    ui_->imgDate_1->setEnabled(days < OutOfService::MaxDays);
    ui_->lblEnd->setText(choice_.minutes == OutOfService::ForEver ? GetText(ForEverText)
                                                                  : UntilWords(choice_.minutes));
}

void dlgOutOfService::imgReason_Click(int index) {
    if (index < OutOfService::ReasonCount) {
        choice_.why = reasons_[index];
    } else if (index == NoReason) {
        choice_.why.clear();
    } else {
        const QPointer<dlgOutOfService> self(this);
        const QString present = ReasonChosen() == OtherReason ? choice_.why : QString();
        const auto typed = AskText(GetText(OtherTitle), present, OutOfService::MaxReason);
        if (!IsLoaded(self.data()))
            return;
        if (typed)
            choice_.why = typed->trimmed();
    }
    ShowChoice();
}

/// A reason that is chosen stays so in its new words.
void dlgOutOfService::imgEdit_Click(int index) {
    const QPointer<dlgOutOfService> self(this);
    const auto typed = AskText(GetText(EditTitle).replace(u'$', QString::number(index + 1)),
                               reasons_[index], OutOfService::MaxReason);
    if (!typed || !IsLoaded(self.data()))
        return;
    const bool chosen = ReasonChosen() == index;
    OutOfService::setReason(index, typed->trimmed());
    reasons_ = OutOfService::Reasons();
    if (chosen)
        choice_.why = reasons_[index];
    ShowChoice();
}

void dlgOutOfService::imgEnd_Click(int index) {
    switch (index) {
    case Shift:
        choice_.minutes = OutOfService::Shift;
        break;
    case Day:
        choice_.minutes = OutOfService::Day;
        break;
    case ForEver:
        choice_.minutes = OutOfService::ForEver;
        break;
    default:
        choice_.minutes = DaysOf(choice_.minutes) * OutOfService::Day;
    }
    ShowChoice();
}

/// A date that is moved is the end.
void dlgOutOfService::imgDate_Click(int index) {
    const int days = EndChosen() == Date ? DaysOf(choice_.minutes) + (index == Later ? 1 : -1)
                                         : FirstDate + (index == Later ? 1 : 0);
    choice_.minutes = Bytes::Limit(days, FirstDate, OutOfService::MaxDays) * OutOfService::Day;
    ShowChoice();
}

void dlgOutOfService::imgControl_Click(int index) {
    ok_ = index == Confirm;
    Hide();
}
