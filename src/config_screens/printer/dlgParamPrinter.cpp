#include "config_screens/printer/dlgParamPrinter.h"

#include "core/FormNames.h"
#include "screens/touch/ModalDialog.h"
#include "ui_dlgParamPrinter.h"

dlgParamPrinter::dlgParamPrinter()
    : ScreenForm(FormNames::dlgParamPrinter, Kind::Dialog)
    , ui_(std::make_unique<Ui::dlgParamPrinter>()) {
    ui_->setupUi(this);
    Prepare();
    OnKey(Qt::Key_Return, [this] { imgControl_Click(Confirm); });
    OnKey(Qt::Key_Escape, [this] { imgControl_Click(Cancel); });
    colors_ = {ui_->optGreen, ui_->optRed, ui_->optYellow};
    styles_ = {ui_->chkGras, ui_->chkItalic, ui_->chkUnderlin};
    OnClick(QStringLiteral("imgControl"), [this](int index) { imgControl_Click(index); });
}

dlgParamPrinter::~dlgParamPrinter() = default;

void dlgParamPrinter::setTitle(const QString& title) {
    ui_->lblTitle->setText(title);
}

void dlgParamPrinter::setDefinition(const PrinterDefinition& definition) {
    for (int number = 0; number < colors_.size(); ++number)
        colors_[number]->setEnabled(!definition.Color(number).isEmpty());
    for (int place = 0; place < styles_.size(); ++place)
        styles_[place]->setEnabled(!definition.Style(PrinterCode::AllStyles[place]).isEmpty());
}

void dlgParamPrinter::setCode(const PrinterCode& code) {
    color_ = code.color;
    if (QAbstractButton* option = colors_.value(code.color))
        option->setChecked(true);
    for (int place = 0; place < styles_.size(); ++place)
        styles_[place]->setChecked(code.styles.contains(PrinterCode::AllStyles[place]));
}

PrinterCode dlgParamPrinter::Code() const {
    PrinterCode code;
    code.color = color_;
    for (int number = 0; number < colors_.size(); ++number) {
        if (colors_[number]->isChecked())
            code.color = number;
    }
    for (int place = 0; place < styles_.size(); ++place) {
        if (styles_[place]->isChecked())
            code.styles += PrinterCode::AllStyles[place];
    }
    return code;
}

void dlgParamPrinter::imgControl_Click(int index) {
    ok_ = index == Confirm;
    Hide();
}

std::optional<PrinterCode> AskPrinterCode(const QString& title, const PrinterDefinition& definition,
                                          const PrinterCode& present) {
    return RunDialog(
               new dlgParamPrinter,
               [&](dlgParamPrinter& dialog) {
                   dialog.setTitle(title);
                   dialog.setDefinition(definition);
                   dialog.setCode(present);
               },
               [](const dlgParamPrinter& dialog) {
                   return dialog.Ok() ? std::make_optional(dialog.Code()) : std::nullopt;
               })
        .value_or(std::nullopt);
}
