#pragma once

#include "core/Config.h"
#include "core/Global.h"
#include "platform/Folders.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

/// How a tool comes to the configuration base.
namespace Base {

/// The base of a folder; that folder is the program's from here on. False when it can't be opened,
/// which was told.
inline bool Open(const QString& folder) {
    platform::OverrideApplication(QDir(folder).absolutePath(), QStringLiteral("korvanelle"));
    return Config::OpenConfigBase();
}

/// A copy of the base `path` in a folder of the run's own, and the marks in it.
inline bool OpenCopy(const char* path, const QTemporaryDir& folder) {
    QFile::copy(QString::fromLocal8Bit(path), folder.filePath(QStringLiteral("korvanelle.cfg")));
    if (!Open(folder.path()))
        return false;
    Global::ReadMarks();
    return true;
}

} // namespace Base
