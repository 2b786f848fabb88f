#include "core/SLVfonctions.h"
#include "events/AlarmRows.h"
#include "fuzz/Targets.h"
#include "fuzz/support/Bench.h"
#include "fuzz/support/Input.h"
#include "fuzz/support/MemoryFiles.h"

using Fuzz::Require;

namespace {

void CheckPlaces(const AlarmRows& rows) {
    Require(rows.IsEmpty() ? rows.Current() == -1
                           : rows.Current() >= 0 && rows.Current() < rows.Count(),
            "the selection stands on a row");
    Require(rows.First() >= 0 && rows.First() <= std::max(0, rows.Count() - 1),
            "the view begins on a row");
}

/// A list that was written by the program comes back whole.
void CheckReturn(const AlarmRows& rows) {
    LastAlarms::Write(rows);
    AlarmRows again;
    LastAlarms::Read(again);
    Require(again.Count() == rows.Count(), "each row comes back");
    for (int row = 0; row < rows.Count(); ++row) {
        Require(again.Row(row).data == rows.Row(row).data, "a row keeps its event");
        Require(again.Row(row).text == rows.Row(row).text, "a row keeps its text");
    }
}

void Work(AlarmRows& rows, Input& input) {
    while (!input.IsEmpty()) {
        const int step = input.Byte();
        const int row = rows.IsEmpty() ? 0 : input.Byte() % rows.Count();
        EventClass event;
        switch (step & 3) {
        case 0:
            event.setID(input.Long() & 0x7FFFFFFF);
            rows.Take(event, input.Text(step >> 2));
            break;
        case 1:
            if (!rows.IsEmpty())
                rows.Remove(row);
            break;
        case 2:
            rows.Position().MoveBy(qint8(input.Byte()));
            break;
        default:
            rows.Position().SetPage(step >> 2);
        }
        CheckPlaces(rows);
    }
}

} // namespace

int FuzzAlarmList(const uint8_t* data, size_t size) {
    Fuzz::Prepare();
    Input input(data, size);
    const QByteArray section = input.Bytes(input.Word() & 0x3FF);
    MemoryFiles::Put(SLVfonctions::IniFileName().toUtf8(), "[LastAlarms]\r\n" + section);
    AlarmRows rows;
    LastAlarms::Read(rows);
    CheckPlaces(rows);
    LastAlarms::Write(rows);
    AlarmRows own;
    LastAlarms::Read(own);
    CheckReturn(own);
    Work(rows, input);
    return 0;
}
