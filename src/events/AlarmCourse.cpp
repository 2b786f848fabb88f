#include "events/AlarmCourse.h"

namespace {

enum class Step { None, Coming, Acknowledgement, Going };

Step StepOf(EventKind kind) {
    switch (kind) {
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

/// The steps of one channel, or of the presence of one panel.
class Steps {
public:
    Steps(const std::vector<HistoryRecord>& records, const HistoryRecord& one)
        : records_(records)
        , panel_(one.panel)
        , channel_(one.channel) {}

    Step At(size_t place) const {
        const HistoryRecord& record = records_[place];
        return record.panel == panel_ && record.channel == channel_ ? StepOf(record.kind)
                                                                    : Step::None;
    }

    /// The first line of the alarm that stood at a place or, where none stood, of the one before.
    std::optional<size_t> Coming(size_t place) const {
        std::optional<size_t> coming;
        for (size_t at = place + 1; at-- > 0;) {
            const Step step = At(at);
            if (step == Step::Coming)
                coming = at;
            else if (step == Step::Going && coming)
                break;
        }
        return coming;
    }

private:
    const std::vector<HistoryRecord>& records_;
    quint8 panel_;
    quint8 channel_;
};

} // namespace

AlarmCourse CourseOf(const std::vector<HistoryRecord>& records, size_t place) {
    AlarmCourse course;
    const Steps steps(records, records[place]);
    course.isStep = steps.At(place) != Step::None;
    if (!course.isStep)
        return course;
    course.coming = steps.Coming(place);
    if (!course.coming)
        return course;
    for (size_t at = *course.coming + 1; at < records.size(); ++at) {
        const Step step = steps.At(at);
        if (step == Step::Coming && course.going)
            break;
        if (step == Step::Going && !course.going)
            course.going = at;
        if (step == Step::Acknowledgement && !course.acknowledged)
            course.acknowledged = at;
        if (course.going && course.acknowledged)
            break;
    }
    return course;
}
