#include "core/Forms.h"

#include <QHash>
#include <QList>
#include <algorithm>

namespace Forms {

namespace {
QHash<QString, Factory> factories;
QList<Form*> loaded;
constexpr int UnloadRounds = 10;
} // namespace

void Register(const QString& name, Factory factory) {
    factories[name] = std::move(factory);
}

QStringList Names() {
    QStringList names = factories.keys();
    names.sort();
    return names;
}

Form* Find(const QString& name) {
    const auto found = std::find_if(loaded.cbegin(), loaded.cend(),
                                    [&](const Form* form) { return form->Name() == name; });
    return found == loaded.cend() ? nullptr : *found;
}

Form* Load(const QString& name) {
    if (Form* form = Find(name))
        return form;
    const Factory factory = factories.value(name);
    return factory ? factory() : nullptr;
}

void Show(const QString& name) {
    if (Form* form = Load(name))
        form->Show();
}

void BringToFront(const QString& name) {
    if (Form* form = Find(name))
        form->BringToFront();
}

void Unload(const QString& name) {
    if (Form* form = Find(name))
        form->Unload();
}

/// A form may be kept by another one only: each round asks anew.
static void UnloadAllUnless(const std::function<bool(const Form&)>& stays) {
    for (int round = 0; round < UnloadRounds; ++round) {
        bool unloaded = false;
        const QList<Form*> present = loaded;
        for (Form* form : present) {
            if (loaded.contains(form) && !stays(*form)) {
                form->Unload();
                unloaded = true;
            }
        }
        if (!unloaded)
            return;
    }
}

void UnloadAllBut(const QStringList& names) {
    UnloadAllUnless([&](const Form& form) { return names.contains(form.Name()); });
}

void GiveWayTo(const QStringList& names) {
    UnloadAllUnless(
        [&](const Form& form) { return form.StaysOverEvents() || names.contains(form.Name()); });
}

bool AnyVisible() {
    return std::any_of(loaded.cbegin(), loaded.cend(),
                       [](const Form* form) { return form->Visible(); });
}

int NbInstances(const QString& name) {
    return int(std::count_if(loaded.cbegin(), loaded.cend(),
                             [&](const Form* form) { return form->Name() == name; }));
}

void Added(Form* form) {
    loaded.append(form);
}

void Removed(Form* form) {
    loaded.removeAll(form);
}

} // namespace Forms
