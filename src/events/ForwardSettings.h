#pragma once

#include "platform/LogServer.h"

#include <QString>
#include <QStringList>

/// Keys of the section "Forward" that name PEM files, and the folder in which the program keeps
/// them: it is the application's, and a backup takes it along.
namespace ForwardFiles {
inline const QString Section = QStringLiteral("Forward");
inline const QStringList Keys{QStringLiteral("Authority"), QStringLiteral("Certificate")};
inline const QString Folder = QStringLiteral("Certificates");
} // namespace ForwardFiles

/// Where events are forwarded to: the section "Forward" of the settings. Nowhere unless somebody
/// wants it.
struct ForwardSettings {
    /// To the journal of the machine.
    bool journal = false;
    /// By syslog to a server.
    bool syslog = false;
    platform::LogServerSetup server;

    bool operator==(const ForwardSettings&) const = default;

    static ForwardSettings Read();
    /// Copies the PEM files into the application's folder "Certificates", as a stick that they lie
    /// on goes again, and names the copies. Throws RunTimeError when they can't be written; a file
    /// that can't be read stays named as it is.
    void KeepFiles();
    /// False when the settings can't be written, which is told.
    bool Write() const;
};
