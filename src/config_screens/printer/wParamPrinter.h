#pragma once

#include "config_screens/ConfigForm.h"
#include "config_screens/printer/TestPrint.h"
#include "model/PrinterSettings.h"
#include "screens/touch/WorkingCopy.h"

#include <QMap>
#include <QStringList>
#include <memory>

class FieldPointer;

namespace Ui {
class wParamPrinter;
}

/// The port of the event printer, its model, and how each class of events is printed.
class wParamPrinter : public ConfigForm {
    Q_OBJECT
public:
    wParamPrinter();
    ~wParamPrinter() override;

    /// The port string of what is shown.
    QString MakeSetting() const;

protected:
    bool Differs() const override;
    bool Take() override;
    void Drop() override;
    void Keep() override;

private:
    struct Edit {
        PrinterSettings port;
        QString printer;
        QStringList codes;
        QStringList sequences;
        bool operator==(const Edit& other) const = default;
    };
    /// What an alarm interrupted, with the devices that ports were given meanwhile.
    struct Memory;

    static Memory& Kept();
    static Edit OfSite();
    void Form_Load();
    void ConnectControls();
    void ShowEdit();
    void ShowPort();
    void UpdatePrinterParams();
    void ChangePortField(const QString& value);
    void TellEngine();
    void RestoreDevices();

    void lblPort_Click(int index);
    void lblPortDevice_Click();
    void imgComModif_Click();
    void imgCharModif_Click();
    void lstPrinterName_Click();
    void imgChangePrinter_Click();
    void cmdPrintTest_Click();
    void imgNavig_Click(int index);

    std::unique_ptr<Ui::wParamPrinter> ui_;
    WorkingCopy<Edit> edit_;
    FieldPointer* comPointer_ = nullptr;
    FieldPointer* charPointer_ = nullptr;
    TestPrint test_;
    /// Ports that were given another device here, and the former one.
    QMap<QString, QString> formerDevices_;
};
