#pragma once

#include <optional>
#include <utility>

/// What was being edited when an alarm took the screen away, kept for the next visit. It is worth
/// something only as long as the site holds what it was made from.
template <class Value> class KeptEdit {
public:
    void Keep(Value original, Value edited) {
        kept_ = std::make_pair(std::move(original), std::move(edited));
    }
    /// Gives the edit once, if the site still holds its original, and drops whatever is kept.
    std::optional<Value> Take(const Value& original) {
        const auto kept = std::exchange(kept_, std::nullopt);
        if (!kept || !(kept->first == original))
            return std::nullopt;
        return kept->second;
    }

private:
    std::optional<std::pair<Value, Value>> kept_;
};
