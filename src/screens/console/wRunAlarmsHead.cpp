// What the console says of the watch itself: state of the bus, missing panels, standing faults, and
// how much of the list waits.

#include "core/Boxes.h"
#include "core/Config.h"
#include "core/ErrorHandling.h"
#include "core/FormNames.h"
#include "core/Message.h"
#include "model/Access.h"
#include "platform/Clock.h"
#include "screens/console/ConsoleHead.h"
#include "screens/console/FaultBand.h"
#include "screens/console/wRunAlarms.h"
#include "screens/touch/Navigation.h"
#include "screens/touch/Theme.h"
#include "ui_wRunAlarms.h"

#include <QPointer>

using ErrorHandling::Guard;

namespace {

/// Room for "+63" in widths of a panel's label.
constexpr double RestWidths = 2;
/// Pitch of the labels of missing panels in their widths.
constexpr double MissingPitch = 1.2;
/// Room around the words of the watch, pixels.
constexpr int WatchMargin = 12;
constexpr int BandGap = 4;
constexpr QRect WatchPlace(8, 58, 190, 26);
constexpr int WatchPixels = 15;
constexpr QRect NotePlace(12, 33, 290, 21);
constexpr QRect BandPlace(8, 88, 784, 48);
constexpr int BandPixels = 17;

QString PictureOf(ConsoleHead::Tone tone) {
    switch (tone) {
    case ConsoleHead::Tone::Calm:
        return QStringLiteral("console_calm");
    case ConsoleHead::Tone::Warning:
        return QStringLiteral("console_warning");
    case ConsoleHead::Tone::Alarm:
        break;
    }
    return QStringLiteral("console_fault");
}

QString StyleOf(ConsoleHead::Tone tone) {
    return QStringLiteral("background: %1; color: #000000; border-radius: 4px;")
        .arg(tone == ConsoleHead::Tone::Alarm ? QStringLiteral("#FF4040")
                                              : QStringLiteral("#FFA64D"));
}

} // namespace

/// What shares its place with the list and with the missing panels.
void wRunAlarms::MakeHead() {
    lblWatch_ = new QLabel(this);
    lblWatch_->setObjectName(QStringLiteral("lblWatch"));
    lblWatch_->setGeometry(WatchPlace);
    lblWatch_->setFont(Theme::Text(WatchPixels, true));
    lblWatch_->setAlignment(Qt::AlignCenter);
    lblWatch_->hide();
    lblFaults_ = new FaultBand(this);
    lblFaults_->setObjectName(QStringLiteral("lblFaults"));
    lblFaults_->setGeometry(BandPlace);
    lblFaults_->setFont(Theme::Text(BandPixels));
    lblFaults_->hide();
    lblOutOfService_ = new QLabel(this);
    lblOutOfService_->setObjectName(QStringLiteral("lblOutOfService"));
    lblOutOfService_->setGeometry(NotePlace);
    lblOutOfService_->setFont(Theme::Text(WatchPixels));
    lblOutOfService_->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    lblOutOfService_->setProperty("quiet", true);
    lblOutOfService_->hide();
}

void wRunAlarms::tmrDateTime_Timer() {
    ui_->lblDateTime->setText(DateTimes::DateAndTime(DateTimes::Now()));
    ShowWatch();
}

void wRunAlarms::FindMissingPanels() {
    Guard("wRunAlarms.FindMissingPanels", [&] {
        const QList<int> missing = ConsoleHead::LongMissing();
        const int from = WidthOfWatch();
        if (missing != missing_ || from != missingFrom_) {
            missingFrom_ = from;
            ShowMissingPanels(missing);
        }
        missing_ = missing;
    });
}

/// The labels stand right of their words; the pattern never shows. When the row is full the last
/// one tells how many more there are.
void wRunAlarms::ShowMissingPanels(const QList<int>& panels) {
    const QString array = QStringLiteral("lblMissingPanel");
    auto* pattern = Control<QLabel>(array, 0);
    for (const int index : Indices(array)) {
        if (index > 0)
            delete Control(array, index);
    }
    ui_->lblLabels_1->move(missingFrom_, ui_->lblLabels_1->y());
    ui_->lblLabels_1->setVisible(!panels.isEmpty());
    const double pitch = MissingPitch * pattern->width();
    // Behind the words of the watch room is scarce: the numbers close up to their own words.
    const int start = lblWatch_->isHidden()
                          ? pattern->x()
                          : missingFrom_ + ui_->lblLabels_1->sizeHint().width() - pattern->width();
    const auto place = [&](qsizetype n) { return start + qRound(double(n) * pitch); };
    const int right = ui_->lblCount->x() - qRound(RestWidths * pattern->width());
    for (qsizetype n = 1; n <= panels.size(); ++n) {
        const bool full = n < panels.size() && place(n + 1) > right;
        auto* label = new QLabel(this);
        label->setObjectName(QStringLiteral("lblMissingPanel_%1").arg(n));
        label->setFont(pattern->font());
        label->setAlignment(pattern->alignment());
        label->setStyleSheet(
            QStringLiteral("background: #FF8000; color: #000000; border-radius: 4px;"));
        label->setGeometry(pattern->geometry());
        label->move(place(n), pattern->y());
        label->setText(QString::number(panels[n - 1]));
        if (full) {
            label->resize(qRound(RestWidths * pattern->width()) - 8, label->height());
            label->setText(u'+' + QString::number(panels.size() - n + 1));
        }
        label->show();
        label->raise();
        if (full)
            return;
    }
}

/// The left end of what stands behind the words of the watch, pixels.
int wRunAlarms::WidthOfWatch() const {
    const QLabel& words = *lblWatch_;
    return words.isHidden() ? ui_->lblFileName->x() : words.x() + words.width() + WatchMargin;
}

/// Nobody may be left to believe that all is well while nobody listens.
void wRunAlarms::ShowWatch() {
    Guard("wRunAlarms.ShowWatch", [&] {
        const ConsoleHead::Verdict verdict = ConsoleHead::Judge(ConsoleHead::Look());
        ui_->imgNoAlarm->setPicture(PictureOf(verdict.tone));
        ui_->txtNoAlarm->setText(verdict.words);
        QLabel& words = *lblWatch_;
        words.setVisible(!verdict.chip.isEmpty());
        words.setText(verdict.chip);
        words.setStyleSheet(StyleOf(verdict.tone));
        words.resize(words.fontMetrics().horizontalAdvance(verdict.chip) + 2 * WatchMargin,
                     words.height());
        FindMissingPanels();
        ShowOutOfService();
        ShowRunState();
    });
}

void wRunAlarms::ShowRunState() {
    const BusState state = ConsoleHead::Look().state;
    const bool run = state != BusState::Stopped && state != BusState::WaitsForPort;
    ui_->imgStopRun->setPicture(run ? QStringLiteral("bus_running")
                                    : QStringLiteral("bus_stopped"));
    ui_->imgStopRun->setText(GetText(run ? 710008 : 710009));
}

void wRunAlarms::ShowCount() {
    const AlarmRows& rows = ui_->grdAlarms->Rows();
    ui_->lblCount->setText(
        rows.IsEmpty() ? QString()
                       : ConsoleHead::CountText(rows.Current() + 1, rows.Count(), rows.Waiting()));
}

/// The list gives way to the band while something stands on it.
void wRunAlarms::ShowFaults() {
    Guard("wRunAlarms.ShowFaults", [&] {
        const QList<Faults::Fault> faults = Faults::Standing();
        FaultBand& band = *lblFaults_;
        band.Present(faults);
        if (band.isHidden() != faults.isEmpty()) {
            band.setVisible(!faults.isEmpty());
            QRect place = ui_->grdAlarms->geometry();
            place.setTop(faults.isEmpty() ? band.y() : band.geometry().bottom() + 1 + BandGap);
            ui_->grdAlarms->TakePlace(place);
        }
        ShowWatch();
        RecaleCurseur();
    });
}

/// The name of the site makes room for the note, and has all its place without one.
void wRunAlarms::ShowOutOfService() {
    const QString note = ConsoleHead::OutOfServiceText();
    lblOutOfService_->setText(note);
    lblOutOfService_->setVisible(!note.isEmpty());
    const QRect place = lblOutOfService_->geometry();
    QLabel& name = *ui_->lblFileName;
    name.resize(name.width(), (note.isEmpty() ? place.bottom() + 1 : place.top()) - name.y());
}

/// The note alone is lower than a finger: the name above it leads to the list as well.
void wRunAlarms::lblOutOfService_Click() {
    const QPointer<wRunAlarms> self(this);
    if (lblOutOfService_->isHidden() || !InsistOnLevel(*this, Levels::Technician))
        return;
    OpenDialog(FormNames::wTechConsignations);
    if (IsLoaded(self.data()))
        ShowWatch();
}

/// Somebody's unread box first; else all that stands, with the time since when.
void wRunAlarms::lblFaults_Click() {
    if (Boxes::Unread() > 0)
        Boxes::ShowUnread();
    else
        Message(ConsoleHead::StandingList(), Messages::Information);
}
