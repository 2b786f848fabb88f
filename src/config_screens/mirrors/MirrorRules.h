#pragma once

#include <QByteArray>
#include <QString>

class MirrorClass;
class MirrorClasses;

/// What the two screens of mirrors have in common: what a rule must obey, and their edits.
namespace MirrorRules {

/// True when a rule may stand in a list. Otherwise tells why not: a rule between the same end
/// points stands there, or it would close a circle. `changed` is the `ID` of the rule that it
/// replaces, empty for a new one.
bool IsAllowed(const MirrorClasses& rules, const MirrorClass& wanted, const QString& changed = {});
/// Removes all rules of an `ID`.
void Remove(MirrorClasses& rules, const QString& id);

/// A list as the site's file holds it: equal lists give equal bytes.
QByteArray BytesOf(const MirrorClasses& rules);
/// Replaces a list by what such bytes hold.
void Restore(MirrorClasses& rules, const QByteArray& bytes);

} // namespace MirrorRules
