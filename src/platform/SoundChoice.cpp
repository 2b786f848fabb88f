#include "platform/SoundChoice.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace platform {

namespace {

/// More is no alarm sound, and reading it would hold up what waits behind.
constexpr qint64 MostBytes = qint64(32) * 1024 * 1024;

std::optional<Wave> ReadFile(const QString& path) {
    QFile file(path);
    // A pipe or device under that name would block.
    if (!QFileInfo(path).isFile() || file.size() > MostBytes || !file.open(QIODevice::ReadOnly))
        return std::nullopt;
    return ReadWave(file.read(MostBytes));
}

std::optional<Wave> AudibleFile(const QString& path) {
    std::optional<Wave> wave = ReadFile(path);
    return wave && IsAudible(*wave) ? std::move(wave) : std::nullopt;
}

} // namespace

SoundChoice ChooseSound(const QString& path, const SoundReserve& reserve) {
    if (std::optional<Wave> wave = AudibleFile(path))
        return {*std::move(wave), QString()};
    if (std::optional<Wave> wave = reserve ? ReadWave(reserve()) : std::nullopt) {
        const bool meantSilent = !IsAudible(*wave) && ReadFile(path);
        return {*std::move(wave), meantSilent ? QString() : QStringLiteral("BASE")};
    }
    const QDir folder(QFileInfo(path).absolutePath());
    for (const QString& name : folder.entryList({QStringLiteral("AlarmSound*.wav")}, QDir::Files)) {
        if (std::optional<Wave> wave = AudibleFile(folder.filePath(name)))
            return {*std::move(wave), name};
    }
    return {Beep(), QStringLiteral("BEEP")};
}

} // namespace platform
