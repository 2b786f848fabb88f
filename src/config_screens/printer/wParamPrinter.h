#pragma once

#include "config_screens/ConfigForm.h"
#include "config_screens/NamedDevices.h"
#include "events/PrinterTest.h"
#include "model/PrinterSettings.h"
#include "screens/touch/WorkingCopy.h"

#include <QString>
#include <array>
#include <memory>

class FieldPointer;

namespace Ui {
class wParamPrinter;
}

/// The port of the event printer, the device that its number means on this machine, the model of
/// the printer, and the colour and styles of each class of events. A device holds at once, so that
/// it can be tried; all else waits for the answer at the end.
class wParamPrinter : public ConfigForm {
    Q_OBJECT
public:
    /// Classes of events count from 1; sequence 0 is the start of every line.
    static constexpr int ClassCount = 7;

    wParamPrinter();
    ~wParamPrinter() override;

protected:
    bool Differs() const override { return edit_.Differs(); }
    bool Take() override;
    void Drop() override { devices_.PutBack(); }
    void Keep() override;
    void Closing() override;

private:
    using Sequences = std::array<QString, ClassCount + 1>;
    /// What is edited.
    struct Edit {
        PrinterSettings port;
        QString device; ///< of the chosen port; empty without one
        QString printer;
        Sequences codes;
        Sequences strings;
        bool operator==(const Edit&) const = default;
    };
    struct Memory;
    static Memory& Kept();
    Edit OfSite() const;

    void MakePointers();
    void ShowPort();
    void ShowDevice();
    void ListPrinters();
    void UpdatePrinterParams();
    QString MakeSetting() const;
    bool IsUsable();
    QString SelectedPrinter() const;

    void lblPort_Click(PrinterSettings::PortKind kind);
    void imgComModif_Click();
    void imgLptModif_Click();
    void imgPortDevice_Click();
    void lstPrinterName_Click();
    void imgChangePrinter_Click();
    void imgCharModif_Click();
    void cmdPrintTest_Click();
    void imgNavig_Click(int index);
    void setPort(QString PrinterSettings::*number, const QString& value);
    void setDevice(const QString& device);
    void TellTest(const PrinterTest::Result& result);

    std::unique_ptr<Ui::wParamPrinter> ui_;
    FieldPointer* comPointer_ = nullptr;
    FieldPointer* charPointer_ = nullptr;
    NamedDevices devices_;
    WorkingCopy<Edit> edit_;
    bool testing_ = false;
};
