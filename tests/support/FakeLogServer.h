#pragma once

#include "platform/LogServer.h"

#include <QByteArray>
#include <QList>

/// A log server that the test lets come, take and go.
class FakeLogServer : public platform::LogServer {
public:
    QList<platform::LogServerSetup> tries;
    QByteArray taken;
    qint64 unsent = 0;
    bool open = false;

    /// The connection comes about, or doesn't.
    void Accept() {
        open = true;
        onConnected();
    }
    void Fail(platform::LogServerError error) {
        open = false;
        onLost(error, QStringLiteral("words of the system"));
    }
    /// The event numbers of what was written since the last question.
    QList<int> Numbers() {
        QList<int> numbers;
        for (qsizetype at = 0; (at = taken.indexOf(" number=\"", at)) >= 0; ++at)
            numbers += taken.mid(at + 9, taken.indexOf('"', at + 9) - at - 9).toInt();
        taken.clear();
        return numbers;
    }

    void Connect(const platform::LogServerSetup& setup) override { tries += setup; }
    void Close() override { open = false; }
    void Write(const QByteArray& bytes) override { taken += bytes; }
    qint64 Buffered() const override { return unsent; }
    qint64 Unsent() const override { return unsent; }
};
