#include "screens/report/wAlarmReport.h"

#include "bus/wPolling.h"
#include "core/Config.h"
#include "core/DateTimes.h"
#include "core/ErrorHandling.h"
#include "core/FormNames.h"
#include "core/SLVfonctions.h"
#include "events/HistoProcs.h"
#include "events/ReportText.h"
#include "model/Access.h"
#include "platform/FileWriting.h"
#include "platform/Volumes.h"
#include "screens/dialogs/AskPassword.h"
#include "screens/dialogs/FilePicker.h"
#include "screens/report/ReportPdf.h"
#include "screens/touch/ResizeForm.h"
#include "ui_wAlarmReport.h"

#include <QApplication>
#include <QPointer>
#include <algorithm>

using ErrorHandling::Guard;
using Unit = AlarmPeriod::Unit;

namespace {

/// Longest time for which a slice keeps the bus waiting, ms.
constexpr int SliceMs = 20;
/// Lines that are reckoned in about that time on a slow machine.
constexpr size_t SliceLines = 50000;
/// What is left when the files are read, of the whole work.
constexpr double ReckoningShare = 0.1;

enum Page { OverTime, ByHour, BadActors, Nuisance, Stale, Floods };

constexpr int ReadingText = 715006;
constexpr int SavedText = 715007;
constexpr int PrintingText = 715008;
constexpr int PrintedText = 715009;
constexpr int PdfFilter = 715016;
constexpr int CsvFilter = 715017;
constexpr int NameText = 715018;
constexpr int CancelledText = 715027;
constexpr int MadeText = 715029;
constexpr int FigureCount = 12;

const QString Files = QStringLiteral("Files");
const QString FolderKey = QStringLiteral("Report");
const QString Figure = QStringLiteral("lblFigure");
const QString Exceeded = QStringLiteral("color: #E0A030");

qsizetype WidestOf(const ReportTable& table) {
    const auto widest = std::max_element(
        table.columns.cbegin(), table.columns.cend(),
        [](const auto& one, const auto& other) { return one.share < other.share; });
    return widest - table.columns.cbegin();
}

qint64 Now() {
    const DateTime now = DateTimes::Now();
    return AlarmPeriod::SecondsOf({DateTimes::DateOf(now), DateTimes::TimeOf(now)});
}

} // namespace

wAlarmReport::wAlarmReport()
    : ScreenForm(FormNames::wAlarmReport)
    , ui_(std::make_unique<Ui::wAlarmReport>())
    , period_(Unit::Day, Now()) {
    ui_->setupUi(this);
    Prepare();
    ConnectControls();
    Guard("wAlarmReport.Form_Load", [this] {
        pages_.button(OverTime)->setChecked(true);
        ShowPage();
        Read(period_);
    });
}

wAlarmReport::~wAlarmReport() = default;

void wAlarmReport::ConnectControls() {
    for (const int index : Indices(QStringLiteral("cmdUnit")))
        units_.addButton(Control<QAbstractButton>(QStringLiteral("cmdUnit"), index), index);
    for (const int index : Indices(QStringLiteral("cmdPage")))
        pages_.addButton(Control<QAbstractButton>(QStringLiteral("cmdPage"), index), index);
    OnClick(QStringLiteral("imgStep"), [this](int index) { imgStep_Click(index); });
    OnClick(QStringLiteral("cmdUnit"), [this](int index) { cmdUnit_Click(index); });
    OnClick(QStringLiteral("cmdPage"), [this](int) { ShowPage(); });
    OnClick(ui_->imgPdf, [this] { imgPdf_Click(); });
    OnClick(ui_->imgCsv, [this] { imgCsv_Click(); });
    OnClick(ui_->imgPrint, [this] { imgPrint_Click(); });
    OnClick(ui_->imgCancel, [this] { imgCancel_Click(); });
    OnClick(ui_->imgClose, [this] { imgClose_Click(); });
    connect(ui_->barAlarms, &BarChart::Touched, this, [this](int bar) {
        Guard("wAlarmReport.barAlarms_Touched", [&] { barAlarms_Touched(bar); });
    });
    for (QAbstractButton* button : units_.buttons() + pages_.buttons())
        button->setFocusPolicy(Qt::NoFocus);
    ui_->grdAlarms->setSortable(false);
    tmrRead_.callOnTimeout([this] { tmrRead_Timer(); });
}

void wAlarmReport::Form_Unload() {
    tmrRead_.stop();
    records_.Cancel();
}

/// Takes up another period; what was shown goes at once.
void wAlarmReport::Read(const AlarmPeriod& period) {
    period_ = period;
    tables_.reset();
    report_.emplace(period);
    taken_ = 0;
    records_.Begin(AlarmReport::ReadFrom(period), AlarmReport::ReadTo(period));
    tmrRead_.start(0);
    ShowPeriod();
    ShowProgress();
    ShowPage();
}

void wAlarmReport::tmrRead_Timer() {
    bool goesOn = false;
    Guard("wAlarmReport.tmrRead_Timer", [&] {
        if (records_.Done())
            Reckon();
        else
            records_.Step(SliceMs);
        goesOn = report_.has_value();
        ShowProgress();
    });
    if (!goesOn)
        tmrRead_.stop();
}

void wAlarmReport::Reckon() {
    const std::vector<HistoryRecord>& records = records_.Records();
    const size_t end = std::min(records.size(), taken_ + SliceLines);
    while (taken_ < end)
        report_->Take(records[taken_++]);
    if (end < records.size())
        return;
    report_->Finish(Now());
    tables_.emplace(*report_, records_);
    report_.reset();
    ShowPage();
}

void wAlarmReport::ShowPeriod() {
    ui_->lblPeriod->setText(AlarmTables::NameOf(period_));
    units_.button(int(period_.Kind()))->setChecked(true);
    const QList<HistoryRecords::File> files = HistoryRecords::Files();
    const QDate begin = AlarmPeriod::TimeOf(period_.Begin()).date();
    ui_->imgStep_0->setEnabled(!files.isEmpty() && files.first().first < begin);
    ui_->imgStep_1->setEnabled(period_.End() <= Now());
}

void wAlarmReport::ShowProgress() {
    const bool reads = report_.has_value();
    ui_->imgCancel->setVisible(reads);
    for (QWidget* button : {ui_->imgPdf, ui_->imgCsv})
        button->setEnabled(tables_.has_value());
    ui_->imgPrint->setEnabled(tables_.has_value() && Polling() != nullptr &&
                              !Polling()->dpPrinter().Port().isEmpty());
    if (!reads) {
        QStringList unread;
        for (const ReportFigure& figure : AlarmTables::Unread(records_))
            unread += figure.name + u' ' + figure.value;
        ui_->lblTold->setText(unread.join(u'\n'));
        return;
    }
    const double reckoned =
        records_.Done() ? double(taken_) / double(records_.Records().size() + 1) : 0;
    const double share = records_.Progress() * (1 - ReckoningShare) + reckoned * ReckoningShare;
    ui_->lblTold->setText(GetText(ReadingText).replace(u'$', QString::number(int(share * 100))));
}

void wAlarmReport::ShowPage() {
    const int page = pages_.checkedId();
    const bool showsBars = page == OverTime || page == ByHour;
    ui_->frmFrames_0->setVisible(showsBars);
    ui_->frmFrames_1->setVisible(!showsBars);
    if (showsBars) {
        ShowBars();
        ShowFigures();
        return;
    }
    if (!tables_)
        ShowTable({});
    else
        ShowTable(page == BadActors  ? tables_->BadActors()
                  : page == Nuisance ? tables_->Nuisance()
                  : page == Stale    ? tables_->Stale()
                                     : tables_->Floods());
}

void wAlarmReport::ShowBars() {
    if (!tables_)
        ui_->barAlarms->setBars({});
    else
        ui_->barAlarms->setBars(pages_.checkedId() == ByHour ? tables_->ByHour()
                                                             : tables_->ByPart());
}

void wAlarmReport::ShowFigures() {
    const QList<ReportFigure> figures = tables_ ? tables_->Figures() : QList<ReportFigure>();
    for (int i = 0; i < FigureCount; ++i) {
        const ReportFigure figure = figures.value(i);
        QString text;
        if (!figure.name.isEmpty())
            text = figure.name + QStringLiteral("   ") + figure.value;
        if (!figure.limit.isEmpty())
            text += QStringLiteral("   (%1)").arg(figure.limit);
        auto* label = Control<QLabel>(Figure, i);
        label->setText(text);
        label->setStyleSheet(figure.isExceeded ? Exceeded : QString());
    }
}

void wAlarmReport::ShowTable(const ReportTable& table) {
    QList<TouchTable::Column> columns;
    for (const ReportTable::Column& column : table.columns)
        columns += {column.title, column.share,
                    (column.isNumber ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter};
    QList<TouchTable::Row> rows;
    for (const QStringList& row : ReportText::Rows(table, table.rows.size())) {
        const QString place = QString::number(rows.size());
        // How many more there are stands where most room is.
        const bool isAlone = row.size() == 1;
        rows += {isAlone ? QStringList(WidestOf(table), QString()) + row : row,
                 place,
                 QString(),
                 {place}};
    }
    ui_->grdAlarms->setRows({});
    ui_->grdAlarms->setColumns(columns, IsScaled() ? CurrentScreenFactors().vertical : 1);
    ui_->grdAlarms->setRows(rows);
    ui_->grdAlarms->setVisible(!rows.isEmpty());
    ui_->txtNoAlarm->setVisible(rows.isEmpty() && tables_.has_value());
}

void wAlarmReport::imgStep_Click(int index) {
    Read(period_.Next(index == 0 ? -1 : 1));
}

/// A larger span holds the one shown. A smaller one is its first part, or that of the present
/// moment where that lies in it.
void wAlarmReport::cmdUnit_Click(int index) {
    const qint64 within = period_.Holds(Now()) ? Now() : period_.Begin();
    Read(AlarmPeriod(Unit(index), within));
}

void wAlarmReport::barAlarms_Touched(int bar) {
    const bool isPart = pages_.checkedId() == OverTime || period_.Kind() == Unit::Day;
    const std::optional<AlarmPeriod> part = isPart ? period_.Part(bar) : std::nullopt;
    if (part && part->Begin() <= Now()) {
        pages_.button(OverTime)->setChecked(true);
        Read(*part);
    } else {
        QApplication::beep();
    }
}

void wAlarmReport::imgCancel_Click() {
    records_.Cancel();
    report_.reset();
    tmrRead_.stop();
    ShowProgress();
    ui_->lblTold->setText(GetText(CancelledText));
}

QString wAlarmReport::SiteName() const {
    return FilePicker::SiteName(IniRead(Files, QStringLiteral("LastUsed"), QString()));
}

/// On the stick if there is one.
QString wAlarmReport::AskPath(int filter) {
    const QList<platform::Volume> sticks = platform::RemovableVolumes();
    const QString folder =
        sticks.isEmpty() ? IniRead(Files, FolderKey, QString()) : sticks.first().path;
    const QDateTime begin = AlarmPeriod::TimeOf(period_.Begin());
    const char* const forms[] = {"yyyyMMdd-HH", "yyyyMMdd", "yyyyMMdd", "yyyyMM", "yyyy"};
    return FilePicker::SaveAs(
        folder, GetText(NameText) + begin.toString(QLatin1String(forms[int(period_.Kind())])),
        GetText(filter, true));
}

/// What stood on the screen at the touch, however long the name takes.
void wAlarmReport::SaveAs(int filter, const QByteArray& bytes) {
    const QPointer<wAlarmReport> self(this);
    const QString path = AskPath(filter);
    if (path.isEmpty() || !IsLoaded(self.data()))
        return;
    platform::ReplaceFile(path, bytes);
    IniWrite(Files, FolderKey, FilePicker::Folder(path));
    ui_->lblTold->setText(GetText(SavedText).replace(u'$', FilePicker::FileName(path)));
}

bool wAlarmReport::MayGiveOut() {
    return tables_.has_value() && TryLevel(*this, Levels::Operator) && tables_.has_value();
}

void wAlarmReport::imgPdf_Click() {
    if (!MayGiveOut())
        return;
    const QString made = GetText(MadeText).replace(u'$', DateTimes::DateAndTime(DateTimes::Now()));
    SaveAs(PdfFilter, ReportPdf(*tables_, SiteName(), made));
}

void wAlarmReport::imgCsv_Click() {
    if (MayGiveOut())
        SaveAs(CsvFilter, ReportText::Csv(tables_->All()));
}

void wAlarmReport::imgPrint_Click() {
    if (!MayGiveOut() || Polling() == nullptr)
        return;
    QStringList lines;
    for (const QString& line : ReportText::Lines(tables_->All(), HistoProcs::PlainLineWidth()))
        lines += HistoProcs::PlainLine(line);
    ui_->lblTold->setText(GetText(PrintingText));
    const QPointer<wAlarmReport> self(this);
    Polling()->Paper().PrintReport(lines, [self](const QString& error) {
        if (IsLoaded(self.data()))
            self->ui_->lblTold->setText(error.isEmpty() ? GetText(PrintedText) : error);
    });
}

void wAlarmReport::imgClose_Click() {
    Forms::Show(FormNames::wHistoric);
    Unload();
}
