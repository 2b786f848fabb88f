#include "screens/remote/wTeleCmde.h"

#include "bus/Registers.h"
#include "bus/wPolling.h"
#include "core/Bytes.h"
#include "core/Config.h"
#include "core/ErrorHandling.h"
#include "core/FormNames.h"
#include "core/Global.h"
#include "core/Message.h"
#include "model/CurrentConfig.h"
#include "model/Models.h"
#include "screens/dialogs/dlgConsigne.h"
#include "screens/remote/Telecommande.h"
#include "ui_wTeleCmde.h"

#include <QFrame>

using ErrorHandling::Guard;

namespace {

const QString Lamps = QStringLiteral("lblVoyant");

/// An order is the button's index times this.
constexpr int OrderStep = 3;

constexpr int RepaintPeriodMs = 250;
constexpr int LampRows = 2;
constexpr int LampGap = 6;
constexpr int MarkWidth = 3;

/// Words of the states 0, 1 and all others.
constexpr int AtRestText = 712006;
constexpr int ActiveText = 712007;
constexpr int OtherStateText = 712008;
constexpr int WaitText = 712005;
constexpr int MissingText = 714103;
constexpr int FailedText = 714104;
/// Place of the legend that shows the lamp of a missing module.
constexpr int MissingLegend = 3;

/// The line above an instruction.
QString Origin(const PanelClass& panel, int channel) {
    const Global::State& global = Global::Get();
    return global.panelMark + Bytes::Padded(panel.Numero(), 2) + u'-' + global.channelMark +
           Bytes::Padded(channel, 2) + u' ' + panel.Channel(channel).ScreenText();
}

bool IsQueued(const wPolling& comm, const CommandPtr& command) {
    for (int position = 1; position <= comm.Commands().Count(); ++position) {
        if (comm.Commands().Item(position) == command)
            return true;
    }
    return false;
}

/// Queues a command and gives the one that waits: an equal one that was there stays in its place.
CommandPtr Queue(wPolling& comm, const CommandPtr& command) {
    comm.SendCommand(command);
    for (int position = 1; position <= comm.Commands().Count(); ++position) {
        if (comm.Commands().Item(position)->SameAs(*command))
            return comm.Commands().Item(position);
    }
    return command;
}

} // namespace

wTeleCmde::wTeleCmde()
    : ScreenForm(FormNames::wTeleCmde)
    , ui_(std::make_unique<Ui::wTeleCmde>()) {
    ui_->setupUi(this);
    Prepare();
    Form_Load();
}

wTeleCmde::~wTeleCmde() = default;

void wTeleCmde::Form_Load() {
    Guard("wTeleCmde.Form_Load", [&] {
        shpSelection_ = new QFrame(ui_->fraVoyants);
        shpSelection_->setObjectName(QStringLiteral("shpSelection"));
        shpSelection_->setStyleSheet(
            QStringLiteral("border: %1px solid #FFFFFF; border-radius: 8px;").arg(MarkWidth));
        shpSelection_->setAttribute(Qt::WA_TransparentForMouseEvents);
        shpSelection_->hide();
        for (const int state : Indices(QStringLiteral("imgLegend")))
            Control<Voyant>(QStringLiteral("imgLegend"), state)
                ->setState(qint16(state), state == MissingLegend);
        OnClick(QStringLiteral("ImgTcmde"), [this](int index) { ImgTcmde_Click(index); });
        OnClick(ui_->imgConsigne, [this] { imgConsigne_Click(); });
        OnClick(ui_->imgClose, [this] { Close(); });
        connect(&tmrPoll_, &QTimer::timeout, this, &wTeleCmde::tmrPoll_Timer);
        tmrPoll_.start(RepaintPeriodMs);
        if (Polling() != nullptr)
            connect(Polling(), &wPolling::WriteError, this, [this] { DropSettled(); });
        ui_->lblWait->hide();
        ShowSelection();
    });
}

void wTeleCmde::Form_Unload() {
    tmrPoll_.stop();
    waiting_.clear();
    panel_ = nullptr;
}

void wTeleCmde::Nationality() {
    Guard("wTeleCmde.Nationality", [&] {
        ScreenForm::Nationality();
        ShowTitle();
    });
}

void wTeleCmde::setPanel(const PanelClass* panel) {
    panel_ = panel;
    MiseEnFormeModule();
    tmrPoll_Timer();
}

void wTeleCmde::ShowTitle() {
    ui_->lblTitle->setText(panel_ == nullptr
                               ? GetText(710005)
                               : GetText(710005) + QStringLiteral(" - ") + panel_->TitleLine());
}

void wTeleCmde::MiseEnFormeModule() {
    Guard("wTeleCmde.MiseEnFormeModule", [&] {
        ui_->lblNum->setText(panel_ ? Bytes::Padded(panel_->Numero(), 2) : QString());
        ui_->lblModType->setText(panel_ ? ModuleName(panel_->Model()) : QString());
        ShowTitle();
        qDeleteAll(lamps_);
        lamps_.clear();
        channel_ = 0;
        if (panel_ != nullptr)
            MakeLamps();
        ShowSelection();
    });
}

void wTeleCmde::MakeLamps() {
    const QRect area = ui_->fraVoyants->rect();
    const int count = panel_->ChannelCount();
    const int columns = (count + LampRows - 1) / LampRows;
    for (int i = 0; i < count; ++i) {
        auto* lamp = new Voyant(ui_->fraVoyants);
        lamp->setObjectName(Lamps + u'_' + QString::number(i + 1));
        lamp->setCaption(i + 1, panel_->Channel(i + 1).ScreenText());
        const int left = i % columns * (area.width() + LampGap) / columns;
        const int right = (i % columns + 1) * (area.width() + LampGap) / columns - LampGap;
        const int height = (area.height() - LampGap * (LampRows - 1)) / LampRows;
        lamp->setGeometry(left, i / columns * (height + LampGap), right - left, height);
        lamp->show();
        lamps_.append(lamp);
    }
    shpSelection_->raise();
    OnClick(Lamps, [this](int index) { lblVoyant_Click(index); });
}

void wTeleCmde::lblVoyant_Click(int index) {
    channel_ = index;
    failed_ = false;
    ShowSelection();
    ShowWait();
}

void wTeleCmde::ShowSelection() {
    const bool chosen = panel_ != nullptr && channel_ > 0;
    ui_->lblChnlNo->setText(QString::number(channel_));
    ui_->lblChnlText->setText(chosen ? panel_->Channel(channel_).ScreenText() : GetText(712009));
    shpSelection_->setVisible(chosen);
    ui_->lblState->setVisible(chosen);
    if (!chosen)
        return;
    shpSelection_->setGeometry(Control(Lamps, channel_)->geometry());
    const qint16 state = panel_->Channel(channel_).State();
    ui_->lblState->setText(GetText(IsMissing(*panel_) ? MissingText
                                   : state == 0       ? AtRestText
                                   : state == 1       ? ActiveText
                                                      : OtherStateText));
}

/// The waiting is no loop in here: a press may arrive inside a round of the bus, which carries
/// the command out only when the press has been dealt with. A press while another is still
/// waited for is an order of its own, as the one that takes the first back.
void wTeleCmde::ImgTcmde_Click(int index) {
    wPolling* comm = Polling();
    if (comm == nullptr || !comm->Run()) {
        Message(GetText(220101), Messages::Critical);
        return;
    }
    if (panel_ == nullptr || channel_ == 0) {
        Message(GetText(220100), Messages::Critical);
        return;
    }
    const auto order = std::make_shared<CommandClass>(
        panel_->Numero(), Registers::ForcedStateBase + channel_, Words{qint16(index * OrderStep)});
    failed_ = false;
    waiting_.append(Queue(*comm, order));
    DropSettled();
}

void wTeleCmde::imgConsigne_Click() {
    if (panel_ == nullptr || channel_ == 0) {
        Message(GetText(220100), Messages::Critical);
        return;
    }
    const int number = panel_->Channel(channel_).HelpNum();
    const QString text =
        number == 0 ? QString() : Global::Configuration().ConsigneText(number).trimmed();
    dlgConsigne::Present(Origin(*panel_, channel_), text.isEmpty() ? GetText(710021) : text);
}

void wTeleCmde::tmrPoll_Timer() {
    Guard("wTeleCmde.tmrPoll_Timer", [&] {
        DropSettled();
        if (panel_ == nullptr)
            return;
        const bool missing = IsMissing(*panel_);
        for (int i = 0; i < lamps_.size(); ++i)
            lamps_[i]->setState(panel_->Channel(i + 1).State(), missing);
        ShowSelection();
    });
}

/// Done, given up, or nobody there who would send it: the engine keeps what it still has for its
/// next start.
void wTeleCmde::DropSettled() {
    const wPolling* comm = Polling();
    if (comm == nullptr || !comm->Run() || comm->IsClosing())
        waiting_.clear();
    waiting_.removeIf([&](const CommandPtr& command) {
        failed_ |= command->ErrorCount() >= CommandClass::MaxErrors;
        return command->CmdType() == CommandTypes::Done ||
               command->ErrorCount() >= CommandClass::MaxErrors || !IsQueued(*comm, command);
    });
    ShowWait();
}

/// What keeps an order from being carried out, in words; what goes on comes first.
void wTeleCmde::ShowWait() {
    const bool waits = !waiting_.isEmpty();
    const bool missing = panel_ != nullptr && IsMissing(*panel_);
    ui_->lblWait->setVisible(waits || failed_ || missing);
    ui_->lblWait->setText(GetText(waits ? WaitText : failed_ ? FailedText : MissingText));
    ui_->lblWait->setStyleSheet(waits ? QString() : QStringLiteral("color: #FFA64D;"));
}

void wTeleCmde::Close() {
    Unload();
    const QString below =
        NbInstances(FormNames::wTeleCmdes) > 0 ? FormNames::wTeleCmdes : FormNames::wRunAlarms;
    Forms::Show(below);
    Forms::BringToFront(below);
}
