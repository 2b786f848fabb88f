#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>
#include <array>
#include <cstdlib>
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

/// A file number that closes itself.
class Handle {
public:
    explicit Handle(int number)
        : number_(number) {}
    ~Handle() { Close(); }
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;

    int Number() const { return number_; }
    void Close() {
        if (number_ >= 0)
            close(number_);
        number_ = -1;
    }
    /// What comes, until it is so many bytes or nothing comes for long.
    QByteArray Take(qsizetype count) const {
        QByteArray taken;
        pollfd state = {number_, POLLIN, 0};
        while (taken.size() < count && poll(&state, 1, 30000) > 0) {
            std::array<char, 4096> buffer = {};
            const ssize_t got = read(number_, buffer.data(), buffer.size());
            if (got <= 0)
                break;
            taken.append(buffer.data(), got);
        }
        return taken;
    }

private:
    int number_;
};

/// The master side of a new pseudo-terminal, and the name of the other.
inline int OpenTerminal(QString& name) {
    const int master = posix_openpt(O_RDWR | O_NOCTTY);
    grantpt(master);
    unlockpt(master);
    name = QFile::decodeName(ptsname(master));
    return master;
}
