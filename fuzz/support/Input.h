#pragma once

#include "platform/CodePage.h"

#include <QByteArray>
#include <QString>
#include <cstddef>
#include <cstdint>
#include <numeric>

/// The bytes of a run, taken from the front. Behind their end there are zeros and empty texts.
class Input {
public:
    Input(const uint8_t* data, size_t size)
        : bytes_(QByteArray(reinterpret_cast<const char*>(data), qsizetype(size))) {}

    /// One input in so many, by the sum of its bytes: for what costs a run a hundred times the
    /// others.
    bool IsRare(int oneIn = 61) const {
        const int sum =
            std::accumulate(bytes_.cbegin(), bytes_.cend(), 0,
                            [](int before, char byte) { return before + quint8(byte); });
        return sum % oneIn == 0;
    }
    bool IsEmpty() const { return position_ >= bytes_.size(); }
    quint8 Byte() { return IsEmpty() ? quint8(0) : quint8(bytes_[position_++]); }
    quint16 Word() {
        const int high = Byte() << 8;
        return quint16(high | Byte());
    }
    qint32 Long() {
        const quint32 high = quint32(Word()) << 16;
        return qint32(high | Word());
    }
    /// At most `count` bytes.
    QByteArray Bytes(qsizetype count) {
        const QByteArray taken = bytes_.mid(position_, count);
        position_ += taken.size();
        return taken;
    }
    /// Exactly `count` bytes.
    QByteArray Filled(qsizetype count) { return Bytes(count).leftJustified(count, '\0'); }
    QByteArray Rest() { return Bytes(bytes_.size() - position_); }
    QString Text(qsizetype count) { return platform::FromCodePage(Bytes(count)); }

private:
    QByteArray bytes_;
    qsizetype position_ = 0;
};
