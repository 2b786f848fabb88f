#pragma once

class PanelClass;

/// The live front of one module. The caller finds it through the registry of forms.
class ModuleFront {
public:
    virtual ~ModuleFront() = default;

    /// Shows the front of a panel of the site and returns when it is closed or taken away; the
    /// form is gone then.
    virtual void Present(PanelClass& panel) = 0;
};
