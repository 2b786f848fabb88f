#pragma once

class MirrorClasses;
class PanelClass;
class QString;

/// The mirrors of one channel, as the panel editor sees their form.
class MirrorOne {
public:
    virtual ~MirrorOne() = default;
    /// Lets the rules of a list be edited that touch one panel, and returns when the form is
    /// closed or taken away. `panel` stands for its own bus number, edited as it is. `channel` is a
    /// number, or the word for the panel as a whole.
    virtual void Present(MirrorClasses& mirrors, const PanelClass& panel,
                         const QString& channel) = 0;
};
