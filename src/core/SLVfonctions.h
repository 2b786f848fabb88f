#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <utility>

/// The settings file beside the executable: what belongs to the machine.
namespace SLVfonctions {

QString IniFileName();
QString IniRead(const QString& section, const QString& key, const QString& fallback);
void IniWrite(const QString& section, const QString& key, const QString& value);
void IniDeleteKey(const QString& section, const QString& key);
void IniDeleteSection(const QString& section);
/// Keys and values of a section in the file's order, and their replacement in one change of the
/// file.
QList<std::pair<QString, QString>> IniReadSection(const QString& section);
void IniWriteSection(const QString& section, const QList<std::pair<QString, QString>>& values);
/// Fills `keys` with the section's key names and gives their number.
int IniReadKeys(QStringList& keys, const QString& section);

/// The device of a port by its name: the key of that name in the section "Ports", else
/// /dev/ttyS(n-1) for "COMn" and /dev/lp(n-1) for "LPTn".
QString DevicePath(const QString& portName);
/// Names the device of a port, from its next opening on.
void setDevicePath(const QString& portName, const QString& device);

/// Boolean text of the settings: any number but 0, or a word of truth.
bool IsTrue(const QString& value);

} // namespace SLVfonctions

using SLVfonctions::IniDeleteKey;
using SLVfonctions::IniDeleteSection;
using SLVfonctions::IniRead;
using SLVfonctions::IniReadKeys;
using SLVfonctions::IniReadSection;
using SLVfonctions::IniWrite;
using SLVfonctions::IniWriteSection;
