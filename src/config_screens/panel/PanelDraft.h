#pragma once

#include "model/MirrorClass.h"
#include "model/PanelClass.h"

#include <QByteArray>
#include <memory>

/// A panel and the mirrors of the site while somebody edits them. The site learns of it when it is
/// taken over.
class PanelDraft {
public:
    /// What is configured, in the bytes of the site's file: two drafts of the same are equal.
    struct Snapshot {
        QByteArray panel;
        QByteArray mirrors;
        bool operator==(const Snapshot& other) const = default;
    };

    /// Loads a panel of the site, 1 to 64, and its mirrors.
    void Load(int number);
    /// Loads the panel alone again.
    void ReloadPanel();
    int Number() const { return number_; }
    PanelClass& Panel() { return *panel_; }
    const PanelClass& Panel() const { return *panel_; }
    MirrorClasses& Mirrors() { return mirrors_; }
    bool Modified() const { return panel_->Modified() || mirrors_.Modified(); }
    /// Puts a new panel in the place of the edited one.
    void ClearPanel();

    /// Writes into the site what was modified. What the bus has found out about the panel
    /// meanwhile stays as it is there, and so does the panel's coming back into service by itself.
    void Take();

    Snapshot Edited() const;
    Snapshot OfSite() const;
    /// Puts an edit in place of what was loaded. It counts as modified where it differs.
    void Restore(const Snapshot& edited);

private:
    int number_ = 0;
    bool wasActive_ = false; // when it was loaded
    std::unique_ptr<PanelClass> panel_ = std::make_unique<PanelClass>();
    MirrorClasses mirrors_;
};
