#pragma once

#include <QByteArray>
#include <QHash>
#include <QList>

/// The CRC of the line as the modules reckon it, apart from the program's own.
inline QByteArray WithCrc(const QByteArray& frame) {
    unsigned crc = 0xFFFF;
    for (const char byte : frame) {
        crc ^= quint8(byte);
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc >> 1) ^ ((crc & 1U) * 0xA001U);
    }
    return frame + char(crc & 0xFF) + char(crc >> 8);
}

/// Modules at the far end of a FakeLink: those that are there answer reads with their registers,
/// 0 where none is set, and take writes.
class FakeModules {
public:
    QHash<int, quint16>& operator[](int address) { return modules_[address]; }
    void Remove(int address) { modules_.remove(address); }

    QByteArray Answer(const QByteArray& frame) {
        const int address = quint8(frame[0]);
        if (!modules_.contains(address))
            return {};
        auto& registers = modules_[address];
        const int first = WordAt(frame, 2);
        const int second = WordAt(frame, 4);
        if (frame[1] == 3) {
            QByteArray reply = frame.left(2) + char(2 * second);
            for (int i = 0; i < second; ++i) {
                const quint16 word = registers.value(first + i);
                reply += char(word >> 8);
                reply += char(word & 0xFF);
            }
            return WithCrc(reply);
        }
        if (frame[1] == 6)
            registers[first] = quint16(second);
        return WithCrc(frame.left(6));
    }

    static int WordAt(const QByteArray& bytes, int offset) {
        return quint8(bytes[offset]) * 256 + quint8(bytes[offset + 1]);
    }

private:
    QHash<int, QHash<int, quint16>> modules_;
};
