#include "platform/Journal.h"

#include <QFile>
#include <algorithm>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace platform {

Journal::Journal(const QString& socket)
    : path_(QFile::encodeName(socket))
    , handle_(::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0)) {}

Journal::~Journal() {
    if (handle_ >= 0)
        close(handle_);
}

bool Journal::Send(const Fields& fields) const {
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    std::copy_n(path_.constData(), qMin(size_t(path_.size()), sizeof address.sun_path - 1),
                address.sun_path);
    QByteArray entry;
    for (const auto& [name, value] : fields)
        entry += name + '=' + value + '\n';
    return sendto(handle_, entry.constData(), size_t(entry.size()), MSG_NOSIGNAL,
                  reinterpret_cast<const sockaddr*>(&address), sizeof address) == entry.size();
}

} // namespace platform
