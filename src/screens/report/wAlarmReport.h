#pragma once

#include "events/AlarmTables.h"
#include "screens/touch/ScreenForm.h"

#include <QButtonGroup>
#include <QTimer>
#include <memory>
#include <optional>

namespace Ui {
class wAlarmReport;
}

/// The alarm report: a day, a week, a month of the history in bars, figures and lists. A touch on a
/// bar shows what it stands for. The files are read in slices; the bus is polled meanwhile.
class wAlarmReport : public ScreenForm {
    Q_OBJECT
public:
    wAlarmReport();
    ~wAlarmReport() override;

protected:
    void Form_Unload() override;
    void CloseRequested() override { imgClose_Click(); }

private:
    void ConnectControls();
    void Read(const AlarmPeriod& period);
    void Reckon();
    void ShowPeriod();
    void ShowProgress();
    void ShowPage();
    void ShowBars();
    void ShowFigures();
    void ShowTable(const ReportTable& table);
    QString SiteName() const;
    /// What may be saved or printed, and where; asks for the operator's code.
    bool MayGiveOut();
    QString AskPath(int filter);
    void SaveAs(int filter, const QByteArray& bytes);

    void tmrRead_Timer();
    void imgStep_Click(int index);
    void cmdUnit_Click(int index);
    void barAlarms_Touched(int bar);
    void imgPdf_Click();
    void imgCsv_Click();
    void imgPrint_Click();
    void imgCancel_Click();
    void imgClose_Click();

    std::unique_ptr<Ui::wAlarmReport> ui_;
    QButtonGroup units_{this};
    QButtonGroup pages_{this};
    QTimer tmrRead_{this};
    AlarmPeriod period_;
    HistoryRecords records_;
    /// While a period is read.
    std::optional<AlarmReport> report_;
    size_t taken_ = 0;
    /// When it is.
    std::optional<AlarmTables> tables_;
};
