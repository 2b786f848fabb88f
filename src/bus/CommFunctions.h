#pragma once

#include "platform/SerialLink.h"

#include <QByteArray>
#include <QList>

/// A register's value as the rest of the program sees it.
using Words = QList<qint16>;

class BusDiagnosis;

/// The synchronous exchanges of the bus, Modbus RTU with the functions 3, 6 and 16. Each waits
/// 25 ms ahead of its frame, blocks until the reply or the deadline and gives false for any
/// reply that isn't right, with no reason given. None is repeated here.
namespace CommFunctions {

/// Rest between two frames on the line, ms.
inline constexpr int FrameGap = 25;
/// How long a write waits for its reply, ms.
inline constexpr int WriteDeadline = 500;
inline constexpr quint8 ReadRegisters = 3;
inline constexpr quint8 WriteRegister = 6;
inline constexpr quint8 WriteRegisters = 16;

/// Reads `values.size()` registers from `registerNo` on. On failure `values` is as it was.
bool LitMots(platform::SerialLink& link, quint8 module, qint32 registerNo, Words& values);
/// Writes all of `values` from `registerNo` on. Module 0 is a broadcast, true at once.
bool EcritMots(platform::SerialLink& link, quint8 module, qint32 registerNo, const Words& values);
/// Writes one register. Module 0 is a broadcast, true at once.
bool EcritUnMot(platform::SerialLink& link, quint8 module, qint32 registerNo, qint16 value);
/// Model code that the module at an address reports: 0 nothing answers, 1 `Q7100` (and `P5000`,
/// which can't be told from it), 2 `Q6200XT`, 3 `Q7000`, 5 `P5500`.
int GetModuleType(platform::SerialLink& link, quint8 module);

/// Who is told of each exchange, for as long as it lives; a null pointer is nobody. The reply to a
/// write that is taken in spite of its CRC is told as one with a bad CRC.
void ReportTo(BusDiagnosis* diagnosis);

/// Waits until nothing more comes from the line, at most 3 s, and drops what came: the rest of a
/// reply that is longer than its deadline.
void WaitForSilence(platform::SerialLink& link);

/// CRC-16/MODBUS of the first `length` bytes. 1 when `length` isn't below the last index.
qint16 CRC16(const QByteArray& buffer, int length);

/// Deadline of a read, ms: 1 s and 3 µs for each word and each bit per second. It decides how
/// long a dead panel holds up the cycle.
int ReadDeadline(int words, int speed);

} // namespace CommFunctions

using CommFunctions::EcritMots;
using CommFunctions::EcritUnMot;
using CommFunctions::GetModuleType;
using CommFunctions::LitMots;
