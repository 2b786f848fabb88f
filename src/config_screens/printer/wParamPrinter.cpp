#include "config_screens/printer/wParamPrinter.h"

#include "bus/wPolling.h"
#include "config_screens/SiteEdit.h"
#include "config_screens/dlgPortDevice.h"
#include "config_screens/printer/dlgParamPrinter.h"
#include "core/Config.h"
#include "core/ErrorHandling.h"
#include "core/Message.h"
#include "core/SLVfonctions.h"
#include "events/DirectPrinting.h"
#include "events/PrinterDefinition.h"
#include "model/CurrentConfig.h"
#include "screens/dialogs/dlgListInput.h"
#include "screens/dialogs/wHelp.h"
#include "screens/touch/FieldPointer.h"
#include "screens/touch/KeptEdit.h"
#include "screens/touch/Navigation.h"
#include "screens/touch/ResizeForm.h"
#include "screens/touch/TouchList.h"
#include "screens/touch/ValueLabel.h"
#include "ui_wParamPrinter.h"

#include <QApplication>
#include <QPointer>

using PortKind = PrinterSettings::PortKind;

namespace {

const QString Unreadable = QStringLiteral("?????");
const QString Chosen = QStringLiteral("X");
const QString Pointed = QStringLiteral("\u25BA");
const QString PortNumbers = QStringLiteral("*|1|255");
constexpr int LastColorWord = 6;

enum Texts {
    PortNotOpened = 20011,
    PortNotValid = 30014,
    NoPrinter = 30019,
    DefinitionTaken = 30020,
    DefinitionMissing = 30021,
    FirstParity = 100021,
    FirstColor = 430120,
    BeforeStyles = 430126,
    TestPrinted = 430310,
    TestNotPrinted = 430316,
    TestOnOtherLine = 430317,
    BeforeClasses = 430320,
    PortOfTheBus = 714061
};

enum Fields { PortField, SpeedField, ParityField, DataBitsField, StopBitsField };
const std::array<QString PrinterSettings::*, 5> Parts = {
    &PrinterSettings::serialPort, &PrinterSettings::speed, &PrinterSettings::parity,
    &PrinterSettings::dataBits, &PrinterSettings::stopBits};

/// The words of the parities, in the order of their letters.
QStringList ParityWords() {
    QStringList words;
    for (int i = 0; i < PrinterSettings::Parities.size(); ++i)
        words += GetText(FirstParity + i);
    return words;
}

QString DescriptorOf(int field) {
    switch (field) {
    case PortField:
        return PortNumbers;
    case SpeedField:
        return QStringLiteral("@|1200|2400|4800|9600|19200");
    case ParityField:
        return QStringLiteral("@|") + ParityWords().join(u'|');
    case DataBitsField:
        return QStringLiteral("*|7|8");
    default:
        return QStringLiteral("*|1|2");
    }
}

/// A part as it is shown.
QString Shown(const QString& part) {
    return part.isEmpty() ? Unreadable : part;
}

QString ShownParity(const QString& letter) {
    return letter.isEmpty() ? Unreadable
                            : ParityWords().value(PrinterSettings::Parities.indexOf(letter));
}

/// Values to begin with for a kind of port that has none yet: no port of the bus.
void FillIn(PrinterSettings& port) {
    const bool isFirst = port.speed.isEmpty() && port.parity.isEmpty() && port.dataBits.isEmpty() &&
                         port.stopBits.isEmpty();
    if (port.kind == PortKind::Serial && isFirst && port.serialPort.isEmpty()) {
        port.serialPort =
            IsBusPort(QStringLiteral("COM1")) ? QStringLiteral("2") : QStringLiteral("1");
        port.speed = QStringLiteral("9600");
        port.parity = QStringLiteral("N");
        port.dataBits = QStringLiteral("8");
        port.stopBits = QStringLiteral("1");
    }
    if (port.kind == PortKind::Parallel && port.parallelPort.isEmpty())
        port.parallelPort = QStringLiteral("1");
}

/// Colour and styles of a class in words.
QString WordsOf(const QString& text) {
    const PrinterCode code = PrinterCode::Of(text);
    QString words;
    if (code.color >= 0)
        words = code.color <= LastColorWord ? GetText(FirstColor + code.color)
                                            : QString::number(code.color);
    for (const QChar letter : code.styles)
        words += u' ' + GetText(BeforeStyles + 1 + int(PrinterCode::AllStyles.indexOf(letter)));
    return words.trimmed();
}

} // namespace

struct wParamPrinter::Memory {
    KeptEdit<Edit> edit;
};

wParamPrinter::Memory& wParamPrinter::Kept() {
    static Memory memory;
    return memory;
}

/// The settings hold the device that is edited already.
wParamPrinter::Edit wParamPrinter::OfSite() const {
    const ConfigClass& site = Global::Configuration();
    Edit edit;
    edit.port = PrinterSettings::Of(site.PrtSettings());
    const QString port = edit.port.PortName();
    edit.device = port.isEmpty() ? QString() : devices_.Former(port).device;
    edit.printer = site.PrinterName();
    for (int i = 0; i <= ClassCount; ++i) {
        edit.codes[size_t(i)] = site.PrinterInitCode(i);
        edit.strings[size_t(i)] = site.PrinterInitString(i);
    }
    return edit;
}

wParamPrinter::wParamPrinter()
    : ConfigForm(FormNames::wParamPrinter)
    , ui_(std::make_unique<Ui::wParamPrinter>())
    , edit_([this] { return OfSite(); }) {
    ui_->setupUi(this);
    Prepare();
    MakeTouchList(*ui_->lstPrinterName, IsScaled() ? CurrentScreenFactors().vertical : 1);
    MakePointers();
    for (const auto& array : {QStringLiteral("lblPort"), QStringLiteral("lblPortName")})
        OnClick(array, [this](int index) { lblPort_Click(PortKind(index)); });
    for (const auto& array : {QStringLiteral("imgPortDevice"), QStringLiteral("lblPortDevice")})
        OnClick(array, [this](int) { imgPortDevice_Click(); });
    OnClick(ui_->imgComModif, [this] { imgComModif_Click(); });
    OnClick(ui_->imgLptModif, [this] { imgLptModif_Click(); });
    OnClick(ui_->lblLptPort, [this] { imgLptModif_Click(); });
    OnClick(ui_->imgChangePrinter, [this] { imgChangePrinter_Click(); });
    OnClick(ui_->imgCharModif, [this] { imgCharModif_Click(); });
    OnClick(ui_->cmdPrintTest, [this] { cmdPrintTest_Click(); });
    OnClick(QStringLiteral("imgNavig"), [this](int index) { imgNavig_Click(index); });
    OnClick(ui_->imgClose, [this] { LeaveToMenu(int(MenuTile::Parameters)); });
    if (auto kept = Kept().edit.Take(edit_.Original())) {
        *edit_ = std::move(*kept);
        setDevice(edit_->device);
        ShowKept(true);
    }
    ListPrinters();
    ShowPort();
    UpdatePrinterParams();
}

wParamPrinter::~wParamPrinter() = default;

void wParamPrinter::MakePointers() {
    comPointer_ = new FieldPointer(
        this,
        {ui_->lblComPort, ui_->lblComSpeed, ui_->lblComParity, ui_->lblComBits, ui_->lblComStop},
        ui_->imgComDir_0, ui_->imgComDir_1);
    const auto showField = [this](int place) { ui_->lblComPointer->setNum(place + 1); };
    connect(comPointer_, &FieldPointer::Moved, this, showField);
    showField(comPointer_->Place());
    OnClick(QStringLiteral("imgComDir"),
            [this](int index) { comPointer_->MoveBy(index == 0 ? -1 : 1); });

    QList<ValueLabel*> classes;
    for (int i = 1; i <= ClassCount; ++i)
        classes += Control<ValueLabel>(QStringLiteral("lblEscCode"), i);
    charPointer_ = new FieldPointer(this, classes, ui_->imgCharDir_0, ui_->imgCharDir_1);
    const auto showClass = [this](int place) {
        for (int i = 1; i <= ClassCount; ++i)
            Control<QLabel>(QStringLiteral("lblCharPointer"), i)
                ->setText(i == place + 1 ? Pointed : QString());
    };
    connect(charPointer_, &FieldPointer::Moved, this, showClass);
    showClass(charPointer_->Place());
    OnClick(QStringLiteral("imgCharDir"),
            [this](int index) { charPointer_->MoveBy(index == 0 ? -1 : 1); });
    for (const auto& array : {QStringLiteral("lblCharPointer"), QStringLiteral("lblEscTitle")})
        OnClick(array, [this](int index) { charPointer_->setPlace(index - 1); });
}

void wParamPrinter::ShowPort() {
    const PrinterSettings& port = edit_->port;
    for (int kind = 0; kind <= int(PortKind::None); ++kind) {
        const bool chosen = kind == int(port.kind);
        Control<ValueLabel>(QStringLiteral("lblPort"), kind)
            ->setCaption(chosen ? Chosen : QString());
        Control(QStringLiteral("PicPort"), kind)->setVisible(chosen);
    }
    ui_->lblComPort->setCaption(Shown(port.serialPort));
    ui_->lblComSpeed->setCaption(Shown(port.speed));
    ui_->lblComParity->setCaption(ShownParity(port.parity));
    ui_->lblComBits->setCaption(Shown(port.dataBits));
    ui_->lblComStop->setCaption(Shown(port.stopBits));
    ui_->lblLptPort->setCaption(Shown(port.parallelPort));
    ui_->cmdPrintTest->setEnabled(port.kind != PortKind::None && !testing_);
    ShowDevice();
}

void wParamPrinter::ShowDevice() {
    const int kind = int(edit_->port.kind);
    if (edit_->port.kind == PortKind::None)
        return;
    const QString& device = edit_->device;
    Control<ValueLabel>(QStringLiteral("lblPortDevice"), kind)
        ->setCaption(device.isEmpty() ? QString() : PortDeviceName(device));
    Control<QLabel>(QStringLiteral("lblPortUse"), kind)
        ->setText(device.isEmpty() ? QString() : PortUseText(PortPurpose::Printer, device));
    Control(QStringLiteral("imgPortDevice"), kind)->setEnabled(!device.isEmpty());
}

void wParamPrinter::ListPrinters() {
    ui_->lstPrinterName->addItems(PrinterDefinition::Names());
    const auto present = ui_->lstPrinterName->findItems(edit_->printer, Qt::MatchExactly);
    ui_->lstPrinterName->setCurrentItem(present.value(0));
    connect(ui_->lstPrinterName, &QListWidget::itemClicked, this, [this] {
        ErrorHandling::Guard("wParamPrinter.lstPrinterName_Click",
                             [this] { lstPrinterName_Click(); });
    });
}

void wParamPrinter::UpdatePrinterParams() {
    ErrorHandling::Guard("wParamPrinter.UpdatePrinterParams", [&] {
        for (int i = 1; i <= ClassCount; ++i)
            Control<ValueLabel>(QStringLiteral("lblEscCode"), i)
                ->setCaption(WordsOf(edit_->codes[size_t(i)]));
    });
}

QString wParamPrinter::MakeSetting() const {
    return edit_->port.Text();
}

/// Can the port be used as it is set? If not, the operator is told.
bool wParamPrinter::IsUsable() {
    if (edit_->port.IsComplete())
        return TestPrintPort(MakeSetting());
    Message(GetText(PortNotValid), Messages::Critical);
    return false;
}

QString wParamPrinter::SelectedPrinter() const {
    const QListWidgetItem* item = ui_->lstPrinterName->currentItem();
    return item != nullptr ? item->text() : QString();
}

void wParamPrinter::lblPort_Click(PortKind kind) {
    PrinterSettings& port = edit_->port;
    port.kind = kind;
    FillIn(port);
    const QString name = port.PortName();
    edit_->device = name.isEmpty() ? QString() : SLVfonctions::DevicePath(name);
    ShowPort();
}

void wParamPrinter::imgComModif_Click() {
    const int place = comPointer_->Place();
    const QPointer<wParamPrinter> self(this);
    const auto value = AskValue(this, DescriptorOf(place), comPointer_->Field()->Caption());
    if (!value || !IsLoaded(self.data()) || *value == Unreadable)
        return;
    if (place == PortField) {
        setPort(Parts[PortField], *value);
        return;
    }
    const qsizetype parity = ParityWords().indexOf(*value);
    edit_->port.*Parts[size_t(place)] =
        place == ParityField ? PrinterSettings::Parities.mid(parity, 1) : *value;
    ShowPort();
}

void wParamPrinter::imgLptModif_Click() {
    const QPointer<wParamPrinter> self(this);
    const auto value = AskValue(this, PortNumbers, ui_->lblLptPort->Caption());
    if (value && IsLoaded(self.data()) && *value != Unreadable)
        setPort(&PrinterSettings::parallelPort, *value);
}

void wParamPrinter::setPort(QString PrinterSettings::*number, const QString& value) {
    PrinterSettings port = edit_->port;
    port.*number = value;
    if (IsBusPort(port.PortName())) {
        Message(GetText(PortOfTheBus), Messages::Critical);
        return;
    }
    edit_->port = port;
    edit_->device = SLVfonctions::DevicePath(port.PortName());
    ShowPort();
}

void wParamPrinter::imgPortDevice_Click() {
    const QString port = edit_->port.PortName();
    if (port.isEmpty()) {
        QApplication::beep();
        return;
    }
    const QPointer<wParamPrinter> self(this);
    const auto device = AskPortDevice(PortPurpose::Printer, port, edit_->device);
    if (!device || !IsLoaded(self.data()))
        return;
    setDevice(*device);
    ShowDevice();
}

/// Names the device of the port that is edited.
void wParamPrinter::setDevice(const QString& device) {
    edit_->device = device;
    if (!edit_->port.PortName().isEmpty())
        devices_.Name(edit_->port.PortName(),
                      {device, SLVfonctions::PortOf(edit_->port.PortName()).rs485});
}

/// Also for the printer that is selected already: an edit of its definition comes through.
void wParamPrinter::lstPrinterName_Click() {
    edit_->printer = SelectedPrinter();
    const PrinterDefinition definition(PrinterDefinition::PathOf(edit_->printer));
    edit_->strings[0] = definition.Init();
    for (int i = 1; i <= ClassCount; ++i)
        edit_->strings[size_t(i)] = definition.SequenceOf(edit_->codes[size_t(i)]);
}

void wParamPrinter::imgChangePrinter_Click() {
    if (SelectedPrinter().isEmpty())
        Message(GetText(NoPrinter), Messages::Critical);
    else
        Message(GetText(DefinitionTaken), Messages::Information);
}

void wParamPrinter::imgCharModif_Click() {
    const QString printer = SelectedPrinter();
    if (printer.isEmpty() || !PrinterDefinition::Exists(printer)) {
        Message(GetText(printer.isEmpty() ? NoPrinter : DefinitionMissing), Messages::Critical);
        return;
    }
    const PrinterDefinition definition(PrinterDefinition::PathOf(printer));
    const int index = charPointer_->Place() + 1;
    const QPointer<wParamPrinter> self(this);
    const auto code = AskPrinterCode(GetText(BeforeClasses + index), definition,
                                     PrinterCode::Of(edit_->codes[size_t(index)]));
    if (!code || !IsLoaded(self.data()))
        return;
    edit_->codes[size_t(index)] = code->Text();
    edit_->strings[size_t(index)] = definition.EditedSequenceOf(code->Text());
    UpdatePrinterParams();
}

/// Prints apart from the events, whose printer keeps its port and settings; nothing waits for a
/// printer that takes nothing.
void wParamPrinter::cmdPrintTest_Click() {
    const QPointer<wParamPrinter> self(this);
    if (Polling() == nullptr || !IsUsable() || !IsLoaded(self.data()))
        return;
    testing_ = true;
    ShowPort();
    Polling()->Paper().PrintTest(MakeSetting(), [self](const PrinterTest::Result& result) {
        if (IsLoaded(self.data()))
            self->TellTest(result);
    });
}

void wParamPrinter::TellTest(const PrinterTest::Result& result) {
    ErrorHandling::Guard("wParamPrinter.cmdPrintTest_Click", [&] {
        testing_ = false;
        ShowPort();
        if (result.error.isEmpty()) {
            Message(GetText(TestPrinted), Messages::Information);
            return;
        }
        const int text = result.IsPrinted()                        ? TestOnOtherLine
                         : result.where == DirectPrinting::Opening ? PortNotOpened
                                                                   : TestNotPrinted;
        Message(GetText(text).replace(u'$', result.error),
                result.IsPrinted() ? Messages::Warning : Messages::Critical);
    });
}

bool wParamPrinter::Take() {
    bool taken = false;
    ErrorHandling::Guard("wParamPrinter.AskForClose", [&] {
        const QPointer<wParamPrinter> self(this);
        const QString setting = MakeSetting();
        if (!edit_->port.IsComplete() || !TestPrintPort(setting)) {
            if (IsLoaded(self.data()))
                Message(GetText(PortNotValid), Messages::Critical);
            return;
        }
        if (!edit_->device.isEmpty())
            setDevice(edit_->device);
        devices_.Settle();
        ConfigClass& site = Global::Configuration();
        site.setPrtSettings(setting);
        site.setPrinterName(edit_->printer);
        for (int i = 0; i <= ClassCount; ++i) {
            site.setPrinterInitCode(i, edit_->codes[size_t(i)]);
            site.setPrinterInitString(i, edit_->strings[size_t(i)]);
        }
        taken = true;
        if (Polling() != nullptr)
            Polling()->Paper().Use(edit_->port.PortName(), setting.section(u':', 1));
        SaveSite();
    });
    return taken;
}

void wParamPrinter::Keep() {
    const Edit edit = *edit_;
    devices_.PutBack();
    Kept().edit.Keep(edit_.Original(), edit);
}

/// Also when nothing differs in the end: a port that isn't chosen any more may have another device.
void wParamPrinter::Closing() {
    devices_.PutBack();
}

void wParamPrinter::imgNavig_Click(int index) {
    if (index == ToMenu)
        Leave();
    else if (index == Help)
        ShowHelp();
}
