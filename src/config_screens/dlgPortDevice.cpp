#include "config_screens/dlgPortDevice.h"

#include "core/Bytes.h"
#include "core/Config.h"
#include "core/FormNames.h"
#include "core/Message.h"
#include "core/SLVfonctions.h"
#include "model/BusSettings.h"
#include "model/CurrentConfig.h"
#include "screens/touch/ModalDialog.h"
#include "screens/touch/ResizeForm.h"
#include "screens/touch/TouchList.h"
#include "ui_dlgPortDevice.h"

#include <QApplication>

using platform::PortDevice;
using platform::Ports;
using platform::PortUse;

namespace {

enum Texts {
    Title = 630220,
    Free,
    UsedByBus,
    UsedByPrinter,
    UsedByProgram,
    UsedByAnother,
    NoRight,
    NotThere,
    BelongsToPrinter = 630231,
    BelongsToBus = 714061
};

/// Device of the bus or of the printer as the site has it; empty for none.
QString DeviceFor(PortPurpose purpose) {
    const ConfigClass& site = Global::Configuration();
    QString port = site.PrtSettings().section(u':', 0, 0);
    if (purpose == PortPurpose::Bus) {
        const QString number = BusSettings::Of(site.BusSettings()).port;
        port = number.isEmpty() ? QString() : BusSettings::PortName(Bytes::ShortVal(number));
    }
    return port.isEmpty() ? QString() : SLVfonctions::DevicePath(port);
}

bool IsFor(PortPurpose purpose, const QString& path) {
    const QString device = DeviceFor(purpose);
    return !device.isEmpty() && Ports::SameDevice(device, path);
}

QString SelfDescription(const PortDevice& device) {
    QStringList words = {device.maker, device.description, device.serialNumber};
    words.removeAll(QString());
    return words.join(u' ');
}

} // namespace

dlgPortDevice::dlgPortDevice(PortPurpose purpose, const QString& portName, const QString& present)
    : ScreenForm(FormNames::dlgPortDevice, Kind::Dialog)
    , ui_(std::make_unique<Ui::dlgPortDevice>())
    , purpose_(purpose)
    , serial_(!portName.startsWith(QLatin1String("LPT"), Qt::CaseInsensitive))
    , present_(present) {
    ui_->setupUi(this);
    Prepare();
    OnKey(Qt::Key_Return, [this] { Control_Click(Confirm); });
    OnKey(Qt::Key_Escape, [this] { Control_Click(Cancel); });
    MakeTouchList(*ui_->lstDevices, IsScaled() ? CurrentScreenFactors().vertical : 1);
    ui_->lblTitle->setText(GetText(Title).replace(u'$', portName));
    OnClick(QStringLiteral("imgControl"), [this](int index) { Control_Click(index); });
    Fill();
}

dlgPortDevice::~dlgPortDevice() = default;

void dlgPortDevice::Fill() {
    const Ports ports = Ports::Current();
    devices_ = serial_ ? ports.SerialDevices() : ports.PrinterDevices();
    int row = -1;
    for (int i = 0; i < devices_.size(); ++i) {
        if (Ports::SameDevice(devices_[i].path, present_))
            row = i;
    }
    if (row < 0 && !present_.isEmpty()) {
        PortDevice missing;
        missing.path = present_;
        devices_.prepend(missing);
        row = 0;
    }
    ui_->lstDevices->clear();
    for (const PortDevice& device : std::as_const(devices_)) {
        const QString name = SelfDescription(device);
        const QString path = device.BestPath();
        const QString use = PortUseText(purpose_, device.path);
        new QListWidgetItem(
            (name.isEmpty() ? path + u'\n' : name + u'\n' + path + QStringLiteral("  \u2013  ")) +
                use,
            ui_->lstDevices);
    }
    ui_->lstDevices->setCurrentRow(row);
    ui_->lstDevices->setVisible(!devices_.isEmpty());
    ui_->lblNone->setVisible(devices_.isEmpty());
    ui_->imgControl_1->setEnabled(!devices_.isEmpty());
}

void dlgPortDevice::Control_Click(int index) {
    switch (index) {
    case ListAgain:
        Fill();
        break;
    case Confirm:
        Choose();
        break;
    default:
        Hide();
    }
}

void dlgPortDevice::Choose() {
    const int row = ui_->lstDevices->currentRow();
    if (row < 0) {
        QApplication::beep();
        return;
    }
    const PortDevice& device = devices_[row];
    if (IsOfOtherPurpose(purpose_, device.path)) {
        Message(GetText(purpose_ == PortPurpose::Bus ? BelongsToPrinter : BelongsToBus),
                Messages::Critical);
        return;
    }
    // The name in use stays as long as it leads there.
    chosen_ = Ports::SameDevice(device.path, present_) ? present_ : device.BestPath();
    Hide();
}

std::optional<QString> AskPortDevice(PortPurpose purpose, const QString& portName,
                                     const QString& present) {
    const auto chosen = RunDialog(
        new dlgPortDevice(purpose, portName, present), [](dlgPortDevice&) {},
        [](dlgPortDevice& dialog) { return dialog.Device(); });
    return chosen.value_or(std::nullopt);
}

QString PortDeviceName(const QString& path) {
    const Ports ports = Ports::Current();
    for (const PortDevice& device : ports.SerialDevices() + ports.PrinterDevices()) {
        const QString name = SelfDescription(device);
        if (!name.isEmpty() && Ports::SameDevice(device.path, path))
            return name + QStringLiteral("  \u2013  ") + device.path;
    }
    return path;
}

/// The own bus or printer may not have it open at the moment.
QString PortUseText(PortPurpose purpose, const QString& path) {
    if (IsOfOtherPurpose(purpose, path))
        return GetText(purpose == PortPurpose::Bus ? UsedByPrinter : UsedByBus);
    const PortUse use = Ports::Current().UseOf(path);
    switch (use.state) {
    case PortUse::State::Own:
        return GetText(purpose == PortPurpose::Bus ? UsedByBus : UsedByPrinter);
    case PortUse::State::Taken:
        return use.program.isEmpty() ? GetText(UsedByAnother)
                                     : GetText(UsedByProgram).replace(u'$', use.program);
    case PortUse::State::Forbidden:
        return GetText(NoRight);
    case PortUse::State::Absent:
        return GetText(NotThere);
    default:
        return GetText(Free);
    }
}

bool IsOfOtherPurpose(PortPurpose purpose, const QString& path) {
    return IsFor(purpose == PortPurpose::Bus ? PortPurpose::Printer : PortPurpose::Bus, path);
}
