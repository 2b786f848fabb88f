#pragma once

namespace platform {

/// While one exists, the operator's input goes to nobody. A press that was thrown away takes its
/// release along, even one that comes later: half a touch must not reach a screen.
class InputDiscard {
public:
    InputDiscard();
    ~InputDiscard();
    InputDiscard(const InputDiscard&) = delete;
    InputDiscard& operator=(const InputDiscard&) = delete;
};

} // namespace platform
