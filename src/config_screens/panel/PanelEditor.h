#pragma once

#include <QtGlobal>

/// The panel editor, as the list of panels sees it.
class PanelEditor {
public:
    virtual ~PanelEditor() = default;
    /// Loads the panel of a bus number, 1 to 64.
    virtual void setNumModule(qint16 number) = 0;
};
