#pragma once

#include <QString>
#include <QStringList>
#include <functional>

/// The registry through which the engine and the screens reach a form by its name. A form is
/// made when it is first named and lives until it is unloaded.
namespace Forms {

class Form {
public:
    virtual ~Form() = default;
    virtual QString Name() const = 0;
    virtual void Show() = 0;
    virtual void Hide() = 0;
    virtual void BringToFront() = 0;
    virtual bool Visible() const = 0;
    /// Runs what the form does at its end and takes it out of the registry at once; the object
    /// itself may go later, so that a form can unload itself out of its own handler.
    virtual void Unload() = 0;
    /// True for a form that is left where it is when an event brings the console to the front.
    virtual bool StaysOverEvents() const { return false; }
};

using Factory = std::function<Form*()>;

/// Says how the form of a name is made.
void Register(const QString& name, Factory factory);

/// Every name that has a form, in alphabetical order.
QStringList Names();
/// The form, made now if it isn't loaded; null for a name that nobody registered.
Form* Load(const QString& name);
/// The loaded form of that name, or null.
Form* Find(const QString& name);
void Show(const QString& name);
void BringToFront(const QString& name);
void Unload(const QString& name);
/// Unloads every form whose name isn't listed, again and again until none is left, since an
/// unload may open another.
void UnloadAllBut(const QStringList& names);
/// The same for an event that needs the display: forms that stay over events are left as well.
void GiveWayTo(const QStringList& names);

bool AnyVisible();
/// Number of loaded forms of exactly this name.
int NbInstances(const QString& name);

/// Called by a form when it begins and when it ends.
void Added(Form* form);
void Removed(Form* form);

} // namespace Forms

using Forms::NbInstances;
