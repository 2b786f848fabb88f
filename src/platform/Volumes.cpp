#include "platform/Volumes.h"

#include <QFileInfo>
#include <QStorageInfo>
#include <algorithm>
#include <array>

namespace platform {

namespace {

std::optional<QList<Volume>> overridden;
std::optional<Space> overriddenSpace;

bool IsRemovable(const QString& path) {
    static const std::array roots{QStringLiteral("/media"), QStringLiteral("/run/media"),
                                  QStringLiteral("/mnt")};
    return std::any_of(roots.begin(), roots.end(), [&](const QString& root) {
        return path == root || path.startsWith(root + u'/');
    });
}

} // namespace

QList<Volume> RemovableVolumes() {
    if (overridden)
        return *overridden;
    QList<Volume> volumes;
    for (const QStorageInfo& storage : QStorageInfo::mountedVolumes()) {
        const QString path = storage.rootPath();
        if (!storage.isValid() || !storage.isReady() || !IsRemovable(path))
            continue;
        const QString label = storage.name();
        volumes.append({label.isEmpty() ? QFileInfo(path).fileName() : label, path});
    }
    std::sort(volumes.begin(), volumes.end(), [](const Volume& a, const Volume& b) {
        return QString::localeAwareCompare(a.name, b.name) < 0;
    });
    return volumes;
}

bool IsReady(const QString& folder) {
    const QString path = QFileInfo(folder).canonicalFilePath();
    if (path.isEmpty() || !QFileInfo(path).isDir())
        return false;
    const QStorageInfo storage(path);
    return storage.isReady() && (!IsRemovable(path) || IsRemovable(storage.rootPath()));
}

Medium MediumOf(const QString& path) {
    if (!IsRemovable(path))
        return Medium::There;
    QString there = path;
    while (!QFileInfo::exists(there))
        there = QFileInfo(there).path();
    const QStorageInfo storage(there);
    if (IsRemovable(storage.rootPath()))
        return storage.isReady() && !storage.isReadOnly() ? Medium::There : Medium::NotReady;
    static const QStringList areas{QStringLiteral("/media"), QStringLiteral("/run/media"),
                                   QStringLiteral("/mnt"), QStringLiteral("/run"),
                                   QStringLiteral("/")};
    return areas.contains(there) ? Medium::Missing : Medium::NotReady;
}

std::optional<Space> SpaceOf(const QString& folder) {
    if (overriddenSpace)
        return overriddenSpace;
    const QStorageInfo storage(folder);
    if (!storage.isValid() || !storage.isReady() || storage.bytesTotal() <= 0)
        return std::nullopt;
    return Space{storage.bytesAvailable(), storage.bytesTotal()};
}

void OverrideSpace(std::optional<Space> space) {
    overriddenSpace = space;
}

void OverrideVolumes(std::optional<QList<Volume>> volumes) {
    overridden = std::move(volumes);
}

} // namespace platform
