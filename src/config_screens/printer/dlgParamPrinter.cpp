#include "config_screens/printer/dlgParamPrinter.h"

#include "core/FormNames.h"
#include "events/PrinterDefinition.h"
#include "ui_dlgParamPrinter.h"

#include <QButtonGroup>
#include <QPushButton>
#include <algorithm>

namespace {

const QString StyleLetters = QStringLiteral("BIU");

/// The colour's number at the head of a code.
QString ColorOf(const QString& code) {
    const auto end =
        std::find_if(code.cbegin(), code.cend(), [](QChar letter) { return !letter.isDigit(); });
    return code.left(end - code.cbegin());
}

} // namespace

dlgParamPrinter::dlgParamPrinter()
    : ScreenForm(FormNames::dlgParamPrinter, Kind::Dialog)
    , ui_(std::make_unique<Ui::dlgParamPrinter>()) {
    ui_->setupUi(this);
    Prepare();
    auto* colors = new QButtonGroup(this);
    for (QPushButton* color : Colors())
        colors->addButton(color);
    for (const auto& buttons : {Colors(), Styles()}) {
        for (QPushButton* button : buttons) {
            button->setCheckable(true);
            button->setFocusPolicy(Qt::NoFocus);
        }
    }
    OnClick(QStringLiteral("imgControl"), [this](int index) { imgControl_Click(index); });
}

dlgParamPrinter::~dlgParamPrinter() = default;

std::array<QPushButton*, 3> dlgParamPrinter::Colors() const {
    return {ui_->optGreen, ui_->optRed, ui_->optYellow};
}

std::array<QPushButton*, 3> dlgParamPrinter::Styles() const {
    return {ui_->chkGras, ui_->chkItalic, ui_->chkUnderlin};
}

void dlgParamPrinter::setTitle(const QString& title) {
    SetCaption(ui_->lblClass, title);
}

void dlgParamPrinter::setPrinter(const PrinterDefinition& printer) {
    for (int i = 0; i < int(Colors().size()); ++i) {
        Colors()[size_t(i)]->setEnabled(!printer.Color(i).isEmpty());
        Styles()[size_t(i)]->setEnabled(!printer.Style(StyleLetters[i]).isEmpty());
    }
}

void dlgParamPrinter::setCode(const QString& code) {
    const QString color = ColorOf(code);
    bool shown = false;
    for (int i = 0; i < int(Colors().size()); ++i) {
        const bool chosen = color == QString::number(i);
        shown = shown || chosen;
        Colors()[size_t(i)]->setChecked(chosen);
        Styles()[size_t(i)]->setChecked(code.contains(StyleLetters[i]));
    }
    otherColor_ = shown ? QString() : color;
}

QString dlgParamPrinter::Code() const {
    QString code = otherColor_;
    for (int i = 0; i < int(Colors().size()); ++i) {
        if (Colors()[size_t(i)]->isChecked())
            code = QString::number(i);
    }
    for (int i = 0; i < int(Styles().size()); ++i) {
        if (Styles()[size_t(i)]->isChecked())
            code += StyleLetters[i];
    }
    return code;
}

void dlgParamPrinter::imgControl_Click(int index) {
    ok_ = index == Confirm;
    Hide();
}
