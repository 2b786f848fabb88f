#include "screens/history/wHistorySearch.h"

#include "core/Config.h"
#include "core/DateTimes.h"
#include "core/ErrorHandling.h"
#include "core/FormNames.h"
#include "core/SLVfonctions.h"
#include "events/TextProcs.h"
#include "model/Access.h"
#include "model/CurrentConfig.h"
#include "platform/Volumes.h"
#include "screens/dialogs/AskPassword.h"
#include "screens/dialogs/FilePicker.h"
#include "screens/dialogs/dlgConsigne.h"
#include "screens/dialogs/dlgKeyboard.h"
#include "screens/dialogs/dlgListInput.h"
#include "screens/dialogs/wHelp.h"
#include "screens/history/HistoryExport.h"
#include "screens/history/dlgHistoryPeriod.h"
#include "screens/touch/HoldToRepeat.h"
#include "ui_wHistorySearch.h"

#include <QApplication>
#include <QDateTime>
#include <QKeyEvent>

using ErrorHandling::Guard;
using FilterWords::Filled;

namespace ScreenLine = TextProcs::ScreenLine;

namespace {

/// The watch of the bus waits no longer for a slice, ms.
constexpr int Budget = 20;
constexpr int UsualDays = 31;
constexpr int LongestWords = 40;

constexpr int FirstField = 711101;
constexpr int Raised = 711113;
constexpr int AcknowledgedAfter = 711114;
constexpr int NotAcknowledged = 711115;
constexpr int ReturnedAfter = 711116;
constexpr int NotReturned = 711117;
constexpr int RaisedBefore = 711118;
constexpr int ReadingText = 711122;
constexpr int SearchingText = 711123;
constexpr int LinesText = 711124;
constexpr int StoppedText = 711125;
constexpr int UnreadText = 711126;
constexpr int FirstFileFilter = 711132;
constexpr int SavingText = 711134;
constexpr int SavedText = 711135;
constexpr int SavingStopped = 711136;
constexpr int NotSaved = 711137;
constexpr int NameOfFile = 711139;
constexpr int FirstColumn = 711140;
constexpr int LastColumn = 711148;
constexpr int History = 710004;
constexpr int WordsTitle = 711173;

enum Step { ToComing, ToAcknowledgement, ToGoing };

const QString Filters = QStringLiteral("imgFilter");
const QString Steps = QStringLiteral("imgStep");
const QString Exports = QStringLiteral("imgExport");

constexpr int FirstKey = 4;
constexpr int HeldKeys = 4;
constexpr Qt::Key Keys[] = {Qt::Key_PageUp,   Qt::Key_Up,   Qt::Key_Down,
                            Qt::Key_PageDown, Qt::Key_Home, Qt::Key_End};

/// The filter that an alarm took away with the screen, and when.
struct KeptFilter {
    HistoryFilter filter;
    QDate day;
};

std::optional<KeptFilter>& Kept() {
    static std::optional<KeptFilter> kept;
    return kept;
}

QDate Today() {
    return DateTimes::DateOf(DateTimes::Now());
}

HistoryFilter Usual() {
    HistoryFilter filter;
    filter.to = Today();
    filter.from = filter.to.addDays(1 - UsualDays);
    return filter;
}

/// The kept filter stands there again when the operator comes back. One that went up to the present
/// day still does: the alarm may have come at midnight.
HistoryFilter FirstFilter() {
    if (!Kept())
        return Usual();
    HistoryFilter filter = Kept()->filter;
    if (filter.to == Kept()->day)
        filter.to = qMax(filter.from, Today());
    return filter;
}

QString Percent(double share) {
    return QString::number(int(share * 100));
}

/// When a line was written, as it shows it.
QString TimeOf(const HistoryRecord& record) {
    const QDateTime time = QDateTime::fromSecsSinceEpoch(record.time, Qt::UTC);
    return DateTimes::DateAndTime(DateTimes::FromDate(time.date(), time.time()));
}

/// On a stick where there is one.
QString ExportFolder() {
    const QList<platform::Volume> volumes = platform::RemovableVolumes();
    return volumes.isEmpty() ? QString() : volumes.first().path;
}

} // namespace

wHistorySearch::wHistorySearch()
    : ScreenForm(FormNames::wHistorySearch)
    , ui_(std::make_unique<Ui::wHistorySearch>()) {
    ui_->setupUi(this);
    Prepare();
    OnKey(Qt::Key_F1, [] { ShowHelp(); });
    ui_->grdAlarms->setSearch(search_);
    ConnectControls();
    Guard("wHistorySearch.Form_Load", [this] { Begin(FirstFilter(), Place()); });
}

wHistorySearch::~wHistorySearch() = default;

void wHistorySearch::ConnectControls() {
    OnClick(Filters, [this](int index) { imgFilter_Click(index); });
    OnClick(ui_->imgClear, [this] { imgClear_Click(); });
    OnClick(ui_->imgBack, [this] { imgBack_Click(); });
    OnClick(ui_->imgStop, [this] { imgStop_Click(); });
    OnClick(Steps, [this](int index) { imgStep_Click(index); });
    OnClick(Exports, [this](int index) { imgExport_Click(index); });
    OnClick(ui_->imgConsigne, [this] { imgConsigne_Click(); });
    OnClick(ui_->imgClose, [this] { imgClose_Click(); });
    const QString controls = QStringLiteral("imgControl");
    OnClick(controls, [this](int index) { imgControl_Click(index); });
    auto* repeat = new HoldToRepeat(this);
    for (int index = FirstKey; index < FirstKey + HeldKeys; ++index)
        repeat->Watch(Control(controls, index), [this, index] { imgControl_Click(index); });
    connect(ui_->grdAlarms, &FoundGrid::RowColChange, this, &wHistorySearch::ShowCourse);
    connect(ui_->grdAlarms, &FoundGrid::Tapped, this, &wHistorySearch::grdAlarms_Click);
    tmrSearch_.callOnTimeout(this, &wHistorySearch::tmrSearch_Timer);
}

void wHistorySearch::Form_Unload() {
    tmrSearch_.stop();
    delete export_;
    Kept() = {search_.Filter(), Today()};
}

/// Looks for other lines and goes to a place among them. Where the files are read anew the lines of
/// the former lists may stand elsewhere: those are looked for again, too.
void wHistorySearch::Begin(const HistoryFilter& filter, const Place& place) {
    search_.Begin(filter);
    if (search_.Reading()) {
        for (View& view : former_)
            view.found.reset();
    }
    wanted_ = place;
    stopped_ = false;
    ui_->grdAlarms->Restart();
    tmrSearch_.start(0);
    ShowFilter();
    ShowFound();
}

/// One that fails doesn't fail again and again.
void wHistorySearch::tmrSearch_Timer() {
    bool done = false;
    const bool ran = Guard("wHistorySearch.tmrSearch_Timer", [&] {
        done = search_.Step(Budget);
        ui_->grdAlarms->Grow();
        if (done)
            GoToWanted();
        ShowFound();
    });
    if (done || !ran)
        tmrSearch_.stop();
}

void wHistorySearch::GoToWanted() {
    const int row = search_.RowOf(wanted_.record);
    if (row >= 0)
        ui_->grdAlarms->GoTo(row, wanted_.below);
    wanted_ = {};
}

void wHistorySearch::ShowFilter() {
    for (const int index : Indices(Filters)) {
        QWidget* button = Control(Filters, index);
        const int room = button->width() - 2 * button->fontMetrics().averageCharWidth();
        const QString value = FilterWords::Value(FilterWords::Field(index), search_.Filter());
        SetCaption(button, GetText(FirstField + index) + u'\n' +
                               button->fontMetrics().elidedText(value, Qt::ElideRight, room));
    }
    ui_->lblFilter->setText(FilterWords::Sentence(search_.Filter()));
}

QString wHistorySearch::FoundText() const {
    const QString found = QString::number(search_.Found().size());
    if (stopped_)
        return Filled(StoppedText, {found});
    if (search_.Reading())
        return Filled(ReadingText, {Percent(search_.Progress())});
    if (!search_.Done())
        return Filled(SearchingText, {Percent(search_.Progress()), found});
    const HistoryRecords& records = search_.Records();
    QString text = Filled(LinesText, {found, QString::number(records.Records().size())});
    if (records.Unread() > 0 || records.UnreadFiles() > 0)
        text += u'\n' + Filled(UnreadText, {QString::number(records.UnreadFiles()),
                                            QString::number(records.Unread())});
    return text;
}

void wHistorySearch::ShowFound() {
    const bool nothing = search_.Done() && search_.Found().empty();
    ui_->lblFound->setText(FoundText());
    ui_->txtNoAlarm->setVisible(nothing);
    ui_->grdAlarms->setVisible(!nothing);
    ShowButtons();
}

/// What is saved stays as it is until it is.
void wHistorySearch::ShowButtons() {
    const bool saving = export_ != nullptr;
    const bool found = search_.Done() && !search_.Found().empty();
    for (const int index : Indices(Filters))
        Control(Filters, index)->setEnabled(!saving);
    for (const int index : Indices(Exports))
        Control(Exports, index)->setEnabled(found && !saving);
    ui_->imgClear->setEnabled(search_.Filter().Chooses() && !saving);
    ui_->imgStop->setVisible(!search_.Done() || saving);
    ui_->imgBack->setVisible(!former_.empty());
    ui_->imgBack->setEnabled(!saving);
}

const HistoryRecord* wHistorySearch::Current() const {
    const RowPosition& at = ui_->grdAlarms->Position();
    return at.Count() == 0 ? nullptr : &search_.Row(at.Current());
}

AlarmCourse wHistorySearch::Course() const {
    const HistoryRecord* current = Current();
    const std::vector<HistoryRecord>& all = search_.Records().Records();
    return current == nullptr ? AlarmCourse() : CourseOf(all, size_t(current - all.data()));
}

/// How long it took from step to step of an alarm.
QString wHistorySearch::CourseText(const AlarmCourse& course) const {
    const std::vector<HistoryRecord>& all = search_.Records().Records();
    if (!course.coming)
        return course.isStep ? GetText(RaisedBefore) : QString();
    const HistoryRecord& coming = all[*course.coming];
    const auto after = [&](int text, size_t place) {
        return Filled(text, {FilterWords::Duration(all[place].time - coming.time)});
    };
    QStringList parts{Filled(Raised, {TimeOf(coming)})};
    if (course.acknowledged)
        parts += after(AcknowledgedAfter, *course.acknowledged);
    else if (coming.channel != 0)
        parts += GetText(NotAcknowledged);
    parts += course.going ? after(ReturnedAfter, *course.going) : GetText(NotReturned);
    return parts.join(QStringLiteral(", "));
}

void wHistorySearch::ShowCourse() {
    Guard("wHistorySearch.grdAlarms_RowColChange", [this] {
        const AlarmCourse course = Course();
        ui_->lblCourse->setText(CourseText(course));
        ui_->imgStep_0->setEnabled(course.coming.has_value());
        ui_->imgStep_1->setEnabled(course.acknowledged.has_value());
        ui_->imgStep_2->setEnabled(course.going.has_value());
        ui_->imgConsigne->setEnabled(Current() != nullptr);
    });
}

wHistorySearch::Place wHistorySearch::PresentPlace() const {
    const RowPosition& at = ui_->grdAlarms->Position();
    const HistoryRecord* current = Current();
    if (current == nullptr)
        return {};
    return {current - search_.Records().Records().data(), at.Current() - at.First()};
}

/// The line stays where the finger found it.
void wHistorySearch::grdAlarms_Click() {
    Guard("wHistorySearch.grdAlarms_Click", [this] {
        const Place place = PresentPlace();
        ShowChannelOf(place.record, place.below);
    });
}

/// Everything that happened to the channel of a record, or to its panel; the way back leads to the
/// list that is left.
void wHistorySearch::ShowChannelOf(qint64 record, int below) {
    const HistoryRecord& line = search_.Records().Records()[size_t(record)];
    HistoryFilter filter;
    filter.from = search_.Filter().from;
    filter.to = search_.Filter().to;
    filter.panel = line.panel;
    filter.channel = line.channel;
    if (line.panel == 0 || filter == search_.Filter() || search_.Reading() || export_ != nullptr)
        return;
    View left{search_.Filter(), PresentPlace(), std::nullopt};
    if (search_.Done() && !stopped_)
        left.found = search_.Found();
    former_.push_back(std::move(left));
    Begin(filter, {record, below});
}

void wHistorySearch::imgBack_Click() {
    if (former_.empty())
        return;
    View view = std::move(former_.back());
    former_.pop_back();
    if (!view.found) {
        Begin(view.filter, view.place);
        return;
    }
    search_.Return(view.filter, std::move(*view.found));
    wanted_ = view.place;
    stopped_ = false;
    ui_->grdAlarms->Restart();
    ShowFilter();
    tmrSearch_.start(0);
    tmrSearch_Timer();
}

/// A filter of the operator's own: nothing leads back from it. The same one again finds what was
/// written since.
void wHistorySearch::BeginAnew(const HistoryFilter& filter) {
    former_.clear();
    Begin(filter, Place());
}

void wHistorySearch::imgFilter_Click(int index) {
    using enum FilterWords::Field;
    const QPointer<wHistorySearch> self(this);
    const auto field = FilterWords::Field(index);
    HistoryFilter filter = search_.Filter();
    if (field == Period) {
        const auto period = AskPeriod({filter.from, filter.to});
        if (!period)
            return;
        filter.from = period->first;
        filter.to = period->second;
    } else if (field == Words) {
        const auto words = AskText(GetText(WordsTitle), filter.words, LongestWords);
        if (!words)
            return;
        filter.words = words->simplified();
    } else {
        const QString list = QStringLiteral("@|") + FilterWords::Choices(field, search_).join(u'|');
        const auto item = AskValue(this, list, FilterWords::Chosen(field, filter));
        if (!item)
            return;
        FilterWords::Choose(filter, field, *item);
    }
    if (IsLoaded(self.data()))
        BeginAnew(filter);
}

/// The days stay: they tell where one is in the history, not what one looks for.
void wHistorySearch::imgClear_Click() {
    HistoryFilter filter;
    filter.from = search_.Filter().from;
    filter.to = search_.Filter().to;
    BeginAnew(filter);
}

void wHistorySearch::imgStop_Click() {
    if (export_ != nullptr) {
        export_->Stop();
        return;
    }
    search_.Cancel();
    stopped_ = true;
    tmrSearch_Timer();
}

/// To a line of the alarm: in this list where it stands there, else in that of the channel.
void wHistorySearch::imgStep_Click(int index) {
    const AlarmCourse course = Course();
    const std::optional<size_t> goal = index == ToComing            ? course.coming
                                       : index == ToAcknowledgement ? course.acknowledged
                                                                    : course.going;
    if (!goal)
        return;
    const int row = search_.RowOf(qint64(*goal));
    if (row >= 0)
        ui_->grdAlarms->GoTo(row);
    else
        ShowChannelOf(qint64(*goal), -1);
}

/// As with the alarm report: what leaves the machine takes an operator's code.
void wHistorySearch::imgExport_Click(int index) {
    const QPointer<wHistorySearch> self(this);
    if (!TryLevel(*this, Levels::Operator))
        return;
    const QString name = GetText(NameOfFile) + DateTimes::FileDate(DateTimes::Now());
    const QString path =
        FilePicker::SaveAs(ExportFolder(), name, GetText(FirstFileFilter + index, true));
    if (path.isEmpty() || !IsLoaded(self.data()) || !search_.Done())
        return;
    HistoryPdf::Heading heading{
        GetText(History),
        FilterWords::Sentence(search_.Filter()),
        FilePicker::SiteName(
            IniRead(QStringLiteral("Files"), QStringLiteral("LastUsed"), QString())) +
            FilterWords::Divider + DateTimes::DateAndTime(DateTimes::Now()) + FilterWords::Divider +
            FoundText(),
        {}};
    for (int column = FirstColumn; column <= LastColumn; ++column)
        heading.columns += GetText(column);
    export_ = new HistoryExport(search_, HistoryExport::Format(index), path, heading, this);
    connect(export_, &HistoryExport::Changed, this,
            [this] { Guard("wHistorySearch.export_Changed", [this] { ShowExport(); }); });
    ShowExport();
}

void wHistorySearch::ShowExport() {
    using State = HistoryExport::State;
    const HistoryExport& saved = *export_;
    const State state = saved.Outcome();
    QString text;
    if (state == State::Running)
        text = Filled(SavingText, {Percent(saved.Progress())});
    else if (state == State::Complete)
        text = Filled(SavedText, {QString::number(search_.Found().size()),
                                  FilePicker::FileName(saved.Path())});
    else if (state == State::Stopped)
        text = GetText(SavingStopped);
    else
        text = Filled(NotSaved, {ErrorHandling::RunTimeText(saved.Error())});
    if (state != State::Running) {
        export_->deleteLater();
        export_ = nullptr;
    }
    ShowButtons();
    ui_->lblFound->setText(text);
}

void wHistorySearch::imgControl_Click(int index) {
    QKeyEvent press(QEvent::KeyPress, Keys[index - FirstKey], Qt::NoModifier);
    QCoreApplication::sendEvent(ui_->grdAlarms, &press);
}

void wHistorySearch::imgConsigne_Click() {
    const HistoryRecord* line = Current();
    if (line == nullptr)
        return;
    int number = 0;
    if (line->channel != 0 && line->panel <= ConfigClass::PanelCount)
        number = Global::Configuration().Panel(line->panel).Channel(line->channel).HelpNum();
    QString text = ui_->grdAlarms->CurrentLine();
    text.insert(ScreenLine::Break.start + ScreenLine::Break.width, u'\n');
    dlgConsigne::PresentNumber(text, number);
}

/// Back to the files; the next search begins afresh.
void wHistorySearch::imgClose_Click() {
    Forms::Show(FormNames::wHistoric);
    Unload();
    Kept().reset();
}
