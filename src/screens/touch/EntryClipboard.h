#pragma once

#include <QApplication>
#include <functional>
#include <optional>
#include <utility>

/// What the buttons below an entry of a table do.
enum class EntryAction { Copy, Paste, Cut, Clear };

/// One entry that was copied, until another one is. Entries are taken by `assign`, which knows what
/// of an entry is to be copied.
template <class Entry> class EntryClipboard {
public:
    using Assign = std::function<void(Entry& to, const Entry& from)>;

    explicit EntryClipboard(Assign assign = [](Entry& to, const Entry& from) { to = from; })
        : assign_(std::move(assign)) {}

    bool IsEmpty() const { return !held_.has_value(); }

    /// Carries out an action on an entry. True when the entry was written to. To paste nothing
    /// beeps.
    bool Act(EntryAction action, Entry& entry) {
        if (action == EntryAction::Copy || action == EntryAction::Cut)
            assign_(held_.emplace(), entry);
        if (action == EntryAction::Copy)
            return false;
        if (action == EntryAction::Paste && IsEmpty()) {
            QApplication::beep();
            return false;
        }
        assign_(entry, action == EntryAction::Paste ? *held_ : Entry());
        return true;
    }

private:
    Assign assign_;
    std::optional<Entry> held_;
};
