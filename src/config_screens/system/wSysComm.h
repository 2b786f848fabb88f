#pragma once

#include "config_screens/ConfigForm.h"
#include "config_screens/NamedDevices.h"
#include "screens/touch/WorkingCopy.h"

#include <QString>
#include <memory>

class FieldPointer;

namespace Ui {
class wSysComm;
}

/// The serial port of the bus: its number, the device that the number means on this machine, and
/// the line. A change of port or device touches the bus at once, so that it shows whether it works;
/// all else waits for the answer at the end.
class wSysComm : public ConfigForm {
    Q_OBJECT
public:
    wSysComm();
    ~wSysComm() override;

    /// Takes the values into the link and the site. False when one of them is missing.
    bool UpdateConfig();

protected:
    bool Differs() const override { return edit_.Differs(); }
    bool Take() override;
    void Drop() override;
    void Keep() override;
    void Closing() override;

private:
    /// What is edited, as shown; empty texts when the site has no port.
    struct Edit {
        QString port;
        SLVfonctions::PortSetting meaning;
        QString speed;
        QString stop;
        bool autoStart = false;
        bool operator==(const Edit&) const = default;
    };
    struct Memory;
    static Memory& Kept();
    Edit OfSite() const;

    void ShowEdit();
    void ShowDevice();
    void ShowLink();
    void imgBusModif_Click();
    void chkAutoStart_Click();
    void chkRs485_Click();
    void imgPortDevice_Click();
    void imgCommWatch_Click();
    void imgNavig_Click(int index);
    void ChangePort(const QString& port);
    void NameDevice();
    bool StopBus();
    bool MovePort(int port, bool open);
    void StartBus(bool run);
    void ApplyPort(int port);

    std::unique_ptr<Ui::wSysComm> ui_;
    FieldPointer* pointer_;
    NamedDevices devices_;
    WorkingCopy<Edit> edit_;
    bool otherDevice_ = false;   // the link is open on another device than its port means
    bool stoppedByPort_ = false; // the bus ran until a port couldn't be opened
    bool watches_ = false;
};
