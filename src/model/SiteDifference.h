#pragma once

#include <QList>
#include <QString>

class ConfigClass;

/// One thing that two sites have otherwise, in words of the language in use.
struct SiteDifference {
    /// What it belongs to: the settings, a panel, a channel of a panel, the users, the texts or the
    /// mirrors. Differences of one place follow one another.
    QString place;
    QString field;
    /// The values of the two sites; empty for what one of them doesn't have. Codes are never
    /// among them.
    QString first;
    QString second;
};

/// All that two sites have otherwise of what a site file holds.
QList<SiteDifference> CompareSites(const ConfigClass& first, const ConfigClass& second);
