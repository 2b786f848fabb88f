#include "events/AlarmCourse.h"

#include "events/LatestChange.h"

namespace {

enum class Step { None, Coming, Acknowledgement, Going };

Step StepOf(const HistoryRecord& record) {
    switch (record.kind) {
    case EventKind::Active:
    case EventKind::CableFault:
    case EventKind::FirstFault:
    case EventKind::SecondFault:
    case EventKind::PanelLost:
        return Step::Coming;
    case EventKind::Acknowledged:
        return Step::Acknowledgement;
    case EventKind::Normal:
    case EventKind::PanelPresent:
        return Step::Going;
    default:
        return Step::None;
    }
}

bool IsOfWholePanel(const HistoryRecord& record) {
    return record.kind == EventKind::LampsAcknowledged ||
           record.kind == EventKind::PanelAcknowledged;
}

bool IsSameSource(const HistoryRecord& one, const HistoryRecord& other) {
    return one.panel == other.panel && one.channel == other.channel;
}

/// Where to begin to follow the alarm of a line: behind the going ahead of it. Nothing where no
/// line tells of its coming.
std::optional<size_t> StartFor(const std::vector<HistoryRecord>& records, size_t place) {
    std::optional<size_t> start;
    for (size_t at = place + 1; at-- > 0;) {
        if (!IsSameSource(records[at], records[place]))
            continue;
        const Step step = StepOf(records[at]);
        if (step == Step::Coming)
            start = at;
        else if (step == Step::Going && start)
            break;
    }
    return start;
}

/// Takes the lines of one source in their order, for the alarm that a place belongs to.
class Follower {
public:
    explicit Follower(size_t place)
        : place_(place) {}

    /// False when what follows is of another alarm.
    bool Take(const HistoryRecord& record, size_t at) {
        switch (StepOf(record)) {
        case Step::Coming:
            return Come(record, at);
        case Step::Acknowledgement:
            Set(course_.acknowledged, at);
            break;
        case Step::Going:
            Set(course_.going, at);
            // The step that ends an alarm: one that had gone by itself is acknowledged now.
            if (!record.isChange && record.channel != 0)
                Set(course_.acknowledged, at);
            break;
        case Step::None:
            break;
        }
        return true;
    }
    void TakeOfPanel(const HistoryRecord& record, size_t at) {
        if (IsOfWholePanel(record))
            Set(course_.acknowledged, at);
    }
    bool IsComplete(size_t at) const {
        return at >= place_ && course_.going && course_.acknowledged;
    }
    const AlarmCourse& Course() const { return course_; }

private:
    static void Set(std::optional<size_t>& line, size_t at) {
        if (!line)
            line = at;
    }

    bool Come(const HistoryRecord& record, size_t at) {
        if (course_.coming && (course_.going || change_.IsMissedGoing(record))) {
            if (at > place_)
                return false;
            course_ = {};
        }
        if (!course_.coming) {
            course_.coming = at;
            change_.Begin(record);
            return true;
        }
        if (change_.IsAcknowledgement(record))
            Set(course_.acknowledged, at);
        change_.Take(record);
        return true;
    }

    size_t place_;
    LatestChange change_;
    AlarmCourse course_;
};

} // namespace

AlarmCourse CourseOf(const std::vector<HistoryRecord>& records, size_t place) {
    const HistoryRecord& line = records[place];
    AlarmCourse none;
    none.isStep = StepOf(line) != Step::None;
    const std::optional<size_t> start = none.isStep ? StartFor(records, place) : std::nullopt;
    if (!start)
        return none;
    Follower follower(place);
    for (size_t at = *start; at < records.size() && !follower.IsComplete(at); ++at) {
        const HistoryRecord& record = records[at];
        if (IsSameSource(record, line) && !follower.Take(record, at))
            break;
        if (record.panel == line.panel && line.channel != 0)
            follower.TakeOfPanel(record, at);
    }
    AlarmCourse course = follower.Course();
    course.isStep = true;
    return course;
}
