#include "technician/wTechnician.h"

#include "bus/ProgramEnd.h"
#include "bus/Registers.h"
#include "bus/wPolling.h"
#include "core/Config.h"
#include "core/ErrorHandling.h"
#include "core/FormNames.h"
#include "core/Forms.h"
#include "core/Message.h"
#include "core/Pointer.h"
#include "core/SLVfonctions.h"
#include "events/AlarmTables.h"
#include "events/HistoProcs.h"
#include "model/CurrentConfig.h"
#include "model/Models.h"
#include "model/SimulatedSite.h"
#include "platform/Folders.h"
#include "platform/Volumes.h"
#include "screens/dialogs/FilePicker.h"
#include "screens/dialogs/wHelp.h"
#include "screens/touch/HoldToRepeat.h"
#include "screens/touch/Navigation.h"
#include "screens/touch/Theme.h"
#include "screens/touch/ValueLabel.h"
#include "technician/ModuleFront.h"
#include "technician/TraceCopy.h"
#include "ui_wTechnician.h"

#include <QDir>
#include <QPointer>
#include <QScopeGuard>

using ErrorHandling::Guard;

namespace {

enum Steps { TenBack, OneBack, OneOn, TenOn };
enum Navigation { ToMenu = 0, Help = 7 };

const QString StepImages = QStringLiteral("imgControl");
const QString General = QStringLiteral("General");
const QString TechPanel = QStringLiteral("TechPanel");

constexpr int AllModules = 10101;
constexpr int Running = 810103;
constexpr int Stopped = 810104;
constexpr int ResetIt = 810055;
constexpr int ClearIt = 810052;
constexpr int MidnightNotice = 30022;
constexpr int NoDrive = 30016;
constexpr int DriveNotReady = 30017;
constexpr int FolderNotMade = 30018;
/// Words of `TechCommand::State` from `Sent` on, and that of a command which nobody answers.
constexpr int FirstOutcome = 810141;
constexpr int SentToAll = 810144;
/// Words of `TraceCopy::State`.
constexpr int FirstCopyState = 810151;

constexpr int StopTheBus = 718011;
constexpr int NothingToPlay = 718012;

constexpr int Beat = 32;

/// What is copied goes on while an alarm has the display, and is told at the next visit.
QPointer<TraceCopy>& Copying() {
    static QPointer<TraceCopy> copying;
    return copying;
}

QString Megabytes(qint64 bytes) {
    return AlarmTables::Language().toString(double(bytes) / 1e6, 'f', 1);
}

QString TraceFolder() {
    return QDir::cleanPath(platform::ApplicationFolder() + QStringLiteral("/Trace"));
}

/// Where the traces go: beside the second histories, those of a rehearsal nowhere.
QString TargetFolder() {
    if (Rehearsal::Runs())
        return TraceFolder();
    const QString histories =
        IniRead(QStringLiteral("Files"), QStringLiteral("Histo"), platform::ApplicationFolder());
    const QDir own(platform::ApplicationFolder());
    return QDir::cleanPath(
        own.absoluteFilePath(FilePicker::NormalPath(histories) + QStringLiteral("/Trace")));
}

int ModelOf(int number) {
    return number == 0 ? int(Models::None) : int(Global::Configuration().Panel(number).Model());
}

} // namespace

wTechnician::wTechnician()
    : ScreenForm(FormNames::wTechnician)
    , ui_(std::make_unique<Ui::wTechnician>()) {
    ui_->setupUi(this);
    for (int phase = 0; phase < 2; ++phase)
        Control<QLabel>(QStringLiteral("imgComm"), phase)
            ->setPixmap(Theme::Picture(QStringLiteral("beat_%1").arg(phase), Beat));
    Prepare();
    OnKey(Qt::Key_F1, [] { ShowHelp(); });
    ConnectControls();
    Form_Load();
}

wTechnician::~wTechnician() = default;

void wTechnician::ConnectControls() {
    connect(ui_->lblNumero, &ValueLabel::Changed, this,
            [this] { Guard("wTechnician.lblNumero_Change", [&] { lblNumero_Change(); }); });
    OnClick(StepImages, [this](int index) { imgControl_Click(index); });
    auto* repeat = new HoldToRepeat(this);
    for (const int index : Indices(StepImages))
        repeat->Watch(Control(StepImages, index), [this, index] { imgControl_Click(index); });
    OnClick(QStringLiteral("imgStopRun"), [this](int index) { imgStopRun_Click(index); });
    OnClick(QStringLiteral("imgNavig"), [this](int index) { imgNavig_Click(index); });
    OnClick(ui_->imgCommWatch, [] {
        Forms::Show(FormNames::wPolling);
        Forms::BringToFront(FormNames::wPolling);
    });
    OnClick(ui_->cmdSynchroBus, [] {
        if (Polling() != nullptr)
            Polling()->SynchroGeneraleBus();
    });
    OnClick(ui_->cmdSynchroMinuit, [this] { cmdSynchroMinuit_Click(); });
    OnClick(ui_->cmdForceHisto, [this] { cmdForceHisto_Click(); });
    OnClick(ui_->cmdCopyTraces, [this] { cmdCopyTraces_Click(); });
    OnClick(ui_->cmdRehearse, [this] { cmdRehearse_Click(); });
    OnClick(ui_->cmdStopCopy, [] {
        if (Copying())
            Copying()->Stop();
    });
    OnClick(ui_->cmdFindPanels, [] { OpenDialog(FormNames::wTechFindPanels); });
    OnClick(ui_->cmdPerturb, [] { OpenDialog(FormNames::wTechConsignations); });
    OnClick(ui_->cmdDiagnosis, [] { OpenDialog(FormNames::wTechDiagnosis); });
    OnClick(ui_->cmdPanelState, [this] { cmdPanelState_Click(); });
    OnClick(ui_->cmdPanelReset,
            [this] { Ask(ResetIt, reset_, Registers::PanelCommand, Registers::Acknowledge); });
    OnClick(ui_->cmdRazCptr, [this] { Ask(ClearIt, clear_, Registers::Clock, 0); });
    OnClick(ui_->cmdTestLeds, [this] { Send(leds_, Registers::TestLeds, 1); });
    const std::pair<TechCommand*, QLabel*> outcomes[] = {
        {&reset_, ui_->lblReset}, {&clear_, ui_->lblRazCptr}, {&leds_, ui_->lblTestLeds}};
    for (const auto& [command, label] : outcomes)
        connect(command, &TechCommand::Changed, this,
                [this, command = command, label = label] { ShowOutcome(*command, *label); });
}

void wTechnician::Form_Load() {
    Guard("wTechnician.Form_Load", [&] {
        if (wPolling* polling = Polling()) {
            connect(polling, &wPolling::PollDone, this, &wTechnician::mwPolling_PollDone);
            connect(polling, &wPolling::RunChanged, this, &wTechnician::ShowRun);
        }
        ui_->imgComm_1->hide();
        ShowRehearsal();
        ShowRun();
        ui_->lblNumero->setCaption(IniRead(General, TechPanel, QStringLiteral("0")));
        lblNumero_Change();
        if (Copying())
            connect(Copying(), &TraceCopy::Changed, this, &wTechnician::ShowCopy);
        ShowCopy();
    });
}

/// The word for all modules can land in the settings as well.
void wTechnician::Form_Unload() {
    Guard("wTechnician.Form_Unload",
          [&] { IniWrite(General, TechPanel, ui_->lblNumero->Caption()); });
}

int wTechnician::Numero() const {
    return qBound(0, ui_->lblNumero->Number(), ConfigClass::PanelCount);
}

void wTechnician::setNumero(int number) {
    ui_->lblNumero->setCaption(QString::number(number));
}

void wTechnician::lblNumero_Change() {
    const int number = Numero();
    const auto& site = Global::Configuration();
    ui_->lblPanelType->setText(number == 0 ? QString() : ModuleName(ModelOf(number)));
    const QString title = number == 0 ? QString() : site.Panel(number).TitleLine().trimmed();
    ui_->lblPanelTitle->setText(ui_->lblPanelTitle->fontMetrics().elidedText(
        title, Qt::ElideRight, ui_->lblPanelTitle->width()));
    if (number == 0)
        ui_->lblNumero->setCaption(GetText(AllModules));
    for (QLabel* outcome : {ui_->lblReset, ui_->lblRazCptr, ui_->lblTestLeds})
        outcome->clear();
    VisiButtons();
}

void wTechnician::VisiButtons() {
    const int number = Numero();
    const int model = ModelOf(number);
    const bool acknowledges = model == Models::Q7100 || model == Models::Q7000;
    ui_->cmdPanelState->setEnabled(model >= Models::Q7100);
    ui_->cmdPanelReset->setEnabled(acknowledges);
    ui_->cmdRazCptr->setEnabled(number == 0 || acknowledges);
    ui_->cmdTestLeds->setEnabled(number == 0 || model >= Models::Q7100);
    for (const int index : {TenBack, OneBack})
        Control(StepImages, index)->setEnabled(number > 0);
    for (const int index : {OneOn, TenOn})
        Control(StepImages, index)->setEnabled(number < ConfigClass::PanelCount);
}

void wTechnician::ShowRun() {
    const bool on = Polling() != nullptr && Polling()->Run();
    ui_->imgStopRun_0->setVisible(on);
    ui_->imgStopRun_1->setVisible(!on);
    ui_->lblRun->setText(GetText(on ? Running : Stopped));
}

/// Painted at once: with the polling stopped the command holds up everything until its tries are
/// over. What comes of a command to another module than the one that is chosen by now isn't told.
void wTechnician::ShowOutcome(const TechCommand& command, QLabel& label) {
    if (command.Module() != Numero())
        return;
    const bool toAll = command.Outcome() == TechCommand::State::Obeyed && Numero() == 0;
    label.setText(GetText(
        toAll ? SentToAll : FirstOutcome - int(TechCommand::State::Sent) + int(command.Outcome())));
    label.repaint();
}

void wTechnician::imgControl_Click(int index) {
    constexpr int Steps[] = {-10, -1, 1, 10};
    setNumero(qBound(0, Numero() + Steps[index], ConfigClass::PanelCount));
}

void wTechnician::imgStopRun_Click(int index) {
    if (Polling() == nullptr)
        return;
    const QPointer<wTechnician> self(this);
    Polling()->setRun(index != 0);
    if (!IsLoaded(self.data()))
        return;
    ShowRun();
    VisiButtons();
}

void wTechnician::imgNavig_Click(int index) {
    if (index == Help) {
        ShowHelp();
        return;
    }
    Forms::Show(FormNames::wMain);
    Unload();
}

void wTechnician::cmdPanelState_Click() {
    const int number = Numero();
    if (ModelOf(number) < Models::Q7100 || ModelOf(number) > Models::P5500)
        return;
    if (auto* front = dynamic_cast<ModuleFront*>(Forms::Load(FormNames::wTechEtatModule)))
        front->Present(Global::Configuration().Panel(number));
}

void wTechnician::Ask(int text, TechCommand& command, int registerNo, int value) {
    const QPointer<wTechnician> self(this);
    const int answer = Message(GetText(text), Messages::Question | Messages::OkCancel);
    if (answer == Messages::Ok && IsLoaded(self.data()))
        Send(command, registerNo, value);
}

/// Module 0 is all of them.
void wTechnician::Send(TechCommand& command, int registerNo, int value) {
    command.SendCommand(std::make_shared<CommandClass>(qint16(Numero()), registerNo,
                                                       Words{qint16(value)}, DateTimes::Now()));
}

/// Nothing yields until it is through, so the notice is all that is seen.
void wTechnician::cmdSynchroMinuit_Click() {
    Guard("wTechnician.cmdSynchroMinuit_Click", [&] {
        if (Polling() == nullptr)
            return;
        const QPointer<wTechnician> self(this);
        setEnabled(false);
        Pointer::Hourglass();
        const auto restored = qScopeGuard([self] {
            Pointer::Default();
            if (!IsLoaded(self.data()))
                return;
            self->setEnabled(true);
            self->BringToFront();
        });
        Polling()->MidnightSynchro(GetText(MidnightNotice));
    });
}

void wTechnician::cmdForceHisto_Click() {
    Guard("wTechnician.cmdForceHisto_Click", [] {
        Pointer::Hourglass();
        const auto restored = qScopeGuard([] { Pointer::Default(); });
        HistoProcs::DoMidnightActions(Polling()->Second());
    });
}

void wTechnician::cmdCopyTraces_Click() {
    Guard("wTechnician.cmdCopyTraces_Click", [&] {
        const QString target = TargetFolder();
        if (target == TraceFolder() ||
            (Copying() && Copying()->Outcome() == TraceCopy::State::Running))
            return;
        const platform::Medium medium = platform::MediumOf(target);
        if (medium != platform::Medium::There) {
            Message(GetText(medium == platform::Medium::Missing ? NoDrive : DriveNotReady),
                    Messages::Critical);
            return;
        }
        if (!platform::MakeFolder(target)) {
            Message(GetText(FolderNotMade), Messages::Critical);
            return;
        }
        delete Copying().data();
        Copying() = new TraceCopy(TraceFolder(), target, Polling());
        connect(Copying(), &TraceCopy::Changed, this, &wTechnician::ShowCopy);
        ShowCopy();
    });
}

void wTechnician::ShowCopy() {
    const TraceCopy* copy = Copying();
    ui_->frmFrames_1->setVisible(copy != nullptr);
    ui_->lblCopy->setVisible(copy != nullptr);
    ui_->cmdStopCopy->setVisible(copy != nullptr && copy->Outcome() == TraceCopy::State::Running);
    if (copy == nullptr)
        return;
    QString text = GetText(FirstCopyState + int(copy->Outcome()));
    const std::pair<const char*, QString> parts[] = {
        {"$1", QString::number(copy->Files())},
        {"$2", QString::number(copy->AllFiles())},
        {"$3", Megabytes(copy->Bytes())},
        {"$4", copy->Target()},
        {"$5", copy->FileName()},
        {"$6", ErrorHandling::RunTimeText(copy->Error())}};
    for (const auto& [mark, part] : parts)
        text.replace(QLatin1String(mark), part);
    SetCaption(ui_->lblCopy, text.replace(u'|', u'\n'));
}

void wTechnician::ShowRehearsal() {
    ui_->cmdRehearse->setVisible(!Rehearsal::Runs());
    ui_->cmdRehearse->setEnabled(Rehearsal::HasSimulator());
    ui_->lblRehearse->setVisible(!Rehearsal::Runs() && !Rehearsal::HasSimulator());
}

/// The plant is left alone meanwhile: whoever stopped its bus knows that.
void wTechnician::cmdRehearse_Click() {
    if (Polling() == nullptr || Rehearsal::Runs())
        return;
    const bool running = Polling()->Run();
    if (running || SimulatedSite::ScenarioOf(Global::Configuration()).isEmpty()) {
        Message(GetText(running ? StopTheBus : NothingToPlay), Messages::Critical);
        return;
    }
    BeginRehearsal();
}

void wTechnician::mwPolling_PollDone() {
    const bool first = ui_->imgComm_0->isHidden();
    ui_->imgComm_0->setVisible(first);
    ui_->imgComm_1->setVisible(!first);
}
