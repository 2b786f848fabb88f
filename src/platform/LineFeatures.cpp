#include "platform/LineFeatures.h"

#include <QFile>
#include <sys/ioctl.h>

namespace platform {

namespace {

using Answer = LineFeatures::Answer;

/// The flags of the driver, nothing where it has none.
std::optional<serial_struct> StateOf(const DeviceControl& control, int handle) {
    serial_struct state = {};
    if (control(handle, TIOCGSERIAL, &state) != 0)
        return std::nullopt;
    return state;
}

bool IsLowLatency(const std::optional<serial_struct>& state) {
    return state && (state->flags & ASYNC_LOW_LATENCY) != 0;
}

/// A driver that doesn't know the flag takes it without an error and drops it.
Answer AskByFlag(const DeviceControl& control, int handle) {
    std::optional<serial_struct> state = StateOf(control, handle);
    if (!state)
        return Answer::NotOffered;
    if (IsLowLatency(state))
        return Answer::Taken;
    state->flags |= ASYNC_LOW_LATENCY;
    if (control(handle, TIOCSSERIAL, &*state) != 0)
        return Answer::Refused;
    return IsLowLatency(StateOf(control, handle)) ? Answer::Taken : Answer::NotOffered;
}

/// Written only as it must be: the file is the administrator's.
Answer AskByTimer(const QString& timer) {
    static const QByteArray shortest = QByteArrayLiteral("1");
    QFile file(timer);
    if (!file.exists())
        return Answer::NotOffered;
    if (file.open(QIODevice::ReadOnly) && file.readAll().trimmed() == shortest)
        return Answer::Taken;
    file.close();
    const bool written = file.open(QIODevice::WriteOnly | QIODevice::Unbuffered) &&
                         file.write(shortest) == shortest.size();
    return written ? Answer::Taken : Answer::Refused;
}

} // namespace

Answer AskForLowLatency(const DeviceControl& control, int handle, const QString& timer) {
    const Answer flag = AskByFlag(control, handle);
    if (flag == Answer::Taken)
        return flag;
    const Answer time = AskByTimer(timer);
    return time == Answer::NotOffered ? flag : time;
}

Answer Rs485Direction::Take(const DeviceControl& control, int handle) {
    constexpr quint32 Polarity = SER_RS485_RTS_ON_SEND | SER_RS485_RTS_AFTER_SEND;
    serial_rs485 found = {};
    if (control(handle, TIOCGRS485, &found) != 0)
        return Answer::Refused;
    serial_rs485 wanted = found;
    const quint32 polarity = found.flags & Polarity;
    if (polarity == 0 || polarity == Polarity)
        wanted.flags = (wanted.flags & ~Polarity) | SER_RS485_RTS_ON_SEND;
    // The own frame, heard again, would stand ahead of the reply.
    wanted.flags &= ~quint32(SER_RS485_RX_DURING_TX);
    wanted.flags |= SER_RS485_ENABLED;
    // The driver gives back what it makes of it.
    if (control(handle, TIOCSRS485, &wanted) != 0 || (wanted.flags & SER_RS485_ENABLED) == 0)
        return Answer::Refused;
    former_ = found;
    return Answer::Taken;
}

void Rs485Direction::Release(const DeviceControl& control, int handle) {
    if (former_)
        control(handle, TIOCSRS485, &*former_);
    former_.reset();
}

} // namespace platform
