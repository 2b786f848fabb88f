#pragma once

#include <QList>
#include <QString>

class ConfigClass;

/// One thing that two sites have otherwise, in words of the language in use.
struct SiteDifference {
    /// What it belongs to: a panel, the settings, the users, the texts or the mirrors. Differences
    /// of one group follow one another, and in it those of one part.
    QString group;
    QString part; ///< channel of a panel, empty for the group itself
    QString field;
    /// The values of the two sites; empty for what one of them doesn't have. Codes are never
    /// among them.
    QString first;
    QString second;
    bool isPanel = false; ///< the group is a panel
};

/// All that two sites have otherwise of what a site file holds.
QList<SiteDifference> CompareSites(const ConfigClass& first, const ConfigClass& second);
