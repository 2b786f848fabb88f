#include "technician/wTechDiagnosis.h"

#include "bus/wPolling.h"
#include "core/Config.h"
#include "core/DateTimes.h"
#include "core/ErrorHandling.h"
#include "core/FormNames.h"
#include "core/SLVfonctions.h"
#include "model/CurrentConfig.h"
#include "model/Models.h"
#include "platform/CodePage.h"
#include "platform/FileWriting.h"
#include "screens/dialogs/FilePicker.h"
#include "screens/touch/ResizeForm.h"
#include "ui_wTechDiagnosis.h"

#include <QPointer>

using ErrorHandling::Guard;
using Outcome = BusDiagnosis::Outcome;

namespace {

enum Span { SinceStart, ThisHour };
enum Filter { OnePanel, AllPanels };

/// At most four times a second, ms.
constexpr int RefreshPeriod = 250;
constexpr int TextFiles = 50004;
constexpr int Title = 850000;
constexpr int FirstSpan = 850001;
constexpr int FramesOfAll = 850007;
constexpr int FramesOfOne = 850008;
constexpr int Held = 850009;
constexpr int FirstColumn = 850010;
constexpr int SavedFrames = 850030;
constexpr int OtherModel = 714300;

const QString Files = QStringLiteral("Files");
const QString FolderKey = QStringLiteral("Diagnosis");
const QString LineEnd = QStringLiteral("\r\n");

QString Milliseconds(const BusDiagnosis::Counters& counters, double value, int decimals) {
    return counters.Answers() == 0 ? QString() : QString::number(value, 'f', decimals);
}

/// That a module reports another model than its panel is set up with; empty when it doesn't.
QString ReportedModel(int panel) {
    const PanelClass& of = Global::Configuration().Panel(panel);
    if (!of.ReportsOtherModel())
        return {};
    return GetText(OtherModel)
        .replace(QStringLiteral("$1"), QString::number(panel))
        .replace(QStringLiteral("$2"), Models::NameOrCode(of.Model()))
        .replace(QStringLiteral("$3"), ModuleName(of.ActualModel()));
}

/// With a mark where the module reports another one.
QString ModelOf(int panel) {
    const PanelClass& of = Global::Configuration().Panel(panel);
    return ModuleName(of.Model()) + (of.ReportsOtherModel() ? QStringLiteral("!") : QString());
}

QStringList Cells(int panel, const BusDiagnosis::Counters& counters) {
    const auto number = [&](Outcome outcome) { return QString::number(counters.Of(outcome)); };
    return {QString::number(panel),
            ModelOf(panel),
            QString::number(counters.exchanges),
            number(Outcome::NoAnswer),
            number(Outcome::BadCrc),
            number(Outcome::Exception),
            number(Outcome::OtherAddress),
            Milliseconds(counters, counters.shortest, 0),
            Milliseconds(counters, counters.Mean(), 1),
            Milliseconds(counters, counters.longest, 0)};
}

} // namespace

wTechDiagnosis::wTechDiagnosis()
    : ScreenForm(FormNames::wTechDiagnosis)
    , ui_(std::make_unique<Ui::wTechDiagnosis>()) {
    ui_->setupUi(this);
    Prepare();
    constexpr std::array<int, 10> Shares = {9, 12, 13, 13, 8, 13, 12, 10, 8, 8};
    QList<TouchTable::Column> columns;
    for (int i = 0; i < int(Shares.size()); ++i)
        columns += {GetText(FirstColumn + i), Shares[size_t(i)],
                    i == 1 ? Qt::AlignLeft | Qt::AlignVCenter : Qt::AlignRight | Qt::AlignVCenter};
    ui_->tblPanels->setColumns(columns, IsScaled() ? CurrentScreenFactors().vertical : 1);
    ui_->imgSpan_0->setChecked(true);
    connect(ui_->tblPanels, &TouchTable::RowChanged, this, &wTechDiagnosis::tblPanels_Click);
    OnClick(QStringLiteral("imgSpan"), [this](int) { imgSpan_Click(); });
    OnClick(QStringLiteral("imgFilter"), [this](int index) { imgFilter_Click(index); });
    OnClick(ui_->imgHold, [this] { imgHold_Click(); });
    OnClick(ui_->imgSave, [this] { imgSave_Click(); });
    OnClick(ui_->imgClose, [this] { Hide(); });
    tmrRefresh_.callOnTimeout([this] { Refresh(); });
    tmrRefresh_.start(RefreshPeriod);
    Refresh();
    ShowTrace();
}

wTechDiagnosis::~wTechDiagnosis() = default;

void wTechDiagnosis::Refresh() {
    Guard("wTechDiagnosis.tmrRefresh", [&] {
        if (Polling() == nullptr)
            return;
        ShowCounters();
        if (!ui_->imgHold->isChecked())
            ui_->grdTrace->Take(Polling()->Diagnosis());
    });
}

bool wTechDiagnosis::LastHour() const {
    return ui_->imgSpan_1->isChecked();
}

BusDiagnosis::Counters wTechDiagnosis::CountersOf(int panel) const {
    const BusDiagnosis& diagnosis = Polling()->Diagnosis();
    return LastHour() ? diagnosis.LastHour(panel) : diagnosis.SinceStart(panel);
}

/// Rows are sorted anew only when one comes; otherwise the cells change in their place.
void wTechDiagnosis::ShowCounters() {
    bool anotherRow = false;
    for (int panel = 1; panel <= BusDiagnosis::PanelCount; ++panel) {
        auto& shown = shown_[size_t(panel - 1)];
        const bool wanted = Global::Configuration().Panel(panel).Active() ||
                            Polling()->Diagnosis().SinceStart(panel).exchanges != 0;
        if (!wanted && !shown)
            continue;
        const BusDiagnosis::Counters counters = CountersOf(panel);
        anotherRow = anotherRow || !shown;
        if (shown && *shown != counters)
            ui_->tblPanels->setCells(QString::number(panel), Cells(panel, counters));
        shown = counters;
    }
    if (!anotherRow)
        return;
    QList<TouchTable::Row> rows;
    for (int panel = 1; panel <= BusDiagnosis::PanelCount; ++panel) {
        if (const auto& shown = shown_[size_t(panel - 1)])
            rows += {Cells(panel, *shown), QString::number(panel)};
    }
    ui_->tblPanels->setRows(rows);
}

void wTechDiagnosis::ShowTrace() {
    const int panel = ui_->grdTrace->Panel();
    QString text = panel == 0 ? GetText(FramesOfAll)
                              : GetText(FramesOfOne).replace(u'$', QString::number(panel));
    if (ui_->imgHold->isChecked())
        text += QStringLiteral(" - ") + GetText(Held);
    ui_->lblTrace->setText(text);
    ui_->imgFilter_0->setEnabled(!ui_->tblPanels->CurrentTag().isEmpty());
    ui_->imgFilter_1->setEnabled(panel != 0);
}

/// A trace of one panel goes along to the next one that is chosen.
void wTechDiagnosis::tblPanels_Click() {
    Guard("wTechDiagnosis.tblPanels_Click", [&] {
        const int panel = ui_->tblPanels->CurrentTag().toInt();
        if (panel != 0 && ui_->grdTrace->Panel() != 0 && ui_->grdTrace->Panel() != panel)
            ui_->grdTrace->setPanel(panel);
        ui_->lblTold->setText(panel == 0 ? QString() : ReportedModel(panel));
        ShowTrace();
    });
}

void wTechDiagnosis::imgSpan_Click() {
    Refresh();
}

void wTechDiagnosis::imgHold_Click() {
    ui_->lblTold->clear();
    Refresh();
    ShowTrace();
}

void wTechDiagnosis::imgFilter_Click(int index) {
    ui_->lblTold->clear();
    ui_->grdTrace->setPanel(index == OnePanel ? ui_->tblPanels->CurrentTag().toInt() : 0);
    ShowTrace();
}

/// Counters and frames as they were at the touch, however long the name takes.
void wTechDiagnosis::imgSave_Click() {
    const QPointer<wTechDiagnosis> self(this);
    const QByteArray report = platform::ToCodePage(Report());
    const int frames = ui_->grdTrace->Count();
    ui_->lblTold->clear();
    const QString path = FilePicker::SaveAs(
        IniRead(Files, FolderKey, QString()),
        QStringLiteral("Bus") + DateTimes::FileDate(DateTimes::Now()), GetText(TextFiles, true));
    if (path.isEmpty() || !IsLoaded(self.data()))
        return;
    platform::ReplaceFile(path, report);
    IniWrite(Files, FolderKey, FilePicker::Folder(path));
    ui_->lblTold->setText(GetText(SavedFrames).replace(u'$', QString::number(frames)));
}

QString wTechDiagnosis::Report() const {
    QStringList lines{GetText(Title) + u'\t' + DateTimes::DateAndTime(DateTimes::Now()), QString()};
    QStringList headings;
    for (int column = 0; column < ui_->tblPanels->model()->columnCount(); ++column)
        headings += GetText(FirstColumn + column);
    for (const Span span : {SinceStart, ThisHour}) {
        lines += GetText(FirstSpan + span);
        lines += headings.join(u'\t');
        for (int panel = 1; panel <= BusDiagnosis::PanelCount; ++panel) {
            if (!shown_[size_t(panel - 1)])
                continue;
            const BusDiagnosis& diagnosis = Polling()->Diagnosis();
            lines += Cells(panel, span == ThisHour ? diagnosis.LastHour(panel)
                                                   : diagnosis.SinceStart(panel))
                         .join(u'\t');
        }
        lines += QString();
    }
    const qsizetype before = lines.size();
    for (int panel = 1; panel <= BusDiagnosis::PanelCount; ++panel) {
        if (const QString told = ReportedModel(panel); !told.isEmpty())
            lines += told;
    }
    if (lines.size() > before)
        lines += QString();
    lines += ui_->lblTrace->text();
    lines += ui_->grdTrace->Lines();
    return lines.join(LineEnd) + LineEnd;
}
