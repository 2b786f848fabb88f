#include "fuzz/support/Reply.h"

#include "bus/CommFunctions.h"

namespace Fuzz {

namespace {

enum Kind { AsItComes = 0, AnyContent = 1 };
constexpr int KindMask = 3;
constexpr int Disturbed = 4;

QByteArray WithCrc(QByteArray reply) {
    const int length = int(reply.size());
    reply += QByteArray(2, '\0');
    const auto crc = quint16(CommFunctions::CRC16(reply, length));
    reply[length] = char(crc & 0xFF);
    reply[length + 1] = char(crc >> 8);
    return reply;
}

} // namespace

QByteArray ReplyTo(const QByteArray& frame, Input& input) {
    const int kind = input.Byte();
    if ((kind & KindMask) == AsItComes)
        return input.Bytes(input.Byte());
    QByteArray reply;
    if ((kind & KindMask) == AnyContent) {
        reply = WithCrc(input.Bytes(input.Byte()));
    } else {
        reply = frame.left(2);
        if (quint8(frame[1]) == CommFunctions::ReadRegisters) {
            const int count = (quint8(frame[4]) << 8 | quint8(frame[5])) & 0x7F;
            reply += char(2 * count);
            reply += input.Filled(2 * qsizetype(count));
        } else {
            reply += input.Filled(4);
        }
        reply = WithCrc(reply);
    }
    if ((kind & Disturbed) != 0) {
        const int place = input.Byte() % int(reply.size());
        reply[place] = char(quint8(reply[place]) ^ input.Byte());
    }
    return reply;
}

} // namespace Fuzz
