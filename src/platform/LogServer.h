#pragma once

#include <QByteArray>
#include <QString>
#include <functional>
#include <memory>

namespace platform {

/// Where a log server is and how it is spoken to.
struct LogServerSetup {
    QString host;
    quint16 port = 6514;
    /// Encrypted, with the server's certificate and name verified.
    bool tls = true;
    /// PEM file of the authorities that may vouch for the server; those of the machine when empty.
    QString authority;
    /// PEM file of the certificate and key that the server may ask for; none when empty.
    QString certificate;
    bool operator==(const LogServerSetup&) const = default;
};

/// What keeps a log server from being reached.
enum class LogServerError {
    None,
    NameUnknown,        ///< the host has no address
    Refused,            ///< nobody listens on the port
    NoAnswer,           ///< no way there, or no answer in time
    Closed,             ///< the server ended the connection
    FileUnreadable,     ///< authority or certificate can't be read from its file
    Untrusted,          ///< the server's certificate isn't vouched for
    WrongName,          ///< the server's certificate is another host's
    CertificateExpired, ///< or not yet valid, by the machine's clock
    NoTls,              ///< no agreement on the encryption
};

/// The connection to a log server. Nothing waits: what is written goes out as the event loop runs.
class LogServer {
public:
    LogServer() = default;
    virtual ~LogServer() = default;
    LogServer(const LogServer&) = delete;
    LogServer& operator=(const LogServer&) = delete;

    /// The connection stands, verified if it is to be.
    std::function<void()> onConnected;
    /// It doesn't come about, or has ended; also the system's words, in English.
    std::function<void(LogServerError, const QString&)> onLost;
    /// Room in the buffer again.
    std::function<void()> onWritten;

    /// Begins to connect; a former connection ends without a word.
    virtual void Connect(const LogServerSetup& setup) = 0;
    /// Hands to the system what can be handed over at once and ends the connection, without a word.
    virtual void Close() = 0;
    virtual void Write(const QByteArray& bytes) = 0;
    /// Bytes that wait for the system to take them.
    virtual qint64 Buffered() const = 0;
    /// Bytes whose arrival at the server's machine isn't known, those of the buffer among them; at
    /// least as many as were written and haven't arrived.
    virtual qint64 Unsent() const = 0;
};

std::unique_ptr<LogServer> MakeLogServer();

} // namespace platform
