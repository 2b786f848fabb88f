#pragma once

#include "screens/touch/ScreenForm.h"

#include <QString>
#include <array>
#include <memory>

class PrinterDefinition;
class QPushButton;

namespace Ui {
class dlgParamPrinter;
}

/// Colour and styles of a class of events, as far as the printer has them.
class dlgParamPrinter : public ScreenForm {
    Q_OBJECT
public:
    dlgParamPrinter();
    ~dlgParamPrinter() override;

    /// True when the choice was confirmed.
    bool Ok() const { return ok_; }
    void setTitle(const QString& title);
    /// Enables what the printer has.
    void setPrinter(const PrinterDefinition& printer);
    /// A class code such as "2BU": a colour's number and the letters of styles.
    void setCode(const QString& code);
    /// The code of what is chosen. A colour that isn't among those on the form stays.
    QString Code() const;

protected:
    void CloseRequested() override { imgControl_Click(Cancel); }

private:
    enum Image { Cancel, Confirm };

    void imgControl_Click(int index);
    std::array<QPushButton*, 3> Colors() const;
    std::array<QPushButton*, 3> Styles() const;

    std::unique_ptr<Ui::dlgParamPrinter> ui_;
    bool ok_ = false;
    QString otherColor_;
};
