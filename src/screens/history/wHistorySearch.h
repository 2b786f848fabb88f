#pragma once

#include "events/AlarmCourse.h"
#include "events/HistorySearch.h"
#include "screens/history/FilterWords.h"
#include "screens/touch/ScreenForm.h"

#include <QPointer>
#include <QTimer>
#include <memory>
#include <optional>
#include <vector>

class HistoryExport;

namespace Ui {
class wHistorySearch;
}

/// What the history tells, by a filter that always stands there in words. A touch on a line shows
/// all of its channel; from an alarm's coming a touch leads to its acknowledgement and its going.
/// What is shown can be saved.
class wHistorySearch : public ScreenForm {
    Q_OBJECT
public:
    wHistorySearch();
    ~wHistorySearch() override;

protected:
    void Form_Unload() override;
    void CloseRequested() override { imgClose_Click(); }

private:
    /// Where the operator was in a list: a record, and how far below the upper edge it stood.
    struct Place {
        qint64 record = -1;
        int below = -1;
    };
    /// What a touch led away from.
    struct View {
        HistoryFilter filter;
        Place place;
        /// What was found; nothing where the search wasn't through.
        std::optional<std::vector<quint32>> found;
    };

    void ConnectControls();
    void Begin(const HistoryFilter& filter, const Place& place);
    void BeginAnew(const HistoryFilter& filter);
    void ShowFilter();
    void ShowFound();
    void ShowCourse();
    void ShowButtons();
    QString FoundText() const;
    QString CourseText(const AlarmCourse& course) const;
    void GoToWanted();
    Place PresentPlace() const;
    const HistoryRecord* Current() const;
    AlarmCourse Course() const;
    void ShowChannelOf(qint64 record, int below);
    void ShowExport();

    void tmrSearch_Timer();
    void grdAlarms_Click();
    void imgFilter_Click(int index);
    void imgClear_Click();
    void imgBack_Click();
    void imgStop_Click();
    void imgStep_Click(int index);
    void imgExport_Click(int index);
    void imgControl_Click(int index);
    void imgConsigne_Click();
    void imgClose_Click();

    std::unique_ptr<Ui::wHistorySearch> ui_;
    HistorySearch search_;
    QTimer tmrSearch_;
    bool stopped_ = false;
    Place wanted_;
    /// The last one last.
    std::vector<View> former_;
    QPointer<HistoryExport> export_;
};
