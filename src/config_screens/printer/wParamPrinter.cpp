#include "config_screens/printer/wParamPrinter.h"

#include "bus/wPolling.h"
#include "config_screens/dlgPortDevice.h"
#include "config_screens/printer/dlgParamPrinter.h"
#include "core/Config.h"
#include "core/ErrorHandling.h"
#include "core/Message.h"
#include "core/SLVfonctions.h"
#include "events/PrinterDefinition.h"
#include "model/CurrentConfig.h"
#include "screens/dialogs/dlgListInput.h"
#include "screens/dialogs/wHelp.h"
#include "screens/touch/FieldPointer.h"
#include "screens/touch/KeptEdit.h"
#include "screens/touch/ModalDialog.h"
#include "screens/touch/Navigation.h"
#include "screens/touch/ResizeForm.h"
#include "screens/touch/TouchList.h"
#include "screens/touch/ValueLabel.h"
#include "ui_wParamPrinter.h"

#include <QFile>
#include <QPointer>
#include <array>

using ErrorHandling::Guard;

namespace {

const QString Ports = QStringLiteral("lblPort");
const QString ClassCodes = QStringLiteral("lblEscCode");
const QString ClassTitles = QStringLiteral("lblEscTitle");

/// Sequences of the site: 0 begins each line, the others are those of the classes.
constexpr int SequenceCount = 8;
constexpr int FirstClass = 1;

constexpr int FirstColor = 430120;
constexpr int FirstStyle = 430126;
constexpr int PortNotValid = 30014;
constexpr int NoPrinter = 30019;
constexpr int PrinterTaken = 30020;
constexpr int NoDefinition = 30021;
constexpr int PortFails = 20011;
constexpr int TestSent = 430310;
constexpr int FirstParity = 100021;

enum PortFields { NumberField, SpeedField, ParityField, BitsField, StopField };
const std::array<QString, 5> Descriptors{QStringLiteral("*|1|255"),
                                         QStringLiteral("@|1200|2400|4800|9600|19200"), QString(),
                                         QStringLiteral("*|7|8"), QStringLiteral("*|1|2")};
const QString LptDescriptor = QStringLiteral("*|1|9");

QStringList ParityWords() {
    QStringList words;
    for (int i = 0; i < PrinterSettings::ParityLetters.size(); ++i)
        words += GetText(FirstParity + i);
    return words;
}

QString ParityWord(const QString& letter) {
    const qsizetype place = PrinterSettings::ParityLetters.indexOf(letter);
    return letter.size() == 1 && place >= 0 ? ParityWords()[place] : PrinterSettings::Unread;
}

/// A class in words: its colour, then its styles.
QString WordsOf(const QString& code) {
    QString color;
    for (const QChar letter : code) {
        if (letter.isDigit())
            color += letter;
    }
    QString words = color.isEmpty() ? QString() : GetText(FirstColor + color.toInt());
    const QString letters = QStringLiteral("BIU");
    for (int place = 0; place < letters.size(); ++place) {
        if (code.contains(letters[place]))
            words += u' ' + GetText(FirstStyle + place + 1);
    }
    return words.trimmed();
}

} // namespace

struct wParamPrinter::Memory {
    KeptEdit<Edit> edit;
    QMap<QString, QString> devices;
};

wParamPrinter::Memory& wParamPrinter::Kept() {
    static Memory memory;
    return memory;
}

wParamPrinter::Edit wParamPrinter::OfSite() {
    const ConfigClass& site = Global::Configuration();
    Edit edit{PrinterSettings::Of(site.PrtSettings()), site.PrinterName(), {}, {}};
    for (int index = 0; index < SequenceCount; ++index) {
        edit.codes += site.PrinterInitCode(index);
        edit.sequences += site.PrinterInitString(index);
    }
    return edit;
}

wParamPrinter::wParamPrinter()
    : ConfigForm(FormNames::wParamPrinter)
    , ui_(std::make_unique<Ui::wParamPrinter>())
    , edit_(&OfSite) {
    ui_->setupUi(this);
    Prepare();
    ConnectControls();
    Guard("wParamPrinter.Form_Load", [this] { Form_Load(); });
}

wParamPrinter::~wParamPrinter() = default;

void wParamPrinter::ConnectControls() {
    comPointer_ = new FieldPointer(
        this,
        {ui_->lblComPort, ui_->lblComSpeed, ui_->lblComParity, ui_->lblComBits, ui_->lblComStop},
        ui_->imgComDir_0, ui_->imgComDir_1);
    QList<ValueLabel*> classes;
    for (const int index : Indices(ClassCodes))
        classes += Control<ValueLabel>(ClassCodes, index);
    charPointer_ = new FieldPointer(this, classes, ui_->imgCharDir_0, ui_->imgCharDir_1);
    OnClick(Ports, [this](int index) { lblPort_Click(index); });
    OnClick(QStringLiteral("lblPortName"), [this](int index) { lblPort_Click(index); });
    OnClick(ui_->imgPortDevice, [this] { lblPortDevice_Click(); });
    OnClick(ui_->lblPortDevice, [this] { lblPortDevice_Click(); });
    OnClick(QStringLiteral("imgComDir"),
            [this](int index) { comPointer_->MoveBy(index == 0 ? -1 : 1); });
    OnClick(QStringLiteral("imgCharDir"),
            [this](int index) { charPointer_->MoveBy(index == 0 ? -1 : 1); });
    OnClick(ui_->imgComModif, [this] { imgComModif_Click(); });
    OnClick(ui_->imgCharModif, [this] { imgCharModif_Click(); });
    OnClick(ui_->imgChangePrinter, [this] { imgChangePrinter_Click(); });
    OnClick(ui_->cmdPrintTest, [this] { cmdPrintTest_Click(); });
    OnClick(QStringLiteral("imgNavig"), [this](int index) { imgNavig_Click(index); });
    OnClick(ui_->imgClose, [this] { LeaveToMenu(int(MenuTile::Parameters)); });
    connect(ui_->lstPrinterName, &QListWidget::itemClicked, this, [this] {
        Guard("wParamPrinter.lstPrinterName_Click", [this] { lstPrinterName_Click(); });
    });
}

void wParamPrinter::Form_Load() {
    MakeTouchList(*ui_->lstPrinterName, IsScaled() ? CurrentScreenFactors().vertical : 1);
    ui_->lstPrinterName->addItems(PrinterDefinition::Names());
    auto kept = Kept().edit.Take(edit_.Original());
    ShowKept(kept.has_value());
    if (kept) {
        *edit_ = std::move(*kept);
        for (auto device = Kept().devices.cbegin(); device != Kept().devices.cend(); ++device) {
            formerDevices_.insert(device.key(), SLVfonctions::DevicePath(device.key()));
            SLVfonctions::setDevicePath(device.key(), device.value());
        }
    }
    Kept().devices.clear();
    ShowEdit();
}

void wParamPrinter::ShowEdit() {
    const auto found = ui_->lstPrinterName->findItems(edit_->printer, Qt::MatchExactly);
    ui_->lstPrinterName->setCurrentItem(found.isEmpty() ? nullptr : found.first());
    ShowPort();
    UpdatePrinterParams();
}

void wParamPrinter::ShowPort() {
    const PrinterSettings& port = edit_->port;
    for (const int index : Indices(Ports))
        Control<ValueLabel>(Ports, index)
            ->setCaption(index == int(port.kind) ? QStringLiteral("X") : QString());
    ui_->lblComPort->setCaption(port.comPort);
    ui_->lblComSpeed->setCaption(port.speed);
    ui_->lblComParity->setCaption(ParityWord(port.parity));
    ui_->lblComBits->setCaption(port.bits);
    ui_->lblComStop->setCaption(port.stop);
    ui_->lblLptPort->setCaption(port.lptPort);
    ui_->frmFrames_0->setVisible(port.kind == PrinterSettings::Kind::Serial);
    ui_->frmFrames_1->setVisible(port.kind == PrinterSettings::Kind::Parallel);
    const bool any = port.kind != PrinterSettings::Kind::None;
    const QList<QWidget*> forAPort{ui_->lblPortDevice, ui_->imgPortDevice, ui_->lblPortUse,
                                   ui_->imgComModif};
    for (QWidget* control : forAPort)
        control->setVisible(any);
    for (QWidget* control : {ui_->imgComDir_0, ui_->imgComDir_1})
        control->setVisible(port.kind == PrinterSettings::Kind::Serial);
    if (!any)
        return;
    const QString device = SLVfonctions::DevicePath(port.PortName());
    ui_->lblPortDevice->setCaption(PortDeviceName(device));
    ui_->lblPortUse->setText(PortUseText(PortPurpose::Printer, device));
}

void wParamPrinter::UpdatePrinterParams() {
    Guard("wParamPrinter.UpdatePrinterParams", [this] {
        for (const int index : Indices(ClassCodes))
            Control<ValueLabel>(ClassCodes, index)->setCaption(WordsOf(edit_->codes[index]));
    });
}

void wParamPrinter::lblPort_Click(int index) {
    edit_->port.kind = PrinterSettings::Kind(index);
    ShowPort();
}

/// Written at once, so that the port can be tried; taken back when the edit is dropped.
void wParamPrinter::lblPortDevice_Click() {
    const QString port = edit_->port.PortName();
    const QString present = SLVfonctions::DevicePath(port);
    const QPointer<wParamPrinter> self(this);
    const auto device = AskPortDevice(PortPurpose::Printer, port, present);
    if (!device || !IsLoaded(self.data()) || *device == present)
        return;
    if (!formerDevices_.contains(port))
        formerDevices_.insert(port, present);
    SLVfonctions::setDevicePath(port, *device);
    ShowPort();
}

void wParamPrinter::RestoreDevices() {
    for (auto former = formerDevices_.cbegin(); former != formerDevices_.cend(); ++former)
        SLVfonctions::setDevicePath(former.key(), former.value());
    formerDevices_.clear();
}

void wParamPrinter::imgComModif_Click() {
    Guard("wParamPrinter.imgComModif_Click", [this] {
        const bool serial = edit_->port.kind == PrinterSettings::Kind::Serial;
        const size_t field = size_t(comPointer_->Place());
        const ValueLabel* shown = serial ? comPointer_->Field() : ui_->lblLptPort;
        QString list = serial ? Descriptors[field] : LptDescriptor;
        if (serial && field == ParityField)
            list = QStringLiteral("@|") + ParityWords().join(u'|');
        const QPointer<wParamPrinter> self(this);
        const auto value = AskValue(this, list, shown->Caption());
        if (value && IsLoaded(self.data()))
            ChangePortField(*value);
    });
}

void wParamPrinter::ChangePortField(const QString& value) {
    PrinterSettings& port = edit_->port;
    if (port.kind == PrinterSettings::Kind::Parallel) {
        port.lptPort = value;
        ShowPort();
        return;
    }
    switch (comPointer_->Place()) {
    case NumberField:
        port.comPort = value;
        break;
    case SpeedField:
        port.speed = value;
        break;
    case ParityField:
        port.parity = PrinterSettings::ParityLetters.mid(ParityWords().indexOf(value), 1);
        break;
    case BitsField:
        port.bits = value;
        break;
    default:
        port.stop = value;
    }
    ShowPort();
}

void wParamPrinter::lstPrinterName_Click() {
    const QListWidgetItem* item = ui_->lstPrinterName->currentItem();
    if (item == nullptr)
        return;
    edit_->printer = item->text();
    const PrinterDefinition printer(PrinterDefinition::PathOf(edit_->printer));
    edit_->sequences[0] = printer.Init();
    for (int index = FirstClass; index < SequenceCount; ++index)
        edit_->sequences[index] = printer.SequenceOf(edit_->codes[index]);
}

void wParamPrinter::imgCharModif_Click() {
    Guard("wParamPrinter.imgCharModif_Click", [this] {
        if (ui_->lstPrinterName->currentItem() == nullptr) {
            Message(GetText(NoPrinter), Messages::Critical);
            return;
        }
        const QString path = PrinterDefinition::PathOf(edit_->printer);
        if (!QFile::exists(path)) {
            Message(GetText(NoDefinition), Messages::Critical);
            return;
        }
        const PrinterDefinition printer(path);
        const int index = charPointer_->Place() + FirstClass;
        const QPointer<wParamPrinter> self(this);
        const auto code = RunDialog(
            new dlgParamPrinter,
            [&](dlgParamPrinter& dialog) {
                dialog.setTitle(Control<QLabel>(ClassTitles, index)->text());
                dialog.setPrinter(printer);
                dialog.setCode(edit_->codes[index]);
            },
            [](const dlgParamPrinter& dialog) {
                return dialog.Ok() ? std::make_optional(dialog.Code()) : std::nullopt;
            });
        if (!code || !*code || !IsLoaded(self.data()))
            return;
        edit_->codes[index] = **code;
        edit_->sequences[index] = printer.EditedSequenceOf(**code);
        UpdatePrinterParams();
    });
}

void wParamPrinter::imgChangePrinter_Click() {
    if (ui_->lstPrinterName->currentItem() == nullptr)
        Message(GetText(NoPrinter), Messages::Critical);
    else
        Message(GetText(PrinterTaken), Messages::Information);
}

QString wParamPrinter::MakeSetting() const {
    return edit_->port.Text();
}

/// The engine's printer gives the port free for the line. What it prints meanwhile opens it again.
void wParamPrinter::cmdPrintTest_Click() {
    Guard("wParamPrinter.cmdPrintTest_Click", [this] {
        const QString setting = MakeSetting();
        const QPointer<wParamPrinter> self(this);
        if (test_.IsUnderWay() || !TestPrintPort(setting) || !IsLoaded(self.data()))
            return;
        if (setting.isEmpty()) {
            Message(GetText(PortNotValid), Messages::Critical);
            return;
        }
        if (Polling() != nullptr)
            Polling()->dpPrinter().ClosePrinter();
        ui_->cmdPrintTest->setEnabled(false);
        test_.Start(setting, [self](const QString& error) {
            if (!IsLoaded(self.data()))
                return;
            self->ui_->cmdPrintTest->setEnabled(true);
            if (error.isEmpty())
                Message(GetText(TestSent), Messages::Information);
            else
                Message(GetText(PortFails).replace(u'$', error), Messages::Critical);
        });
    });
}

/// A port that means another device is a change too, though the site doesn't hold it.
bool wParamPrinter::Differs() const {
    return edit_.Differs() || !formerDevices_.isEmpty();
}

bool wParamPrinter::Take() {
    bool taken = false;
    Guard("wParamPrinter.AskForClose", [&] {
        const QPointer<wParamPrinter> self(this);
        const bool usable = TestPrintPort(MakeSetting());
        if (!IsLoaded(self.data()))
            return;
        if (!usable) {
            Message(GetText(PortNotValid), Messages::Critical);
            return;
        }
        ConfigClass& site = Global::Configuration();
        site.setPrtSettings(MakeSetting());
        site.setPrinterName(edit_->printer);
        for (int index = 0; index < SequenceCount; ++index) {
            site.setPrinterInitCode(index, edit_->codes[index]);
            site.setPrinterInitString(index, edit_->sequences[index]);
        }
        formerDevices_.clear();
        TellEngine();
        SaveSite();
        taken = true;
    });
    return taken;
}

/// From the next line on.
void wParamPrinter::TellEngine() {
    if (Polling() == nullptr)
        return;
    const QStringList parts = MakeSetting().split(u':');
    DirectPrinting& printer = Polling()->dpPrinter();
    printer.ClosePrinter();
    printer.setSettings(parts.value(1));
    printer.setAddLF(true);
    printer.setPort(parts.value(0));
}

void wParamPrinter::Drop() {
    RestoreDevices();
}

void wParamPrinter::Keep() {
    for (auto former = formerDevices_.cbegin(); former != formerDevices_.cend(); ++former)
        Kept().devices.insert(former.key(), SLVfonctions::DevicePath(former.key()));
    Kept().edit.Keep(edit_.Original(), *edit_);
    RestoreDevices();
}

void wParamPrinter::imgNavig_Click(int index) {
    Guard("wParamPrinter.imgNavig_Click", [&] {
        if (index == ToMenu)
            Leave();
        else if (index == Help)
            ShowHelp();
    });
}
