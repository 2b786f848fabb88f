#include "platform/Folders.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

namespace platform {

namespace {
QString overriddenFolder;
QString overriddenName;
} // namespace

QString ApplicationFolder() {
    return overriddenFolder.isEmpty() ? QCoreApplication::applicationDirPath() : overriddenFolder;
}

QString ExecutableName() {
    return overriddenName.isEmpty()
               ? QFileInfo(QCoreApplication::applicationFilePath()).completeBaseName()
               : overriddenName;
}

void OverrideApplication(const QString& folder, const QString& name) {
    overriddenFolder = folder;
    overriddenName = name;
}

bool MakeFolder(const QString& path) {
    return QDir().mkpath(path);
}

} // namespace platform
