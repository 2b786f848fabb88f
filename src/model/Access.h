#pragma once

/// True when the connected user may do what `level` is asked for, and always on a site without a
/// user of level 1, which is open to everybody.
bool AccessOk(int level);
