#pragma once

#include <QPointer>
#include <optional>
#include <type_traits>
#include <utility>

/// Prepares a dialog, shows it until it closes, reads it and unloads it. Gives what was read, or
/// nothing when the dialog was taken away while it stood: the caller may be gone then as well.
template <class Dialog, class Prepare, class Read>
std::optional<std::invoke_result_t<Read, Dialog&>> RunDialog(Dialog* made, Prepare&& prepare,
                                                             Read&& read) {
    const QPointer<Dialog> dialog(made);
    std::forward<Prepare>(prepare)(*dialog);
    dialog->ShowModal();
    if (!dialog)
        return std::nullopt;
    auto result = std::forward<Read>(read)(*dialog);
    dialog->Unload();
    return result;
}
