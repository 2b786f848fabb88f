#pragma once

#include "events/HistoryRecords.h"

#include <optional>
#include <vector>

/// An alarm from its coming to its going: the places of its lines among the records.
struct AlarmCourse {
    /// The record tells of a step at all; what came before the first record isn't known.
    bool isStep = false;
    std::optional<size_t> coming;
    std::optional<size_t> acknowledged;
    std::optional<size_t> going;
};

/// The alarm to which a record belongs. It comes with the first line that tells of more than a
/// normal state and goes with the next normal one; it may be acknowledged, by itself or with its
/// whole panel, later than that. A panel's comes when the panel is lost.
AlarmCourse CourseOf(const std::vector<HistoryRecord>& records, size_t place);
