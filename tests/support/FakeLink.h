#pragma once

#include "platform/Clock.h"
#include "platform/RunTimeError.h"
#include "platform/SerialLink.h"

#include <QList>
#include <functional>

inline QByteArray FromHex(const char* hex) {
    return QByteArray::fromHex(hex);
}

/// A line whose far end is a function of the test: it gets each frame and gives the reply, empty
/// for silence. Waiting for a reply that doesn't come moves the clock to the deadline.
class FakeLink : public platform::SerialLink {
public:
    std::function<QByteArray(const QByteArray&)> answer = [](const QByteArray&) {
        return QByteArray();
    };
    QList<QByteArray> sent;
    bool canOpen = true;
    platform::LineFeatures features;
    int openings = 0;
    qint64 waitedMs = 0;
    /// RTS was raised and the buffers emptied ahead of each frame.
    bool readyToSend = true;

    int CommPort() const override { return port_; }
    void setCommPort(int number) override { port_ = number; }
    QString Settings() const override { return settings_; }
    void setSettings(const QString& settings) override { settings_ = settings; }
    bool PortOpen() const override { return open_; }
    void setPortOpen(bool open) override {
        if (open && !canOpen)
            throw platform::RunTimeError(platform::errors::PortUnavailable);
        openings += open ? 1 : 0;
        open_ = open;
    }
    platform::LineFeatures Features() const override { return features; }
    void setRTSEnable(bool on) override { raised_ = on; }
    void ClearBuffers() override {
        received_.clear();
        cleared_ = true;
    }
    void Output(const QByteArray& bytes) override {
        if (!open_)
            throw platform::RunTimeError(platform::errors::PortNotOpen);
        // The adapter sends by this line; what an exchange before left behind is no reply.
        readyToSend = readyToSend && raised_ && std::exchange(cleared_, false);
        sent += bytes;
        received_ += answer(bytes);
    }
    int InBufferCount() override { return int(received_.size()); }
    QByteArray Input() override { return std::exchange(received_, {}); }
    void WaitForInput(int count, qint64 deadlineMs) override {
        auto& clock = platform::Clock::Current();
        if (received_.size() >= count || deadlineMs <= clock.MonotonicMs())
            return;
        waitedMs += deadlineMs - clock.MonotonicMs();
        clock.Sleep(int(deadlineMs - clock.MonotonicMs()));
    }

private:
    int port_ = 1;
    QString settings_ = QStringLiteral("9600,N,8,1");
    bool open_ = false;
    bool raised_ = false;
    bool cleared_ = false;
    QByteArray received_;
};
