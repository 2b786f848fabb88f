#pragma once

#include "events/PrinterDefinition.h"
#include "screens/touch/ScreenForm.h"

#include <memory>
#include <optional>

class QAbstractButton;

namespace Ui {
class dlgParamPrinter;
}

/// The colour and the styles that a class of events is printed in, out of what a printer has.
class dlgParamPrinter : public ScreenForm {
    Q_OBJECT
public:
    dlgParamPrinter();
    ~dlgParamPrinter() override;

    /// True when the choice was confirmed.
    bool Ok() const { return ok_; }
    void setTitle(const QString& title);
    /// Disables what the printer has no sequence for.
    void setDefinition(const PrinterDefinition& definition);
    void setCode(const PrinterCode& code);
    /// What is chosen. A colour that isn't offered stays as long as no other one is chosen.
    PrinterCode Code() const;

protected:
    void CloseRequested() override { imgControl_Click(Cancel); }

private:
    enum Image { Cancel, Confirm };

    void imgControl_Click(int index);

    std::unique_ptr<Ui::dlgParamPrinter> ui_;
    /// By the number of the colour, and by the place of the letter.
    QList<QAbstractButton*> colors_;
    QList<QAbstractButton*> styles_;
    int color_ = -1;
    bool ok_ = false;
};

/// Lets the operator choose and gives the new code; nothing when the dialog was left otherwise. The
/// caller may be gone afterwards.
std::optional<PrinterCode> AskPrinterCode(const QString& title, const PrinterDefinition& definition,
                                          const PrinterCode& present);
