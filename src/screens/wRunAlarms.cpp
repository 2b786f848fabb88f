#include "screens/wRunAlarms.h"
#include "screens/FilePicker.h"

#include "bus/wPolling.h"
#include "core/Config.h"
#include "core/ErrorHandling.h"
#include "core/Global.h"
#include "core/Operator.h"
#include "core/SLVfonctions.h"
#include "events/Decisions.h"
#include "events/Klaxon.h"
#include "model/Access.h"
#include "model/CurrentConfig.h"
#include "model/Models.h"
#include "ui_wRunAlarms.h"

#include <QFileInfo>
#include <QFontMetrics>

// The pictures lie in a static library: without this nothing would pull them in. It can't stand
// inside a namespace.
static void LoadConsolePictures() {
    Q_INIT_RESOURCE(console);
}

using ErrorHandling::Guard;

namespace {

constexpr int ClockPeriodMs = 1000;
constexpr int ShadowOffset = 2;
constexpr int TechnicianLevel = 3;
/// Room for "+63" in widths of a panel's label.
constexpr double RestWidths = 2;
/// Pitch of the labels of missing panels in their widths.
constexpr double MissingPitch = 1.2;
/// Failed polls of a present panel, and polls of one that is missing.
constexpr int PollFailures = 1;
constexpr int MissingPolls = 2;
constexpr int MostPollFailures = 3;

} // namespace

wRunAlarms::wRunAlarms()
    : ScreenForm(QStringLiteral("wRunAlarms"))
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
    Prepare();
    OmbrerTexte(QStringLiteral("lblLogin"), ShadowOffset, ShadowOffset);
    ConnectControls();
    Form_Load();
}

wRunAlarms::~wRunAlarms() {
    Gone();
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
    Press(ui_->imgCommWatch, "wRunAlarms.imgCommWatch_Click", [this] { imgCommWatch_Click(); });
    OnClick(QStringLiteral("imgControl"), [this](int index) { imgControl_Click(index); });
    OnClick(QStringLiteral("imgNavig"), [this](int) { imgNavig_Click(); });
    OnClick(QStringLiteral("lblLogin"), [this](int) { lblLogin_Click(); });
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
            connect(comm, &wPolling::RunChanged, this, &wRunAlarms::ShowRunState);
            connect(comm, &wPolling::UserChanged, this, &wRunAlarms::ShowLogin);
        }
        ShowBeat(BeatA);
        ShowLogin();
        ShowRunState();
        LastAlarms::Read(Rows());
    });
    RecaleCurseur();
    tmrDateTime_Timer();
    tmrDateTime_.start(ClockPeriodMs);
}

void wRunAlarms::Form_Unload() {
    tmrDateTime_.stop();
    Gone();
    if (wPolling* comm = Polling())
        comm->disconnect(this);
    LastAlarms::Write(Rows());
}

void wRunAlarms::Form_Activate() {
    bool remoteControlled = false;
    for (int number = 1; number <= ConfigClass::PanelCount; ++number) {
        const PanelClass& panel = Global::Configuration().Panel(number);
        remoteControlled |= panel.Active() && Models::IsRemoteControlled(panel.Model());
    }
    ui_->imgTelecommande->setVisible(remoteControlled);
    ui_->imgCommWatch->setVisible(AccessOk(TechnicianLevel));
    ShowSiteName();
    ShowLogin();
    ShowRunState();
}

void wRunAlarms::Nationality() {
    Guard("wRunAlarms.Nationality", [&] {
        ScreenForm::Nationality();
        ShowSiteName();
        ShowRunState();
    });
}

void wRunAlarms::mwComm_BusEvent(const EventClass& event) {
    Guard("wRunAlarms.mwComm_BusEvent", [&] {
        if (!IsToDisplay(event))
            return;
        Rows().Take(event, AlarmRows::RowText(event));
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
    });
}

void wRunAlarms::tmrDateTime_Timer() {
    ui_->lblDateTime->setText(DateTimes::DateAndTime(DateTimes::Now()));
    FindMissingPanels();
}

void wRunAlarms::FindMissingPanels() {
    Guard("wRunAlarms.FindMissingPanels", [&] {
        QList<int> missing;
        for (int number = 1; number <= ConfigClass::PanelCount; ++number) {
            const PanelClass& panel = Global::Configuration().Panel(number);
            if (panel.Active() && panel.Model() > Models::None &&
                (panel.ErrCptr(PollFailures) > MostPollFailures || panel.ErrCptr(MissingPolls) > 0))
                missing.append(panel.Numero());
        }
        if (missing != missing_)
            ShowMissingPanels(missing);
        missing_ = missing;
    });
}

/// The labels stand right of the pattern, which never shows. When the row is full the last one
/// tells how many more there are.
void wRunAlarms::ShowMissingPanels(const QList<int>& panels) {
    const QString array = QStringLiteral("lblMissingPanel");
    auto* pattern = Control<QLabel>(array, 0);
    for (const int index : Indices(array)) {
        if (index > 0)
            delete Control(array, index);
    }
    ui_->lblLabels_1->setVisible(!panels.isEmpty());
    const double pitch = MissingPitch * pattern->width();
    const auto place = [&](qsizetype n) { return pattern->x() + qRound(double(n) * pitch); };
    const int right = width() - qRound(RestWidths * pattern->width());
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

void wRunAlarms::ShowLogin() {
    Guard("wRunAlarms.lblLogin_Change", [&] {
        if (!Indices(QStringLiteral("lblLogin")).isEmpty())
            SetCaption(QStringLiteral("lblLogin"), 0, QString::number(Global::Get().userLevel));
    });
}

void wRunAlarms::ShowRunState() {
    const bool run = Polling() != nullptr && Polling()->Run();
    ui_->imgStopRun->setPicture(run ? QStringLiteral("start") : QStringLiteral("console_stopped"));
    ui_->imgStopRun->setText(GetText(run ? 710008 : 710009));
}

void wRunAlarms::ShowSiteName() {
    const QString name = FilePicker::SiteName(
        IniRead(QStringLiteral("Files"), QStringLiteral("LastUsed"), QString()));
    QLabel& label = *ui_->lblFileName;
    label.setText(QFontMetrics(label.font()).elidedText(name, Qt::ElideRight, label.width()));
}
