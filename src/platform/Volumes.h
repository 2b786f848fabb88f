#pragma once

#include <QList>
#include <QString>
#include <optional>

namespace platform {

/// A medium that can be taken out: a stick or a card.
struct Volume {
    /// Label of the medium; the name of its folder when it has none.
    QString name;
    /// Folder at which it can be reached, without a separator at its end.
    QString path;
};

/// The media that are mounted now, by name: what lies under /media, /run/media and /mnt.
QList<Volume> RemovableVolumes();

/// Can files be kept in this folder? It must be there, and where media are mounted the medium as
/// well: what is written under an empty mount lands on the machine's own disk and is hidden later.
bool IsReady(const QString& folder);

/// Is the volume there on which a path lies or would lie?
enum class Medium {
    There,
    Missing,  ///< there is no place for it
    NotReady, ///< its place is there and nothing is mounted at it
};
Medium MediumOf(const QString& path);

/// Room on a volume, bytes.
struct Space {
    qint64 free = 0;
    qint64 total = 0;

    double Percent() const { return total > 0 ? 100.0 * double(free) / double(total) : 0; }
};

/// What this user may still write on the volume of a folder, and the volume's size. Nothing when
/// the volume doesn't say.
std::optional<Space> SpaceOf(const QString& folder);

/// Puts a size in the place of every volume's, for tests; nothing brings the real ones back.
void OverrideSpace(std::optional<Space> space);

/// Puts other media in their place, for tests; nothing brings the real ones back.
void OverrideVolumes(std::optional<QList<Volume>> volumes);

} // namespace platform
