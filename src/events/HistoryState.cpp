#include "events/HistoryState.h"

namespace {

struct Code {
    qint16 chnl;
    qint16 aff;
};

/// Channel and code of the event; a channel stands for all.
std::optional<Code> CodeOf(EventKind kind) {
    constexpr qint16 Channel = 1;
    switch (kind) {
    case EventKind::Normal:
        return Code{Channel, 0};
    case EventKind::Active:
    case EventKind::Acknowledged:
        return Code{Channel, 1};
    case EventKind::CableFault:
        return Code{Channel, 2};
    case EventKind::FirstFault:
        return Code{Channel, 3};
    case EventKind::SecondFault:
        return Code{Channel, 4};
    case EventKind::PanelAcknowledged:
        return Code{Family::PanelWide, 0};
    case EventKind::LampsAcknowledged:
        return Code{Family::PanelWide, 2};
    case EventKind::Cleared:
        return Code{Family::PanelWide, 3};
    case EventKind::PanelLost:
        return Code{Family::Presence, 0};
    case EventKind::PanelPresent:
        return Code{Family::Presence, 1};
    default:
        return std::nullopt;
    }
}

} // namespace

std::optional<RowState> StateOf(const HistoryRecord& record) {
    const std::optional<Code> code = CodeOf(record.kind);
    if (!code)
        return std::nullopt;
    const EventClass event(1, code->chnl, record.isChange ? 0 : 1, code->aff);
    return AlarmRows::StateOf(event.ID());
}
