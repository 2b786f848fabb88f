#include "events/ForwardSettings.h"

#include "core/Bytes.h"
#include "core/Global.h"
#include "core/Rehearsal.h"
#include "core/SLVfonctions.h"
#include "platform/FileWriting.h"
#include "platform/Folders.h"

#include <QFile>
#include <QFileInfo>

namespace {

using ForwardFiles::Section;
const QString Journal = QStringLiteral("Journal");
const QString Syslog = QStringLiteral("Syslog");
const QString Server = QStringLiteral("Server");
const QString Port = QStringLiteral("Port");
const QString Tls = QStringLiteral("Tls");
const QString& Authority = ForwardFiles::Keys[0];
const QString& Certificate = ForwardFiles::Keys[1];

constexpr int HighestPort = 65535;

QString Word(bool value) {
    return value ? QStringLiteral("1") : QStringLiteral("0");
}

/// `other` is kept beside it, maybe from another folder under the same name.
void KeepFile(QString& path, const QString& other) {
    const QString folder = Global::InApplicationFolder(ForwardFiles::Folder);
    const QFileInfo info(path);
    QFile file(path);
    if (path.isEmpty() || info.absolutePath() == folder || !file.open(QIODevice::ReadOnly))
        return;
    platform::MakeFolder(folder);
    QFile::setPermissions(folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    QString kept = folder + u'/' + info.fileName();
    if (kept == other)
        kept = folder + QStringLiteral("/2-") + info.fileName();
    platform::ReplaceFile(kept, file.readAll());
    // One of them holds a key.
    QFile::setPermissions(kept, QFile::ReadOwner | QFile::WriteOwner);
    path = kept;
}

} // namespace

ForwardSettings ForwardSettings::Read() {
    const ForwardSettings factory;
    const auto text = [](const QString& key) { return IniRead(Section, key, QString()).trimmed(); };
    const auto truth = [](const QString& key, bool fallback) {
        return SLVfonctions::IsTrue(IniRead(Section, key, Word(fallback)));
    };
    ForwardSettings settings;
    // What is only rehearsed reaches nobody outside.
    settings.journal = !Rehearsal::Runs() && truth(Journal, factory.journal);
    settings.syslog = !Rehearsal::Runs() && truth(Syslog, factory.syslog);
    settings.server.host = text(Server);
    const qint32 port = Bytes::LongVal(text(Port));
    if (port >= 1 && port <= HighestPort)
        settings.server.port = quint16(port);
    settings.server.tls = truth(Tls, factory.server.tls);
    settings.server.authority = text(Authority);
    settings.server.certificate = text(Certificate);
    return settings;
}

void ForwardSettings::KeepFiles() {
    KeepFile(server.authority, server.certificate);
    KeepFile(server.certificate, server.authority);
}

bool ForwardSettings::Write() const {
    return IniWriteSection(Section, {{Journal, Word(journal)},
                                     {Syslog, Word(syslog)},
                                     {Server, server.host},
                                     {Port, QString::number(server.port)},
                                     {Tls, Word(server.tls)},
                                     {Authority, server.authority},
                                     {Certificate, server.certificate}});
}
