#pragma once

#include "platform/Ports.h"
#include "screens/touch/ScreenForm.h"

#include <QList>
#include <QString>
#include <memory>
#include <optional>

namespace Ui {
class dlgPortDevice;
}

/// Who a port is for: bus and printer never share a device.
enum class PortPurpose { Bus, Printer };

/// Chooses the device that a port name such as "COM1" or "LPT1" means, out of what the machine has:
/// serial lines for a COM port, printers for an LPT port. Each is shown with its maker, its serial
/// number, its lasting name, and who has it.
class dlgPortDevice : public ScreenForm {
    Q_OBJECT
public:
    /// `present` is the device that the port means now; it is chosen at first, and listed though it
    /// isn't there.
    dlgPortDevice(PortPurpose purpose, const QString& portName, const QString& present);
    ~dlgPortDevice() override;

    /// The device that was chosen; nothing until then.
    std::optional<QString> Device() const { return chosen_; }

protected:
    void CloseRequested() override { Hide(); }

private:
    enum Image { Cancel, Confirm, ListAgain };

    void Fill();
    void Control_Click(int index);
    void Choose();

    std::unique_ptr<Ui::dlgPortDevice> ui_;
    PortPurpose purpose_;
    bool serial_;
    QString present_;
    QList<platform::PortDevice> devices_;
    std::optional<QString> chosen_;
};

/// Lets the operator choose the device of a port and gives its path, for
/// `SLVfonctions::setDevicePath`; nothing when the dialog was left otherwise, or taken away by an
/// alarm: the caller may be gone then too. The device of the other purpose can't be chosen, which
/// the dialog tells.
std::optional<QString> AskPortDevice(PortPurpose purpose, const QString& portName,
                                     const QString& present);

/// What a device is called: maker, description and serial number, if it tells them, and where it is
/// now.
QString PortDeviceName(const QString& path);
/// In words, who has a device.
QString PortUseText(PortPurpose purpose, const QString& path);
/// True when a device is that of the other purpose, as the site has it.
bool IsOfOtherPurpose(PortPurpose purpose, const QString& path);
