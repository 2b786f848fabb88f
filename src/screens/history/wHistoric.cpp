#include "screens/history/wHistoric.h"

#include "core/Bytes.h"
#include "core/Config.h"
#include "core/DateTimes.h"
#include "core/ErrorHandling.h"
#include "core/FormNames.h"
#include "core/Global.h"
#include "core/Pointer.h"
#include "events/HistoProcs.h"
#include "events/TextProcs.h"
#include "model/Access.h"
#include "model/CurrentConfig.h"
#include "model/Models.h"
#include "screens/dialogs/AskPassword.h"
#include "screens/dialogs/dlgConsigne.h"
#include "screens/touch/HoldToRepeat.h"
#include "screens/touch/Navigation.h"
#include "screens/touch/ResizeForm.h"
#include "screens/touch/TouchList.h"
#include "ui_wHistoric.h"

#include <QApplication>
#include <QFileInfo>
#include <QKeyEvent>

using ErrorHandling::Guard;

namespace ScreenLine = TextProcs::ScreenLine;

namespace {

constexpr int ClockPeriodMs = 1000;
/// The screen paints before a long file is read.
constexpr int UpdateDelayMs = 50;
constexpr int NoEntry = 711001;
constexpr int NoFile = 711002;

const QString Separator = QStringLiteral(" - ");

/// Indices of `imgControl`.
enum Button { PreviousFile = 0, NextFile = 1, FirstKey = 4 };
constexpr Qt::Key Keys[] = {Qt::Key_PageUp,   Qt::Key_Up,   Qt::Key_Down,
                            Qt::Key_PageDown, Qt::Key_Home, Qt::Key_End};
/// Keys that go on while their button is held.
constexpr int HeldKeys = 4;

/// The date of a file's name in groups: year, month and, in a daily file, day.
QString Groups(const QString& fileName) {
    const QString date = QFileInfo(fileName).completeBaseName().mid(HistoProcs::FileHead.size());
    QStringList groups{date.left(4), date.mid(4, 2), date.mid(6)};
    groups.removeAll(QString());
    return groups.join(Separator);
}

QString PathOf(QString groups) {
    return Global::InApplicationFolder(HistoProcs::FileHead + groups.remove(Separator) +
                                       HistoProcs::FileEnd);
}

/// Number of the instruction of the channel that a line of the screen layout comes from, 0 when it
/// comes from no channel.
int InstructionOf(const QString& line) {
    const QString origin = line.mid(ScreenLine::Origin.start, ScreenLine::Origin.width);
    bool isPanel = false;
    bool isChannel = false;
    const int panel = origin.mid(1, 2).toInt(&isPanel);
    const int channel = origin.mid(5, 2).toInt(&isChannel);
    if (!isPanel || !isChannel || panel < 1 || panel > ConfigClass::PanelCount || channel < 1 ||
        channel > PanelClass::MaxChannel)
        return 0;
    return Global::Configuration().Panel(panel).Channel(channel).HelpNum();
}

} // namespace

wHistoric::wHistoric()
    : ScreenForm(FormNames::wHistoric)
    , ui_(std::make_unique<Ui::wHistoric>()) {
    ui_->setupUi(this);
    Prepare();
    MakeTouchList(*ui_->lstFiles, IsScaled() ? CurrentScreenFactors().vertical : 1);
    ConnectControls();
    Guard("wHistoric.Form_Load", [this] { Form_Load(); });
}

wHistoric::~wHistoric() = default;

void wHistoric::ConnectControls() {
    OnClick(QStringLiteral("imgControl"), [this](int index) { imgControl_Click(index); });
    auto* repeat = new HoldToRepeat(this);
    for (int index = FirstKey; index < FirstKey + HeldKeys; ++index)
        repeat->Watch(Control(QStringLiteral("imgControl"), index),
                      [this, index] { imgControl_Click(index); });
    OnClick(ui_->imgConsigne, [this] { imgConsigne_Click(); });
    OnClick(ui_->imgTelecommande, [this] { imgTelecommande_Click(); });
    OnClick(ui_->imgReport, [] { OpenScreen(FormNames::wAlarmReport); });
    OnClick(ui_->imgSearch, [] { OpenScreen(FormNames::wHistorySearch); });
    OnClick(ui_->imgClose, [this] { imgClose_Click(); });
    tmrUpdate_.setSingleShot(true);
    tmrUpdate_.setInterval(UpdateDelayMs);
    connect(&tmrUpdate_, &QTimer::timeout, this, &wHistoric::tmrUpdate_Timer);
    connect(&tmrDateTime_, &QTimer::timeout, this, &wHistoric::tmrDateTime_Timer);
}

void wHistoric::Form_Load() {
    ui_->imgReport->setVisible(Forms::Names().contains(FormNames::wAlarmReport));
    ui_->imgSearch->setVisible(Forms::Names().contains(FormNames::wHistorySearch));
    FillFiles();
    connect(ui_->lstFiles, &QListWidget::currentRowChanged, &tmrUpdate_,
            qOverload<>(&QTimer::start));
    // A touch on the list is no move through the files: the newest line is what is looked for.
    connect(ui_->lstFiles, &QListWidget::itemPressed, this, [this] { forward_ = false; });
    ui_->txtNoAlarm->hide();
    tmrUpdate_.start();
    tmrDateTime_Timer();
    tmrDateTime_.start(ClockPeriodMs);
}

/// The file that is being written is chosen; where nothing was written yet, the latest one.
void wHistoric::FillFiles() {
    for (const QString& name : HistoProcs::HistoFileNames())
        ui_->lstFiles->addItem(Groups(name));
    const QString today = Groups(HistoProcs::HistoFileName());
    const auto found = ui_->lstFiles->findItems(today, Qt::MatchExactly);
    ui_->lstFiles->setCurrentRow(found.isEmpty() ? ui_->lstFiles->count() - 1
                                                 : ui_->lstFiles->row(found.first()));
}

void wHistoric::Form_Activate() {
    bool remoteControlled = false;
    for (int number = 1; number <= ConfigClass::PanelCount; ++number) {
        const PanelClass& panel = Global::Configuration().Panel(number);
        remoteControlled |= panel.Active() && Models::IsRemoteControlled(panel.Model());
    }
    ui_->imgTelecommande->setVisible(remoteControlled);
}

void wHistoric::Form_Unload() {
    tmrUpdate_.stop();
    tmrDateTime_.stop();
}

void wHistoric::tmrUpdate_Timer() {
    Pointer::Hourglass();
    Guard("wHistoric.tmrUpdate_Timer", [this] {
        ui_->grdAlarms->Clear();
        const QListWidgetItem* file = ui_->lstFiles->currentItem();
        if (file != nullptr && ui_->grdAlarms->Load(PathOf(file->text())) && !forward_)
            ui_->grdAlarms->ShowLast();
    });
    Pointer::Default();
    ShowFound();
}

/// Says in words that there is nothing to show.
void wHistoric::ShowFound() {
    const bool empty = ui_->grdAlarms->Count() == 0;
    ui_->txtNoAlarm->setText(GetText(ui_->lstFiles->count() == 0 ? NoFile : NoEntry));
    ui_->txtNoAlarm->setVisible(empty);
    ui_->grdAlarms->setVisible(!empty);
}

void wHistoric::tmrDateTime_Timer() {
    ui_->lblDateTime->setText(DateTimes::DateAndTime(DateTimes::Now()));
}

void wHistoric::imgControl_Click(int index) {
    if (index == PreviousFile || index == NextFile) {
        Step(index == NextFile ? 1 : -1);
        return;
    }
    ui_->grdAlarms->setFocus();
    QKeyEvent press(QEvent::KeyPress, Keys[index - FirstKey], Qt::NoModifier);
    QCoreApplication::sendEvent(ui_->grdAlarms, &press);
}

void wHistoric::Step(int by) {
    const int row = ui_->lstFiles->currentRow() + by;
    if (row < 0 || row >= ui_->lstFiles->count()) {
        QApplication::beep();
        return;
    }
    forward_ = by > 0;
    ui_->lstFiles->setCurrentRow(row);
    tmrUpdate_.start();
}

void wHistoric::imgConsigne_Click() {
    const QString line = ui_->grdAlarms->CurrentLine();
    if (line.isEmpty())
        return;
    const int secondHalf = ScreenLine::Break.start + ScreenLine::Break.width;
    dlgConsigne::PresentNumber(line.left(secondHalf) + u'\n' + line.mid(secondHalf),
                               InstructionOf(line));
}

void wHistoric::imgTelecommande_Click() {
    if (TryLevel(*this, Levels::Operator))
        OpenScreen(FormNames::wTeleCmdes);
}

/// Back to the screen from which this one was opened: it is still there behind.
void wHistoric::imgClose_Click() {
    const bool toMenu =
        NbInstances(FormNames::wRunAlarms) == 0 && NbInstances(FormNames::wMain) > 0;
    Forms::Show(toMenu ? FormNames::wMain : FormNames::wRunAlarms);
    Unload();
}
