#include "platform/LogServer.h"

#include <QFile>
#include <QList>
#include <QNetworkProxy>
#include <QSslCertificate>
#include <QSslConfiguration>
#include <QSslError>
#include <QSslKey>
#include <QSslSocket>
#include <linux/sockios.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <optional>
#include <sys/ioctl.h>
#include <sys/socket.h>

namespace platform {

namespace {

/// A far end that doesn't answer for so long is gone, ms.
constexpr int UserTimeout = 60000;
/// A silent line is asked after so long, s.
constexpr int KeepAliveIdle = 30;

/// The name in a certificate says something only if somebody vouches for it.
LogServerError Meaning(const QList<QSslError>& errors) {
    auto meaning = LogServerError::None;
    for (const QSslError& error : errors) {
        switch (error.error()) {
        case QSslError::HostNameMismatch:
            meaning = LogServerError::WrongName;
            break;
        case QSslError::CertificateExpired:
        case QSslError::CertificateNotYetValid:
            return LogServerError::CertificateExpired;
        default:
            return LogServerError::Untrusted;
        }
    }
    return meaning;
}

LogServerError Meaning(QAbstractSocket::SocketError error) {
    switch (error) {
    case QAbstractSocket::HostNotFoundError:
        return LogServerError::NameUnknown;
    case QAbstractSocket::ConnectionRefusedError:
        return LogServerError::Refused;
    case QAbstractSocket::RemoteHostClosedError:
        return LogServerError::Closed;
    case QAbstractSocket::SslHandshakeFailedError:
    case QAbstractSocket::SslInternalError:
    case QAbstractSocket::SslInvalidUserDataError:
        return LogServerError::NoTls;
    default:
        return LogServerError::NoAnswer;
    }
}

QByteArray ContentOf(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QSslKey KeyIn(const QByteArray& pem) {
    for (const QSsl::KeyAlgorithm algorithm : {QSsl::Rsa, QSsl::Ec}) {
        QSslKey key(pem, algorithm);
        if (!key.isNull())
            return key;
    }
    return {};
}

/// Nothing when a file that is named can't be used.
std::optional<QSslConfiguration> ConfigurationOf(const LogServerSetup& setup) {
    QSslConfiguration configuration = QSslConfiguration::defaultConfiguration();
    configuration.setPeerVerifyMode(QSslSocket::VerifyPeer);
    configuration.setProtocol(QSsl::TlsV1_2OrLater);
    if (!setup.authority.isEmpty()) {
        const auto authorities = QSslCertificate::fromData(ContentOf(setup.authority), QSsl::Pem);
        if (authorities.isEmpty())
            return std::nullopt;
        configuration.setCaCertificates(authorities);
    }
    if (!setup.certificate.isEmpty()) {
        const QByteArray pem = ContentOf(setup.certificate);
        const auto chain = QSslCertificate::fromData(pem, QSsl::Pem);
        const QSslKey key = KeyIn(pem);
        if (chain.isEmpty() || key.isNull())
            return std::nullopt;
        configuration.setLocalCertificateChain(chain);
        configuration.setPrivateKey(key);
    }
    return configuration;
}

/// The library of the encryption is loaded with the first socket, and only then.
class SocketServer : public LogServer {
public:
    void Connect(const LogServerSetup& setup) override;
    void Close() override;
    void Write(const QByteArray& bytes) override;
    qint64 Buffered() const override;
    qint64 Unsent() const override;

private:
    void MakeSocket();
    void Stands() const;
    void Lose(const QSslSocket* socket, LogServerError error, const QString& words);

    std::unique_ptr<QSslSocket> socket_;
    LogServerError verdict_ = LogServerError::None; // on the server's certificate
};

void SocketServer::MakeSocket() {
    verdict_ = LogServerError::None;
    socket_ = std::make_unique<QSslSocket>();
    QSslSocket* socket = socket_.get();
    socket->setProxy(QNetworkProxy::NoProxy);
    QObject::connect(socket, &QSslSocket::sslErrors, socket,
                     [this](const QList<QSslError>& errors) { verdict_ = Meaning(errors); });
    // Told when the socket is through with it: whoever hears of it may connect anew.
    QObject::connect(
        socket, &QSslSocket::errorOccurred, socket,
        [this, socket](QAbstractSocket::SocketError error) {
            const auto verdict = verdict_ == LogServerError::None ? Meaning(error) : verdict_;
            Lose(socket, verdict, socket->errorString());
        },
        Qt::QueuedConnection);
    // None of them says anything that counts, and one that talks must not fill the memory.
    QObject::connect(socket, &QSslSocket::readyRead, socket, [socket] { socket->readAll(); });
    const auto written = [this] { onWritten(); };
    QObject::connect(socket, &QSslSocket::bytesWritten, socket, written);
    QObject::connect(socket, &QSslSocket::encryptedBytesWritten, socket, written);
}

void SocketServer::Connect(const LogServerSetup& setup) {
    Close();
    MakeSocket();
    QSslSocket* socket = socket_.get();
    QObject::connect(socket, setup.tls ? &QSslSocket::encrypted : &QSslSocket::connected, socket,
                     [this] { Stands(); });
    if (!setup.tls) {
        socket->connectToHost(setup.host, setup.port);
        return;
    }
    const auto configuration = ConfigurationOf(setup);
    if (!configuration) {
        QMetaObject::invokeMethod(
            socket,
            [this, socket] {
                Lose(socket, LogServerError::FileUnreadable, QStringLiteral("No PEM in the file"));
            },
            Qt::QueuedConnection);
        return;
    }
    socket->setSslConfiguration(*configuration);
    socket->connectToHostEncrypted(setup.host, setup.port);
}

void SocketServer::Stands() const {
    const int handle = int(socket_->socketDescriptor());
    socket_->setSocketOption(QAbstractSocket::KeepAliveOption, 1);
    setsockopt(handle, IPPROTO_TCP, TCP_KEEPIDLE, &KeepAliveIdle, sizeof KeepAliveIdle);
    setsockopt(handle, IPPROTO_TCP, TCP_USER_TIMEOUT, &UserTimeout, sizeof UserTimeout);
    onConnected();
}

void SocketServer::Lose(const QSslSocket* socket, LogServerError error, const QString& words) {
    // A late word of a former connection.
    if (socket != socket_.get())
        return;
    Close();
    onLost(error, words);
}

/// The socket may be in the middle of a word.
void SocketServer::Close() {
    if (!socket_)
        return;
    socket_->flush();
    socket_->disconnect();
    socket_.release()->deleteLater();
}

void SocketServer::Write(const QByteArray& bytes) {
    if (socket_)
        socket_->write(bytes);
}

qint64 SocketServer::Buffered() const {
    return socket_ ? socket_->bytesToWrite() + socket_->encryptedBytesToWrite() : 0;
}

qint64 SocketServer::Unsent() const {
    int queued = 0;
    if (socket_ && socket_->socketDescriptor() >= 0)
        ioctl(int(socket_->socketDescriptor()), SIOCOUTQ, &queued);
    return Buffered() + queued;
}

} // namespace

/// The end of the program waits for a look-up that is under way: name servers that don't answer are
/// given up sooner than usual, and asked again with the next try. Set ahead of the first look-up.
std::unique_ptr<LogServer> MakeLogServer() {
    if (qEnvironmentVariableIsEmpty("RES_OPTIONS"))
        qputenv("RES_OPTIONS", "timeout:2 attempts:1");
    return std::make_unique<SocketServer>();
}

} // namespace platform
