// The search through the history, with the channel of an alarm.

#include "Shots.h"

#include "core/FormNames.h"
#include "core/Forms.h"
#include "screens/history/FoundGrid.h"

#include <QTest>

void TakeHistorySearch(const Paths& path) {
    const QString form = FormNames::wHistorySearch;
    Forms::Show(form);
    Save(form, path("wHistorySearch"));
    if (auto* grid = qobject_cast<FoundGrid*>(Child(form, "grdAlarms"))) {
        Click(form, "imgControl_8");
        QTest::mouseClick(grid, Qt::LeftButton, {}, QPoint(100, grid->RowHeight() / 2));
        Save(form, path("wHistorySearch_found"));
        Click(form, "imgControl_6");
        Save(form, path("wHistorySearch_found"));
        Click(form, "imgBack");
    }
    Forms::Unload(form);
}
