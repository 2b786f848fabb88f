#pragma once

/// What a user may do; each level includes those below it.
namespace Levels {

inline constexpr int Operator = 1;
inline constexpr int Configuration = 2;
inline constexpr int Technician = 3;
inline constexpr int Service = 4;

} // namespace Levels

/// True when the connected user may do what `level` is asked for, and always on a site without a
/// user of level 1, which is open to everybody.
bool AccessOk(int level);
