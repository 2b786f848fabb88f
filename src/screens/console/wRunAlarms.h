#pragma once

#include "bus/AlarmConsole.h"
#include "events/EventClass.h"
#include "screens/dialogs/AskPassword.h"
#include "screens/touch/ScreenForm.h"
#include "screens/touch/TouchGuard.h"

#include <QList>
#include <QTimer>
#include <functional>
#include <memory>

class AlarmRows;
class FaultBand;
class QLabel;
class TouchImage;

namespace Ui {
class wRunAlarms;
}

/// The screen on which the operator lives: what is wrong now, newest on top, and what to do about
/// it. It listens to the polling screen and has no access to the bus of its own.
class wRunAlarms : public ScreenForm, public AlarmConsole, public ShowsLogin {
    Q_OBJECT
public:
    wRunAlarms();
    ~wRunAlarms() override;

    void Show() override;
    int RowCount() const override;
    QString RowText(int row) const override;
    qint32 RowData(int row) const override;
    void EmptyList() override;
    void TakeEvent(const EventClass& event) override { mwComm_BusEvent(event); }
    void ShowLogin() override;

protected:
    void Nationality() override;
    void Form_Activate() override;
    void Form_Unload() override;

private:
    /// Pictures of `imgComm`.
    enum Beat { BeatA = 0, BeatB = 1, GeneralReading = 2 };

    void Form_Load();
    void MakeHead();
    void ConnectControls();
    void Press(TouchImage* image, const char* source, std::function<void()> handler);
    QList<QWidget*> SelectionControls() const;
    AlarmRows& Rows() const;

    void mwComm_BusEvent(const EventClass& event);
    void mwComm_PollDone();
    void mwComm_Synchronising(bool on);

    void imgAcquit_Click();
    void imgConsigne_Click();
    void imgControl_Click(int index);
    void imgHisto_Click();
    void imgTelecommande_Click();
    void imgStopRun_Click();
    void imgNavig_Click();
    void imgCommWatch_Click();
    void lblLogin_Click();
    void lblFaults_Click();
    void lblOutOfService_Click();
    void tmrDateTime_Timer();

    /// The selected alarm is known to the operator; what of it goes to the panel goes.
    void Acknowledge();
    void RemoveSelected();

    /// The selection in sight? Otherwise it is brought there.
    bool HasSelectionInSight();

    void RecaleCurseur();
    void FindMissingPanels();
    void ShowMissingPanels(const QList<int>& panels);
    int WidthOfWatch() const;
    void ShowWatch();
    void ShowCount();
    void ShowFaults();
    void ShowOutOfService();
    void ShowRunState();
    void ShowSiteName();
    void ShowBeat(Beat beat);

    std::unique_ptr<Ui::wRunAlarms> ui_;
    QTimer tmrDateTime_;
    std::unique_ptr<TouchGuard> guard_;
    /// After a jump of the selection: what doesn't act on it, the horn above all, stays in use.
    std::unique_ptr<TouchGuard> selectionGuard_;
    QLabel* lblWatch_ = nullptr;
    FaultBand* lblFaults_ = nullptr;
    QLabel* lblOutOfService_ = nullptr;
    QList<int> missing_;
    /// Left end of the missing panels, which stand behind the words of the watch.
    int missingFrom_ = 0;
    /// When the last acknowledgement was touched, ms of the monotonic clock.
    qint64 acquitTouched_ = -1000000;
    Beat beat_ = BeatA;
};
