#pragma once

class PanelClass;

/// Saves what the program starts from if the site was changed. A failure is told and gives false.
/// The site's own file is saved from the main menu: the site still counts as changed.
bool SaveSite();

/// Copies what is configured of a panel, and nothing that the bus has found out about it: states
/// and presence of the source may be minutes old, or those of another module. A panel of the site
/// that goes out of service by it, or comes back, is remembered as such.
void CopySettings(PanelClass& to, const PanelClass& from);
