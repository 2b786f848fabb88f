#pragma once

/// Asks the operator for a code and connects its user; an empty code disconnects. True when the
/// prompt was confirmed, whatever was typed.
bool AskPassword();

/// True on a site with a user of level 1: levels count there.
bool IsGuarded();
