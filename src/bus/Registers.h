#pragma once

#include <QtGlobal>

/// Registers of the modules. Those of a channel lie at a base and the channel's number.
namespace Registers {

/// State of channel 1; the others follow.
inline constexpr qint32 State = 1;
/// Writing 0 resets a `Q6200XT`.
inline constexpr qint32 DisplayReset = 0;
/// Forced state of a channel.
inline constexpr qint32 ForcedStateBase = 16;
/// All states of a `Q6200XT`, packed.
inline constexpr qint32 AllStates = 25;
/// What the standing states mean, from channel 1 on.
inline constexpr qint32 Qualifier = 49;
/// 1 has a `Q6200XT` take in its changed forced states. Reads as the horn of any module, which the
/// technician drives by it.
inline constexpr qint32 Function = 64;
/// Lights all LEDs of a module for a test.
inline constexpr qint32 TestLeds = 66;
/// Acknowledges the panel as a whole.
inline constexpr qint32 PanelCommand = 67;
/// Of a `Q6200XT`: it was acknowledged.
inline constexpr qint32 Flag = 68;
/// What a module is.
inline constexpr qint32 ModelFamily = 132;
inline constexpr qint32 ModelVariant = 133;
/// Events that wait in the memory of the Q family.
inline constexpr qint32 EventCount = 144;
/// The memory, two words an event.
inline constexpr qint32 EventMemory = 146;
/// How many events were taken: the module drops them.
inline constexpr qint32 EventReceipt = 288;
/// Sets the clock of the module to zero.
inline constexpr qint32 Clock = 289;

/// State of a channel that has come back to normal; kept and told as 0.
inline constexpr qint16 NormalAgain = 5;
/// `Clock` of an event that a reading of the states has found, and no module's memory.
inline constexpr qint32 NoPanelClock = -1;
/// Value of `PanelCommand`.
inline constexpr qint16 Acknowledge = 2;

} // namespace Registers
