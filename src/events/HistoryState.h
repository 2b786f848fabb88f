#pragma once

#include "events/AlarmRows.h"
#include "events/HistoryRecords.h"

#include <optional>

/// The state in which the console shows the event of a history line; nothing for one that it never
/// shows.
std::optional<RowState> StateOf(const HistoryRecord& record);
