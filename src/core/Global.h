#pragma once

#include "platform/Sound.h"

#include <QString>
#include <functional>
#include <memory>

/// What all of the program shares, beside the site model.
namespace Global {

inline const QString Title = QStringLiteral("Korvanelle II");
inline constexpr int VersionMajor = KORVANELLE_VERSION_MAJOR;
inline constexpr int VersionMinor = KORVANELLE_VERSION_MINOR;
inline constexpr int VersionRevision = KORVANELLE_VERSION_REVISION;

struct State {
    /// Level of the connected user; 0 is nobody.
    int userLevel = 0;
    /// Keeps the name after a disconnection by inactivity.
    QString userName;
    /// Column of T_Language, counted from its fourth.
    qint16 language = 0;
    /// True leaves the screens at their design size.
    bool noResize = true;
    /// Priority of the alarm that sounds; 0 when nothing does.
    qint16 currentPriority = 0;
    /// The two one-letter marks of every origin field.
    QString panelMark;
    QString channelMark;
    /// Words of 10100 and 50012, kept for the mirror and panel screens.
    QString text10100;
    QString text50012;
    /// Help file of the language in use; empty when there is none.
    QString helpFile;
    std::unique_ptr<platform::Sound> sound;
    /// Set while a sound is tried out: what is to be told when an alarm ends that.
    std::function<void()> soundTrial;
};

State& Get();

/// Reads the marks and the kept words in the language in use.
void ReadMarks();
/// A file or folder of the application's own.
QString InApplicationFolder(const QString& name);

} // namespace Global
