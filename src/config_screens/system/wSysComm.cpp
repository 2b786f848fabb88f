#include "config_screens/system/wSysComm.h"

#include "bus/LineOpening.h"
#include "bus/wPolling.h"
#include "config_screens/dlgPortDevice.h"
#include "core/Bytes.h"
#include "core/Config.h"
#include "core/ErrorHandling.h"
#include "core/Message.h"
#include "core/SLVfonctions.h"
#include "model/BusSettings.h"
#include "model/CurrentConfig.h"
#include "platform/RunTimeError.h"
#include "screens/dialogs/dlgListInput.h"
#include "screens/dialogs/wHelp.h"
#include "screens/menu/BusConfig.h"
#include "screens/touch/FieldPointer.h"
#include "screens/touch/KeptEdit.h"
#include "screens/touch/Navigation.h"
#include "screens/touch/ValueLabel.h"
#include "ui_wSysComm.h"

#include <QApplication>
#include <QPointer>
#include <QTimer>
#include <array>
#include <utility>

using SLVfonctions::PortSetting;

namespace {

constexpr int No = 10001;
constexpr int Yes = 10002;
constexpr int EntryIncomplete = 20006;
constexpr int PortFails = 630100;
constexpr int PortOfThePrinter = 630231;
constexpr int Rs485Refused = 301321;

enum Fields { PortField, SpeedField, StopField, AutoStartField, FieldCount };
const std::array<QString, FieldCount> Descriptors = {QStringLiteral("*|1|255"),
                                                     QStringLiteral("@|1200|2400|4800|9600|19200"),
                                                     QStringLiteral("*|1|2"), QStringLiteral("$")};

bool IsNumeric(const QString& text) {
    bool isNumber = false;
    text.trimmed().toInt(&isNumber);
    return isNumber;
}

/// Puts the link on another port, or on another device of its port. False when it is to be open and
/// can't be.
bool MoveLink(int port, bool open) {
    platform::SerialLink& link = Polling()->CommBus();
    try {
        link.setPortOpen(false);
        link.setCommPort(port);
        if (open)
            OpenLine(link);
    } catch (const platform::RunTimeError&) {
        // Told by the caller.
    }
    return link.PortOpen() == open;
}

/// Puts the link back when nobody is there to answer: a bus that ran goes on, at the latest when
/// its port comes.
void PutBack(int port, bool run) {
    ErrorHandling::Guard("wSysComm.PutBack", [&] {
        if (Polling()->Run())
            Polling()->setRun(false);
        MoveLink(port, true);
        Q_EMIT Polling()->LinkChanged();
        if (run)
            Polling()->RunWhenPortComes();
    });
}

bool RefusesRs485() {
    using Answer = platform::LineFeatures::Answer;
    return Polling() != nullptr && Polling()->CommBus().PortOpen() &&
           Polling()->CommBus().Features().rs485 == Answer::Refused;
}

} // namespace

struct wSysComm::Memory {
    KeptEdit<Edit> edit;
};

wSysComm::Memory& wSysComm::Kept() {
    static Memory memory;
    return memory;
}

/// The settings hold the device that is edited already.
wSysComm::Edit wSysComm::OfSite() const {
    const ConfigClass& site = Global::Configuration();
    const BusSettings settings = BusSettings::Of(site.BusSettings());
    Edit edit{settings.port, {}, settings.speed, settings.stop, site.AutoStart()};
    if (IsNumeric(edit.port))
        edit.meaning = devices_.Former(BusSettings::PortName(edit.port.toInt()));
    return edit;
}

wSysComm::wSysComm()
    : ConfigForm(FormNames::wSysComm)
    , ui_(std::make_unique<Ui::wSysComm>())
    , edit_([this] { return OfSite(); }) {
    ui_->setupUi(this);
    Prepare();
    pointer_ = new FieldPointer(
        this, {ui_->lblBusPort, ui_->lblBusSpeed, ui_->lblBusStop, ui_->lblAutoStart},
        ui_->imgBusDir_0, ui_->imgBusDir_1);
    connect(pointer_, &FieldPointer::Moved, this,
            [this](int place) { ui_->lblBusPointer->setNum(place + 1); });
    ui_->lblBusPointer->setNum(pointer_->Place() + 1);
    OnClick(QStringLiteral("imgBusDir"),
            [this](int index) { pointer_->MoveBy(index == 0 ? -1 : 1); });
    OnClick(ui_->imgBusModif, [this] { imgBusModif_Click(); });
    OnClick(ui_->chkAutoStart, [this] { chkAutoStart_Click(); });
    OnClick(ui_->chkRs485, [this] { chkRs485_Click(); });
    OnClick(ui_->imgPortDevice, [this] { imgPortDevice_Click(); });
    OnClick(ui_->lblPortDevice, [this] { imgPortDevice_Click(); });
    OnClick(ui_->imgCommWatch, [this] { imgCommWatch_Click(); });
    OnClick(QStringLiteral("imgNavig"), [this](int index) { imgNavig_Click(index); });
    OnClick(ui_->imgClose, [this] { LeaveToMenu(int(MenuTile::System)); });
    if (Polling() != nullptr)
        connect(Polling(), &wPolling::LinkChanged, this, &wSysComm::ShowLink);
    if (auto kept = Kept().edit.Take(edit_.Original())) {
        *edit_ = std::move(*kept);
        ShowKept(true);
    }
    ShowEdit();
    ShowLink();
}

wSysComm::~wSysComm() = default;

void wSysComm::ShowEdit() {
    ui_->lblBusPort->setCaption(edit_->port);
    ui_->lblBusSpeed->setCaption(edit_->speed);
    ui_->lblBusStop->setCaption(edit_->stop);
    ui_->chkAutoStart->setChecked(edit_->autoStart);
    ui_->lblAutoStart->setCaption(GetText(edit_->autoStart ? Yes : No));
    ShowDevice();
}

void wSysComm::ShowDevice() {
    const QString& device = edit_->meaning.device;
    const bool any = !device.isEmpty();
    QString use = any ? PortUseText(PortPurpose::Bus, device) : QString();
    if (edit_->meaning.rs485 && RefusesRs485())
        use += QStringLiteral("  \u2013  ") + GetText(Rs485Refused);
    ui_->lblPortDevice->setCaption(any ? PortDeviceName(device) : QString());
    ui_->lblPortUse->setText(use);
    ui_->imgPortDevice->setEnabled(any);
    ui_->chkRs485->setEnabled(any);
    ui_->chkRs485->setChecked(edit_->meaning.rs485);
}

void wSysComm::ShowLink() {
    if (Polling() == nullptr)
        return;
    int label = FirstBusConfigLabel;
    for (const QString& text : BusConfigTexts(Polling()->CommBus()))
        SetCaption(QStringLiteral("lblBusConfig"), label++, text);
}

void wSysComm::imgBusModif_Click() {
    const int place = pointer_->Place();
    const QPointer<wSysComm> self(this);
    const auto value = AskValue(this, Descriptors[size_t(place)], pointer_->Field()->Caption());
    if (!value || !IsLoaded(self.data()))
        return;
    switch (place) {
    case PortField:
        if (IsNumeric(*value))
            ChangePort(*value);
        return;
    case SpeedField:
        edit_->speed = *value;
        break;
    case StopField:
        edit_->stop = *value;
        break;
    default:
        edit_->autoStart = *value == GetText(Yes);
    }
    ShowEdit();
}

void wSysComm::chkAutoStart_Click() {
    pointer_->setPlace(AutoStartField);
    edit_->autoStart = ui_->chkAutoStart->isChecked();
    ShowEdit();
}

/// It waits for no answer, as the device doesn't: the bus shows whether it works.
void wSysComm::chkRs485_Click() {
    edit_->meaning.rs485 = ui_->chkRs485->isChecked();
    NameDevice();
    if (otherDevice_)
        ApplyPort(edit_->port.toInt());
    else
        ShowDevice();
}

void wSysComm::ChangePort(const QString& port) {
    const int number = Bytes::ShortVal(port);
    const PortSetting meaning = SLVfonctions::PortOf(BusSettings::PortName(number));
    if (IsOfOtherPurpose(PortPurpose::Bus, meaning.device)) {
        Message(GetText(PortOfThePrinter), Messages::Critical);
        return;
    }
    edit_->port = port;
    edit_->meaning = meaning;
    if (Polling() != nullptr && Polling()->CommBus().CommPort() != number)
        ApplyPort(number);
    else
        ShowEdit();
}

void wSysComm::imgPortDevice_Click() {
    if (!IsNumeric(edit_->port)) {
        QApplication::beep();
        return;
    }
    const int number = edit_->port.toInt();
    const QPointer<wSysComm> self(this);
    const auto device =
        AskPortDevice(PortPurpose::Bus, BusSettings::PortName(number), edit_->meaning.device);
    if (!device || !IsLoaded(self.data()))
        return;
    edit_->meaning.device = *device;
    NameDevice();
    if (otherDevice_)
        ApplyPort(number);
    else
        ShowDevice();
}

/// Has the port that is edited mean what is shown.
void wSysComm::NameDevice() {
    if (devices_.Name(BusSettings::PortName(edit_->port.toInt()), edit_->meaning))
        otherDevice_ = true;
}

/// True when the bus is to go on afterwards.
bool wSysComm::StopBus() {
    const bool run = Polling()->Run();
    if (run)
        Polling()->setRun(false);
    return std::exchange(stoppedByPort_, false) || run;
}

bool wSysComm::MovePort(int port, bool open) {
    otherDevice_ = false;
    return MoveLink(port, open);
}

/// The start may read the whole bus: the form may be gone afterwards.
void wSysComm::StartBus(bool run) {
    stoppedByPort_ = run && !Polling()->CommBus().PortOpen();
    Q_EMIT Polling()->LinkChanged();
    if (run && !stoppedByPort_)
        Polling()->setRun(true);
}

void wSysComm::ApplyPort(int port) {
    ErrorHandling::Guard("wSysComm.ApplyPort", [&] {
        if (Polling() == nullptr)
            return;
        const bool run = StopBus();
        const bool opened = MovePort(port, true);
        ShowEdit();
        StartBus(run);
        if (!opened)
            Message(GetText(PortFails), Messages::Warning);
    });
}

bool wSysComm::UpdateConfig() {
    bool applied = false;
    ErrorHandling::Guard("wSysComm.UpdateConfig", [&] {
        const Edit edit = *edit_;
        if (!IsNumeric(edit.port) || !IsNumeric(edit.speed) || !IsNumeric(edit.stop) ||
            Polling() == nullptr)
            return;
        NameDevice();
        devices_.Settle();
        platform::SerialLink& link = Polling()->CommBus();
        const int port = edit.port.toInt();
        bool works = true;
        bool run = false;
        if (port != link.CommPort() || otherDevice_ || stoppedByPort_) {
            const bool open = link.PortOpen() || stoppedByPort_;
            run = StopBus();
            works = MovePort(port, open);
        }
        try {
            link.setSettings(BusSettings::Line(edit.speed, edit.stop));
        } catch (const platform::RunTimeError&) {
            works = false;
        }
        ConfigClass& site = Global::Configuration();
        site.setBusSettings(BusSettings::Text(port, link.Settings()));
        site.setAutoStart(edit.autoStart);
        applied = true;
        // A failure to save is told, and the bus waits for no answer.
        StartBus(run);
        SaveSite();
        if (!works)
            Message(GetText(PortFails), Messages::Warning);
    });
    return applied;
}

bool wSysComm::Take() {
    if (UpdateConfig())
        return true;
    Message(GetText(EntryIncomplete), Messages::Critical);
    return false;
}

/// The port goes back to what the site has.
void wSysComm::Drop() {
    otherDevice_ = devices_.PutBack() || otherDevice_;
    edit_.Reload();
    UpdateConfig();
}

/// Nobody said that the bus is to stay where the edit has put it. An alarm comes in the middle of a
/// round, which is not to lose its link.
void wSysComm::Keep() {
    const Edit edit = *edit_;
    otherDevice_ = devices_.PutBack() || otherDevice_;
    edit_.Reload();
    Kept().edit.Keep(edit_.Original(), edit);
    if (Polling() == nullptr || !IsNumeric(edit_->port))
        return;
    const int port = edit_->port.toInt();
    const bool run = stoppedByPort_ || Polling()->Run();
    if (port != Polling()->CommBus().CommPort() || otherDevice_ || stoppedByPort_)
        QTimer::singleShot(0, Polling(), [port, run] { PutBack(port, run); });
}

/// The polling screen stays loaded; what waits for it must not stay before the console. A port that
/// isn't chosen any more may have another device though nothing differs.
void wSysComm::Closing() {
    devices_.PutBack();
    Forms::Form* watch = watches_ ? Forms::Find(FormNames::wPolling) : nullptr;
    if (watch != nullptr)
        watch->Hide();
}

void wSysComm::imgCommWatch_Click() {
    auto* watch = dynamic_cast<ScreenForm*>(Forms::Load(FormNames::wPolling));
    if (watch == nullptr)
        return;
    const QPointer<wSysComm> self(this);
    watches_ = true;
    watch->ShowModal();
    if (!IsLoaded(self.data()))
        return;
    watches_ = false;
    ShowLink();
    ShowDevice();
}

void wSysComm::imgNavig_Click(int index) {
    if (index == ToMenu)
        Leave();
    else if (index == Help)
        ShowHelp();
}
