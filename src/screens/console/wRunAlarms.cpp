#include "screens/console/wRunAlarms.h"
#include "screens/dialogs/FilePicker.h"
#include "screens/dialogs/wHelp.h"

#include "bus/wPolling.h"
#include "core/Config.h"
#include "core/ErrorHandling.h"
#include "core/Faults.h"
#include "core/FormNames.h"
#include "core/Global.h"
#include "core/Operator.h"
#include "core/SLVfonctions.h"
#include "events/Decisions.h"
#include "events/Klaxon.h"
#include "model/Access.h"
#include "model/CurrentConfig.h"
#include "model/Models.h"
#include "screens/console/FaultBand.h"
#include "screens/touch/HoldToRepeat.h"
#include "ui_wRunAlarms.h"

#include <QApplication>
#include <QFileInfo>
#include <QFontMetrics>
#include <algorithm>

// The pictures lie in a static library: without this nothing would pull them in. It can't stand
// inside a namespace.
static void LoadConsolePictures() {
    Q_INIT_RESOURCE(console);
}

using ErrorHandling::Guard;

namespace {

constexpr int ClockPeriodMs = 1000;
constexpr int ShadowOffset = 2;

/// Another screen under the finger? That of the engine stays behind the console as long as somebody
/// left it open.
bool IsAnotherScreenOpen(const ScreenForm* own) {
    const QWidgetList windows = QApplication::topLevelWidgets();
    return std::any_of(windows.cbegin(), windows.cend(), [own](const QWidget* window) {
        const auto* form = qobject_cast<const ScreenForm*>(window);
        return form != nullptr && form != own && form->Visible() &&
               (form->Name() != FormNames::wPolling || form->isActiveWindow());
    });
}

} // namespace

wRunAlarms::wRunAlarms()
    : ScreenForm(FormNames::wRunAlarms)
    , ui_(std::make_unique<Ui::wRunAlarms>()) {
    LoadConsolePictures();
    ui_->setupUi(this);
    for (const auto& [beat, picture] :
         {std::pair(BeatB, "beat_1"), std::pair(GeneralReading, "console_sync")}) {
        auto* image = new AlarmMark(this);
        image->setObjectName(QStringLiteral("imgComm_%1").arg(int(beat)));
        image->setGeometry(ui_->imgComm_0->geometry());
        image->setPicture(QString::fromLatin1(picture));
    }
    MakeHead();
    Prepare();
    OmbrerTexte(QStringLiteral("lblLogin"), ShadowOffset, ShadowOffset);
    ConnectControls();
    guard_ = std::make_unique<TouchGuard>(*this);
    selectionGuard_ = std::make_unique<TouchGuard>(*this, SelectionControls());
    Form_Load();
}

wRunAlarms::~wRunAlarms() {
    Gone();
}

/// A console that comes by itself lies under a finger that meant something else.
void wRunAlarms::Show() {
    if (!Operator::Acts() && (!isVisible() || IsAnotherScreenOpen(this)))
        guard_->Hold();
    ScreenForm::Show();
}

/// What acts on the selected row or moves on from it.
QList<QWidget*> wRunAlarms::SelectionControls() const {
    QList<QWidget*> controls{ui_->grdAlarms, ui_->imgAcquit, ui_->imgConsigne};
    const QString arrows = QStringLiteral("imgControl");
    for (const int index : Indices(arrows))
        controls += Control(arrows, index);
    return controls;
}

AlarmRows& wRunAlarms::Rows() const {
    return ui_->grdAlarms->Rows();
}

int wRunAlarms::RowCount() const {
    return Rows().Count();
}

QString wRunAlarms::RowText(int row) const {
    return row >= 0 && row < RowCount() ? Rows().Row(row).text : QString();
}

qint32 wRunAlarms::RowData(int row) const {
    return row >= 0 && row < RowCount() ? Rows().Row(row).data : 0;
}

void wRunAlarms::EmptyList() {
    Rows().Clear();
    RecaleCurseur();
}

void wRunAlarms::ConnectControls() {
    Press(ui_->imgAcquit, "wRunAlarms.imgAcquit_Click", [this] { imgAcquit_Click(); });
    Press(ui_->imgArretKlaxon, "wRunAlarms.imgArretKlaxon_Click", [] { Alarme(StopAlarme); });
    Press(ui_->imgConsigne, "wRunAlarms.imgConsigne_Click", [this] { imgConsigne_Click(); });
    Press(ui_->imgHisto, "wRunAlarms.imgHisto_Click", [this] { imgHisto_Click(); });
    Press(ui_->imgTelecommande, "wRunAlarms.imgTelecommande_Click",
          [this] { imgTelecommande_Click(); });
    Press(ui_->imgStopRun, "wRunAlarms.imgStopRun_Click", [this] { imgStopRun_Click(); });
    Press(ui_->imgHelp, "wRunAlarms.imgHelp_Click", [] { ShowHelp(); });
    Press(ui_->imgCommWatch, "wRunAlarms.imgCommWatch_Click", [this] { imgCommWatch_Click(); });
    const QString arrows = QStringLiteral("imgControl");
    OnClick(arrows, [this](int index) { imgControl_Click(index); });
    auto* repeat = new HoldToRepeat(this);
    for (const int index : Indices(arrows))
        repeat->Watch(Control(arrows, index), [this, index] { imgControl_Click(index); });
    OnClick(QStringLiteral("imgNavig"), [this](int) { imgNavig_Click(); });
    OnClick(QStringLiteral("lblLogin"), [this](int) { lblLogin_Click(); });
    OnClick(lblFaults_, [this] { lblFaults_Click(); });
    for (QLabel* label : {lblOutOfService_, ui_->lblFileName})
        OnClick(label, [this] { lblOutOfService_Click(); });
    connect(ui_->grdAlarms, &AlarmGrid::RowColChange, this, &wRunAlarms::RecaleCurseur);
    connect(&tmrDateTime_, &QTimer::timeout, this, &wRunAlarms::tmrDateTime_Timer);
}

void wRunAlarms::Press(TouchImage* image, const char* source, std::function<void()> handler) {
    connect(image, &TouchImage::clicked, this, [source, handler = std::move(handler)] {
        const Operator::Acting acting;
        Guard(source, handler);
    });
}

void wRunAlarms::Form_Load() {
    Guard("wRunAlarms.Form_Load", [&] {
        if (wPolling* comm = Polling()) {
            connect(comm, &wPolling::BusEvent, this, &wRunAlarms::mwComm_BusEvent);
            connect(comm, &wPolling::PollDone, this, &wRunAlarms::mwComm_PollDone);
            connect(comm, &wPolling::Synchronising, this, &wRunAlarms::mwComm_Synchronising);
            connect(comm, &wPolling::RunChanged, this, &wRunAlarms::ShowWatch);
            connect(comm, &wPolling::StateChanged, this, &wRunAlarms::ShowWatch);
            connect(comm, &wPolling::UserChanged, this, &wRunAlarms::ShowLogin);
        }
        connect(&Faults::TheBoard(), &Faults::Board::Changed, this, &wRunAlarms::ShowFaults);
        ShowBeat(BeatA);
        ShowLogin();
        ShowRunState();
        LastAlarms::Read(Rows());
    });
    ShowFaults();
    RecaleCurseur();
    tmrDateTime_Timer();
    tmrDateTime_.start(ClockPeriodMs);
}

void wRunAlarms::Form_Unload() {
    tmrDateTime_.stop();
    Gone();
    if (wPolling* comm = Polling())
        comm->disconnect(this);
    Faults::TheBoard().disconnect(this);
    LastAlarms::Write(Rows());
}

void wRunAlarms::Form_Activate() {
    bool remoteControlled = false;
    for (int number = 1; number <= ConfigClass::PanelCount; ++number) {
        const PanelClass& panel = Global::Configuration().Panel(number);
        remoteControlled |= panel.Active() && Models::IsRemoteControlled(panel.Model());
    }
    ui_->imgTelecommande->setVisible(remoteControlled);
    ui_->imgCommWatch->setVisible(AccessOk(Levels::Technician));
    ShowSiteName();
    ShowLogin();
    ShowRunState();
}

void wRunAlarms::Nationality() {
    Guard("wRunAlarms.Nationality", [&] {
        ScreenForm::Nationality();
        ShowSiteName();
        ShowWatch();
    });
}

void wRunAlarms::mwComm_BusEvent(const EventClass& event) {
    Guard("wRunAlarms.mwComm_BusEvent", [&] {
        if (!IsToDisplay(event))
            return;
        const qint32 selected = RowData(Rows().Current());
        Rows().Take(event, AlarmRows::RowText(event));
        // Another alarm than the operator looked at: a touch that is under way doesn't mean it.
        if (!AlarmRows::IsSamePlace(selected, RowData(Rows().Current())))
            selectionGuard_->Hold();
        RecaleCurseur();
        BringToFront();
    });
}

void wRunAlarms::mwComm_PollDone() {
    Guard("wRunAlarms.mwComm_PollDone", [&] {
        if (beat_ != GeneralReading)
            ShowBeat(beat_ == BeatA ? BeatB : BeatA);
    });
}

void wRunAlarms::mwComm_Synchronising(bool on) {
    ShowBeat(on ? GeneralReading : BeatA);
    ShowWatch();
    // Nothing runs the event loop until the reading is through.
    if (on && isVisible())
        repaint();
}

void wRunAlarms::ShowBeat(Beat beat) {
    beat_ = beat;
    const QString array = QStringLiteral("imgComm");
    for (const int index : Indices(array))
        Control(array, index)->setVisible(index == beat);
}

void wRunAlarms::RecaleCurseur() {
    Guard("wRunAlarms.RecaleCurseur", [&] {
        const AlarmGrid& grid = *ui_->grdAlarms;
        AlarmMark& pointer = *ui_->imgPointer;
        const AlarmRows& rows = grid.Rows();
        ui_->txtNoAlarm->setVisible(rows.IsEmpty());
        ui_->imgNoAlarm->setVisible(rows.IsEmpty());
        ui_->grdAlarms->setVisible(!rows.IsEmpty());
        ui_->grdAlarms->update();
        const int y = (rows.Current() - rows.First()) * grid.RowHeight();
        const bool inSight = !rows.IsEmpty() && y >= 0 && grid.height() - grid.RowHeight() >= y;
        if (inSight)
            pointer.move(pointer.x(), grid.y() + y + (grid.RowHeight() - pointer.height()) / 2);
        pointer.setVisible(inSight);
        ShowCount();
    });
}

void wRunAlarms::ShowLogin() {
    Guard("wRunAlarms.lblLogin_Change", [&] {
        if (!Indices(QStringLiteral("lblLogin")).isEmpty())
            SetCaption(QStringLiteral("lblLogin"), 0, QString::number(Global::Get().userLevel));
    });
}

void wRunAlarms::ShowSiteName() {
    const QString name = FilePicker::SiteName(
        IniRead(QStringLiteral("Files"), QStringLiteral("LastUsed"), QString()));
    QLabel& label = *ui_->lblFileName;
    label.setText(QFontMetrics(label.font()).elidedText(name, Qt::ElideRight, label.width()));
}
