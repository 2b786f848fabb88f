#pragma once

#include <QFile>
#include <QList>
#include <QProcess>
#include <QStandardPaths>
#include <QString>
#include <QStringList>
#include <csignal>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>
#include <utility>

/// Certificates of the servers "localhost" and "elsewhere" by the authority "ca.pem", and another
/// authority, in PEM files; "own.pem" is one with its key.
inline void MakeCertificates(const QString& folder) {
    const QString script = "set -e; cd \"$0\"\n"
                           "new='-newkey ec -pkeyopt ec_paramgen_curve:prime256v1 -nodes -days 2'\n"
                           "for ca in ca other; do openssl req -x509 $new -subj /CN=$ca "
                           "-keyout $ca.key -out $ca.pem; done\n"
                           "for host in localhost elsewhere; do openssl req -x509 $new -CA ca.pem "
                           "-CAkey ca.key -subj /CN=$host -addext subjectAltName=DNS:$host "
                           "-addext basicConstraints=critical,CA:FALSE "
                           "-keyout $host.key -out $host.pem; done\n"
                           "cat elsewhere.pem elsewhere.key > own.pem\n";
    QProcess shell;
    shell.start("sh", {"-c", script, folder});
    shell.waitForFinished(60000);
}

/// A port of this machine that nobody listens on.
inline int FreePort() {
    const int listener = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    auto* place = reinterpret_cast<sockaddr*>(&address);
    // The system chooses one.
    if (bind(listener, place, size) != 0 || getsockname(listener, place, &size) != 0)
        address.sin_port = 0;
    close(listener);
    return ntohs(address.sin_port);
}

/// rsyslogd as a process of its own on a port of its own, with TLS. It writes what it understood of
/// each message to a file of its folder.
class Rsyslog {
public:
    explicit Rsyslog(QString folder)
        : folder_(std::move(folder)) {
        MakeCertificates(folder_);
    }
    ~Rsyslog() { Stop(); }
    Rsyslog(const Rsyslog&) = delete;
    Rsyslog& operator=(const Rsyslog&) = delete;

    static QString Program() {
        return QStandardPaths::findExecutable("rsyslogd", {"/usr/sbin", "/usr/bin", "/sbin"});
    }
    int Port() const { return port_; }

    /// Starts with the certificate of a host; asks for one of whoever comes, or not.
    void Start(const QString& host = "localhost", bool asks = false) {
        const QString configuration =
            QStringLiteral(
                "global(workDirectory=\"%1\" net.enableDNS=\"off\" defaultNetstreamDriver=\"ossl\" "
                "defaultNetstreamDriverCAFile=\"%1/ca.pem\" "
                "defaultNetstreamDriverCertFile=\"%1/%2.pem\" "
                "defaultNetstreamDriverKeyFile=\"%1/%2.key\")\n"
                "module(load=\"imtcp\" streamDriver.name=\"ossl\" streamDriver.mode=\"1\" "
                "streamDriver.authMode=\"%4\")\n"
                "input(type=\"imtcp\" port=\"%3\" address=\"127.0.0.1\")\n"
                "template(name=\"t\" type=\"string\" string=\"%pri% %app-name% %msgid% "
                "%structured-data% %msg%\\n\")\n"
                "action(type=\"omfile\" file=\"%1/received\" template=\"t\")\n")
                .arg(folder_, host)
                .arg(port_)
                .arg(asks ? "x509/certvalid" : "anon");
        QFile file(folder_ + "/rsyslog.conf");
        file.open(QIODevice::WriteOnly);
        file.write(configuration.toUtf8());
        file.close();
        process_.start(Program(), {"-n", "-f", file.fileName(), "-i", folder_ + "/rsyslog.pid"});
        process_.waitForStarted();
    }
    void Stop() {
        Signal(SIGCONT);
        process_.terminate();
        process_.waitForFinished();
    }
    void Signal(int number) {
        if (process_.processId() > 0)
            ::kill(pid_t(process_.processId()), number);
    }
    int Lines() const {
        QFile file(folder_ + "/received");
        return file.open(QIODevice::ReadOnly) ? int(file.readAll().count('\n')) : 0;
    }
    QStringList Received() const {
        QFile file(folder_ + "/received");
        return file.open(QIODevice::ReadOnly)
                   ? QString::fromUtf8(file.readAll()).split('\n', Qt::SkipEmptyParts)
                   : QStringList();
    }
    /// The numbers of the events in the order in which they came, each once.
    QList<int> Numbers() const {
        QList<int> numbers;
        for (const QString& line : Received()) {
            const int number = line.section(" number=\"", 1).section('"', 0, 0).toInt();
            if (number > 0 && !numbers.contains(number))
                numbers += number;
        }
        return numbers;
    }

private:
    const QString folder_;
    const int port_ = FreePort();
    QProcess process_;
};
