#include "technician/wTechFindPanels.h"

#include "bus/BusDiagnosis.h"
#include "bus/CommFunctions.h"
#include "bus/wPolling.h"
#include "config_screens/panels/wBusModules.h"
#include "core/Config.h"
#include "core/ErrorHandling.h"
#include "core/FormNames.h"
#include "core/Forms.h"
#include "core/Yield.h"
#include "model/CurrentConfig.h"
#include "model/Models.h"
#include "platform/Clock.h"
#include "screens/dialogs/wHelp.h"
#include "screens/menu/BusConfig.h"
#include "screens/touch/BehindRound.h"
#include "screens/touch/HoldToRepeat.h"
#include "screens/touch/KeptEdit.h"
#include "screens/touch/Position.h"
#include "screens/touch/ResizeForm.h"
#include "ui_wTechFindPanels.h"

#include <QApplication>
#include <QKeyEvent>
#include <QPointer>
#include <QScopeGuard>
#include <QScrollBar>
#include <algorithm>

namespace {

enum Find { StopFind, StartFind };
enum Commands { MakeInactive, MakeActive, TakeModel };

const QString Controls = QStringLiteral("imgControl");
const QString Unasked = QStringLiteral("?????");
const QString Asking = QStringLiteral("Test...");

constexpr int No = 10001;
constexpr int Yes = 10002;
constexpr int SaveTheChanges = 50003;
constexpr int Panel = 300600;
constexpr int FirstColumn = 820001;
constexpr int AddressOf = 820040;
constexpr int TimeLeft = 820041;
constexpr int Result = 820042;
/// Why nothing was found: one text for each outcome of an exchange, in their order.
constexpr int FirstReason = 820050;
constexpr int PortClosed = FirstReason + BusDiagnosis::OutcomeCount;

constexpr int FirstArrow = 4;
constexpr Qt::Key ArrowKeys[] = {Qt::Key_PageUp, Qt::Key_Up, Qt::Key_Down, Qt::Key_PageDown};

/// What can be edited of a panel here.
struct PanelEdit {
    quint8 model;
    bool active;
    bool operator==(const PanelEdit&) const = default;
};
using Edit = QList<PanelEdit>;

/// What an alarm interrupted.
KeptEdit<Edit> keptEdit;

Edit OfSite() {
    Edit edit;
    for (int panel = 1; panel <= ConfigClass::PanelCount; ++panel) {
        const PanelClass& of = Global::Configuration().Panel(panel);
        edit += {of.Model(), of.Active()};
    }
    return edit;
}

/// The exchange behind a model that is none is the last one with the panel.
int ReasonOf(int panel) {
    const auto outcome = Polling()->Diagnosis().LastOf(panel);
    return outcome ? FirstReason + int(*outcome) : PortClosed;
}

QString MinutesAndSeconds(qint64 ms) {
    constexpr qint64 Second = 1000;
    constexpr qint64 Minute = 60;
    const qint64 seconds = (ms + Second - 1) / Second;
    return QStringLiteral("%1:%2").arg(seconds / Minute).arg(seconds % Minute, 2, 10, QChar(u'0'));
}

} // namespace

wTechFindPanels::wTechFindPanels()
    : ConfigForm(FormNames::wTechFindPanels)
    , ui_(std::make_unique<Ui::wTechFindPanels>()) {
    ui_->setupUi(this);
    Prepare();
    found_.fill(NotKnown);
    results_.fill(Unasked);
    LoadCopies();
    connect(ui_->grdPanels, &TouchTable::RowChanged, this,
            &wTechFindPanels::grdPanels_RowColChange);
    FillGrid();
    ShowLink();
    // Installed after the table's own, it sees a touch first.
    for (QObject* part : QList<QObject*>{ui_->grdPanels, ui_->grdPanels->viewport(),
                                         ui_->grdPanels->verticalScrollBar()})
        part->installEventFilter(this);
    OnClick(QStringLiteral("imgFind"), [this](int index) { imgFind_Click(index); });
    for (const char* array : {"imgCommand", "lblCommand"})
        OnClick(QLatin1String(array), [this](int index) { imgCommand_Click(index); });
    OnClick(Controls, [this](int index) { imgControl_Click(index); });
    OnClick(QStringLiteral("imgNavig"), [this](int index) { imgNavig_Click(index); });
    auto* repeat = new HoldToRepeat(this);
    for (const int index : Indices(Controls))
        repeat->Watch(Control(Controls, index), [this, index] { imgControl_Click(index); });
    if (Polling() != nullptr) {
        connect(Polling(), &wPolling::RunChanged, this, &wTechFindPanels::ShowScanning);
        connect(Polling(), &wPolling::LinkChanged, this, &wTechFindPanels::ShowLink);
    }
    ShowScanning();
}

wTechFindPanels::~wTechFindPanels() = default;

void wTechFindPanels::LoadCopies() {
    for (int panel = 1; panel <= PanelCount; ++panel) {
        copies_[size_t(panel)].Copy(Global::Configuration().Panel(panel));
        copies_[size_t(panel)].setModified(false);
    }
    const auto kept = keptEdit.Take(OfSite());
    for (int panel = 1; kept && panel <= PanelCount; ++panel) {
        copies_[size_t(panel)].setModel((*kept)[panel - 1].model);
        copies_[size_t(panel)].setActive((*kept)[panel - 1].active);
    }
    ShowKept(kept.has_value());
}

void wTechFindPanels::FillGrid() {
    TouchTable* grid = ui_->grdPanels;
    grid->setColumns({{GetText(FirstColumn), 9, Qt::AlignCenter},
                      {GetText(FirstColumn + 1), 38},
                      {GetText(FirstColumn + 2), 18},
                      {GetText(FirstColumn + 3), 14, Qt::AlignCenter},
                      {GetText(FirstColumn + 4), 18}},
                     IsScaled() ? CurrentScreenFactors().vertical : 1);
    // Row n stays panel n: what the search writes must not move rows under the finger.
    grid->setSortable(false);
    QList<TouchTable::Row> rows;
    for (int panel = 1; panel <= PanelCount; ++panel)
        rows += {CellsOf(panel), QString::number(panel)};
    grid->setRows(rows);
    grid->SelectTag(QString::number(1));
}

void wTechFindPanels::ShowLink() {
    if (Polling() == nullptr)
        return;
    int label = FirstBusConfigLabel;
    for (const QString& text : BusConfigTexts(Polling()->CommBus()))
        SetCaption(QStringLiteral("lblBusConfig"), label++, text);
}

QStringList wTechFindPanels::CellsOf(int panel) const {
    const PanelClass& copy = copies_[size_t(panel)];
    return {QString::number(panel), copy.TitleLine(), ModuleName(copy.Model()),
            GetText(copy.Active() ? Yes : No), results_[size_t(panel)]};
}

void wTechFindPanels::ShowRow(int panel) {
    ui_->grdPanels->setCells(QString::number(panel), CellsOf(panel));
}

int wTechFindPanels::CurrentPanel() const {
    return ui_->grdPanels->CurrentTag().toInt();
}

void wTechFindPanels::grdPanels_RowColChange() {
    const int panel = CurrentPanel();
    ui_->lblFrames_1->setText(GetText(Panel) + u' ' + QString::number(panel));
    const int reason = reasons_[size_t(panel)];
    ui_->lblReason->setText(
        reason == 0 ? QString()
                    : GetText(reason).replace(QStringLiteral("$1"), QString::number(panel)));
    for (const int back : {0, 1})
        EnableByPosition(Control(Controls, FirstArrow + back),
                         Control(Controls, FirstArrow + 3 - back), panel - 1, PanelCount);
}

/// A touch waits while an address is asked, and is let through before the search moves on: it
/// finds the rows where the finger saw them.
bool wTechFindPanels::eventFilter(QObject* watched, QEvent* event) {
    const TouchTable* grid = ui_->grdPanels;
    const bool onGrid =
        watched == grid || watched == grid->viewport() || watched == grid->verticalScrollBar();
    const bool moves = event->type() == QEvent::MouseButtonPress ||
                       event->type() == QEvent::Wheel || event->type() == QEvent::KeyPress;
    if (onGrid && moves)
        follows_ = false;
    return ConfigForm::eventFilter(watched, event);
}

void wTechFindPanels::imgFind_Click(int index) {
    if (index == StartFind) {
        StartScan();
        return;
    }
    abort_ = true;
    ShowScanning();
}

/// A panel without a model can be deactivated and no more.
void wTechFindPanels::imgCommand_Click(int index) {
    const int panel = CurrentPanel();
    PanelClass& copy = copies_[size_t(panel)];
    const int found = found_[size_t(panel)];
    const bool works = index == TakeModel ? found != NotKnown
                                          : copy.Model() != Models::None ||
                                                (index == MakeInactive && copy.Active());
    if (!works) {
        QApplication::beep();
        return;
    }
    if (index == TakeModel)
        copy.setModel(quint8(found));
    else
        copy.setActive(index == MakeActive);
    ShowRow(panel);
}

/// The buttons are the keys of the table.
void wTechFindPanels::imgControl_Click(int index) {
    ui_->grdPanels->setFocus();
    QKeyEvent press(QEvent::KeyPress, ArrowKeys[index - FirstArrow], Qt::NoModifier);
    QCoreApplication::sendEvent(ui_->grdPanels, &press);
}

void wTechFindPanels::imgNavig_Click(int index) {
    if (index == Help) {
        ShowHelp();
        return;
    }
    abort_ = true;
    ShowScanning();
    LeaveModal();
}

void wTechFindPanels::StartScan() {
    RunBehindRound(this, [this] {
        ErrorHandling::Guard("wTechFindPanels.imgFind_Click", [this] { Scan(); });
    });
}

/// The thread is the one of the polling: each address is one exchange or two, and rounds and
/// touches come through in between. Any of them may take the form away.
void wTechFindPanels::Scan() {
    if (scanning_ || Polling() == nullptr)
        return;
    const QPointer<wTechFindPanels> self(this);
    const auto end = qScopeGuard([self] {
        if (IsLoaded(self.data()))
            self->EndScan();
    });
    BeginScan();
    for (int panel = 1; panel <= PanelCount; ++panel) {
        Yield();
        if (!IsLoaded(self.data()) || abort_ || Polling() == nullptr || Polling()->IsClosing())
            return;
        if (follows_)
            FollowTo(panel);
        Ask(panel);
    }
}

void wTechFindPanels::BeginScan() {
    scanning_ = true;
    abort_ = false;
    follows_ = true;
    asked_ = 0;
    scanStart_ = platform::Clock::Current().MonotonicMs();
    found_.fill(NotKnown);
    results_.fill(Unasked);
    reasons_.fill(0);
    for (int panel = 1; panel <= PanelCount; ++panel)
        ShowRow(panel);
    grdPanels_RowColChange();
    ShowScanning();
}

void wTechFindPanels::EndScan() {
    scanning_ = false;
    abort_ = false;
    follows_ = false;
    ShowScanning();
    ShowResult();
}

/// Whole pages, so that the table stands still for most of the search.
void wTechFindPanels::FollowTo(int panel) {
    TouchTable* grid = ui_->grdPanels;
    const int top = grid->rowViewportPosition(panel - 1);
    if (top + grid->rowHeight(panel - 1) > grid->viewport()->height())
        grid->verticalScrollBar()->triggerAction(QAbstractSlider::SliderPageStepAdd);
    else if (top < 0)
        grid->verticalScrollBar()->triggerAction(QAbstractSlider::SliderPageStepSub);
    grid->SelectTag(QString::number(panel));
}

/// Nothing is painted by itself before the next address: what changed is painted at once.
void wTechFindPanels::Ask(int panel) {
    results_[size_t(panel)] = Asking;
    ShowRow(panel);
    ShowProgress(panel);
    repaint();
    const int found = GetModuleType(Polling()->CommBus(), quint8(panel));
    asked_ = panel;
    found_[size_t(panel)] = found;
    results_[size_t(panel)] = ModuleName(found);
    reasons_[size_t(panel)] = found == Models::None ? ReasonOf(panel) : 0;
    ShowRow(panel);
    if (panel == CurrentPanel())
        grdPanels_RowColChange();
    repaint();
}

/// `address` is being asked. What is left is reckoned from the mean of those before, rounds of the
/// polling included.
void wTechFindPanels::ShowProgress(int address) {
    const qint64 elapsed = platform::Clock::Current().MonotonicMs() - scanStart_;
    QString text = GetText(asked_ == 0 ? AddressOf : TimeLeft)
                       .replace(QStringLiteral("$1"), QString::number(address))
                       .replace(QStringLiteral("$2"), QString::number(PanelCount));
    if (asked_ > 0)
        text.replace(QStringLiteral("$3"),
                     MinutesAndSeconds(elapsed * (PanelCount - asked_) / asked_));
    ui_->lblProgress->setText(text);
}

void wTechFindPanels::ShowResult() {
    const auto modules = std::count_if(found_.cbegin(), found_.cend(),
                                       [](int model) { return model > Models::None; });
    ui_->lblProgress->setText(GetText(Result)
                                  .replace(QStringLiteral("$1"), QString::number(asked_))
                                  .replace(QStringLiteral("$2"), QString::number(PanelCount))
                                  .replace(QStringLiteral("$3"), QString::number(modules)));
}

void wTechFindPanels::ShowScanning() {
    ui_->imgFind_0->setVisible(scanning_);
    ui_->imgFind_1->setVisible(!scanning_);
    const bool shared = scanning_ && !abort_ && Polling() != nullptr && Polling()->Run();
    ui_->frmWarning->setVisible(shared);
}

int wTechFindPanels::Question() const {
    return SaveTheChanges;
}

/// A change of the last panel alone doesn't count, and is dropped.
bool wTechFindPanels::Differs() const {
    const auto first = std::find_if(copies_.cbegin() + 1, copies_.cend(),
                                    [](const PanelClass& copy) { return copy.Modified(); });
    return first - copies_.cbegin() < PanelCount;
}

bool wTechFindPanels::Take() {
    // What wasn't touched stays as it is now: a panel may have come back into service meanwhile.
    for (int panel = 1; panel <= PanelCount; ++panel) {
        if (copies_[size_t(panel)].Modified())
            CopySettings(Global::Configuration().Panel(panel), copies_[size_t(panel)]);
    }
    if (auto* list = dynamic_cast<wBusModules*>(Forms::Find(FormNames::wBusModules)))
        list->HabillePanneaux();
    SaveSite();
    return true;
}

void wTechFindPanels::Keep() {
    Edit edit;
    for (int panel = 1; panel <= PanelCount; ++panel)
        edit += {copies_[size_t(panel)].Model(), copies_[size_t(panel)].Active()};
    keptEdit.Keep(OfSite(), edit);
}
