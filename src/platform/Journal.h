#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <utility>

namespace platform {

/// Entries of several fields for the journal of the machine, by its own protocol: one datagram an
/// entry, lines "NAME=value". The library's call would wait for a journal that stands still, and
/// the watch with it.
class Journal {
public:
    /// Names are upper case and digits with "_" between; values hold no line feed.
    using Fields = QList<std::pair<QByteArray, QByteArray>>;

    explicit Journal(const QString& socket = QStringLiteral("/run/systemd/journal/socket"));
    ~Journal();
    Journal(const Journal&) = delete;
    Journal& operator=(const Journal&) = delete;

    /// False when nobody listens or the journal has no room now; never waits.
    bool Send(const Fields& fields) const;

private:
    QByteArray path_;
    int handle_;
};

} // namespace platform
