#include "core/SLVfonctions.h"

#include "core/Bytes.h"
#include "core/ErrorHandling.h"
#include "core/Global.h"
#include "core/Rehearsal.h"
#include "platform/Folders.h"
#include "platform/SettingsFile.h"

#include <memory>

namespace SLVfonctions {

using ErrorHandling::Guard;

namespace {

const QString PortSection = QStringLiteral("Ports");
const QString Rs485Word = QStringLiteral("rs485");

/// The engine of the file in use; another path, as tests set it, brings another engine.
platform::SettingsFile& File() {
    static std::unique_ptr<platform::SettingsFile> file;
    const QString path = IniFileName();
    if (!file || file->Path() != path) {
        file.reset();
        file = std::make_unique<platform::SettingsFile>(path);
    }
    return *file;
}

} // namespace

QString IniFileName() {
    return Global::InApplicationFolder(platform::ExecutableName() + QStringLiteral(".ini"));
}

QString IniRead(const QString& section, const QString& key, const QString& fallback) {
    QString value = fallback;
    Guard("SLVfonctions.IniRead", [&] { value = File().Read(section, key, fallback); });
    return value;
}

bool IniWrite(const QString& section, const QString& key, const QString& value) {
    return Guard("SLVfonctions.IniWrite", [&] { File().Write(section, key, value); });
}

void IniDeleteKey(const QString& section, const QString& key) {
    Guard("SLVfonctions.IniDeleteKey", [&] { File().DeleteKey(section, key); });
}

void IniDeleteSection(const QString& section) {
    Guard("SLVfonctions.IniDeleteSection", [&] { File().DeleteSection(section); });
}

QList<std::pair<QString, QString>> IniReadSection(const QString& section) {
    QList<std::pair<QString, QString>> values;
    Guard("SLVfonctions.IniReadSection", [&] { values = File().ReadSection(section); });
    return values;
}

bool IniWriteSection(const QString& section, const QList<std::pair<QString, QString>>& values) {
    return Guard("SLVfonctions.IniWriteSection", [&] { File().WriteSection(section, values); });
}

quint64 IniRevision() {
    quint64 revision = 0;
    Guard("SLVfonctions.IniRevision", [&] { revision = File().Revision(); });
    return revision;
}

int IniReadKeys(QStringList& keys, const QString& section) {
    keys.clear();
    Guard("SLVfonctions.IniReadKeys", [&] { keys = File().Keys(section); });
    return int(keys.size());
}

PortSetting PortOf(const QString& portName) {
    const int number = Bytes::ShortVal(portName.mid(3));
    const bool parallel = portName.startsWith(QStringLiteral("LPT"), Qt::CaseInsensitive);
    if (Rehearsal::Runs())
        return {parallel ? Rehearsal::Prints() : Rehearsal::Line(), false};
    const QString fallback = parallel ? QStringLiteral("/dev/lp%1") : QStringLiteral("/dev/ttyS%1");
    const QString value = IniRead(PortSection, portName, fallback.arg(number - 1));
    // A name of a device may hold a comma of its own.
    const qsizetype comma = value.lastIndexOf(u',');
    if (comma < 0 || value.mid(comma + 1).trimmed().compare(Rs485Word, Qt::CaseInsensitive) != 0)
        return {value, false};
    return {value.left(comma).trimmed(), true};
}

void setPort(const QString& portName, const PortSetting& port) {
    IniWrite(PortSection, portName,
             port.rs485 ? port.device + QStringLiteral(",") + Rs485Word : port.device);
}

QString DevicePath(const QString& portName) {
    return PortOf(portName).device;
}

void setDevicePath(const QString& portName, const QString& device) {
    setPort(portName, {device, PortOf(portName).rs485});
}

bool IsTrue(const QString& value) {
    return Bytes::Val(value) != 0 ||
           value.compare(QStringLiteral("true"), Qt::CaseInsensitive) == 0;
}

} // namespace SLVfonctions
