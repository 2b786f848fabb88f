#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <utility>

/// The settings file beside the executable: what belongs to the machine.
namespace SLVfonctions {

QString IniFileName();
QString IniRead(const QString& section, const QString& key, const QString& fallback);
/// False, as for IniWriteSection, when the change didn't reach the file: that is told, and what it
/// says counts until the end of the program and goes out with the next change.
bool IniWrite(const QString& section, const QString& key, const QString& value);
void IniDeleteKey(const QString& section, const QString& key);
void IniDeleteSection(const QString& section);
/// Keys and values of a section in the file's order, and their replacement in one change of the
/// file.
QList<std::pair<QString, QString>> IniReadSection(const QString& section);
bool IniWriteSection(const QString& section, const QList<std::pair<QString, QString>>& values);
/// Another number behind each change of the file.
quint64 IniRevision();
/// Fills `keys` with the section's key names and gives their number.
int IniReadKeys(QStringList& keys, const QString& section);

/// What a port name means on this machine.
struct PortSetting {
    QString device;
    /// The device is to switch the direction of a two-wire line.
    bool rs485 = false;
    bool operator==(const PortSetting&) const = default;
};

/// A port by its name: the key of that name in the section "Ports", a device with ",rs485" behind
/// it or without. Without a key the device is /dev/ttyS(n-1) for "COMn", /dev/lp(n-1) for "LPTn".
/// In a rehearsal all serial ports are its line and all parallel ones its file of prints.
PortSetting PortOf(const QString& portName);
/// Sets a port, from its next opening on.
void setPort(const QString& portName, const PortSetting& port);

QString DevicePath(const QString& portName);
/// Names the device of a port; whether it switches the direction stays as it is.
void setDevicePath(const QString& portName, const QString& device);

/// Boolean text of the settings: any number but 0, or a word of truth.
bool IsTrue(const QString& value);

} // namespace SLVfonctions

using SLVfonctions::IniDeleteKey;
using SLVfonctions::IniDeleteSection;
using SLVfonctions::IniRead;
using SLVfonctions::IniReadKeys;
using SLVfonctions::IniReadSection;
using SLVfonctions::IniRevision;
using SLVfonctions::IniWrite;
using SLVfonctions::IniWriteSection;
