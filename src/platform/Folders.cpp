#include "platform/Folders.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

namespace platform {

namespace {
QString namedFolder;
QStringList formerFolders; // named before, the last one first
QString overriddenFolder;
QString overriddenName;
} // namespace

QString ApplicationFolder() {
    if (!overriddenFolder.isEmpty())
        return overriddenFolder;
    return namedFolder.isEmpty() ? QCoreApplication::applicationDirPath() : namedFolder;
}

bool UseApplicationFolder(const QString& folder) {
    if (!namedFolder.isEmpty())
        formerFolders.prepend(namedFolder);
    namedFolder = QDir(folder).absolutePath();
    return MakeFolder(namedFolder) && QFileInfo(namedFolder).isWritable();
}

QStringList ProgramFolders() {
    QStringList folders = {ApplicationFolder()};
    if (overriddenFolder.isEmpty())
        folders += formerFolders;
    if (overriddenFolder.isEmpty() && folders.last() != QCoreApplication::applicationDirPath())
        folders += QCoreApplication::applicationDirPath();
    return folders;
}

QString ProgramFile(const QString& name) {
    const QStringList folders = ProgramFolders();
    for (const QString& folder : folders) {
        QString path = folder + u'/' + name;
        if (QFileInfo::exists(path))
            return path;
    }
    return folders.first() + u'/' + name;
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
