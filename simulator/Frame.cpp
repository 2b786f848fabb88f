#include "simulator/Frame.h"

#include <array>

namespace Sim {

namespace {

constexpr std::size_t ShortFrame = 8; // functions 3 and 6
constexpr std::size_t ValuesAt = 7;   // first value of function 16
constexpr std::size_t CrcSize = 2;

constexpr std::array<std::uint16_t, 256> MakeCrcTable() {
    std::array<std::uint16_t, 256> table{};
    for (unsigned index = 0; index < table.size(); ++index) {
        unsigned crc = index;
        for (int bit = 0; bit < 8; ++bit) {
            crc = (crc & 1U) != 0 ? (crc >> 1U) ^ 0xA001U : crc >> 1U;
        }
        table[index] = static_cast<std::uint16_t>(crc);
    }
    return table;
}

std::uint16_t WordAt(const Bytes& bytes, std::size_t at) {
    return static_cast<std::uint16_t>(bytes[at] << 8 | bytes[at + 1]);
}

void AppendWord(Bytes& bytes, std::uint16_t word) {
    bytes.push_back(static_cast<std::uint8_t>(word >> 8));
    bytes.push_back(static_cast<std::uint8_t>(word & 0xFF));
}

Request Decode(const Bytes& frame) {
    Request request;
    request.address = frame[0];
    request.function = static_cast<Function>(frame[1]);
    request.first = WordAt(frame, 2);
    request.count = WordAt(frame, 4);
    if (request.function == Function::WriteRegister) {
        request.values = {request.count};
        request.count = 1;
    } else if (request.function == Function::WriteRegisters) {
        for (std::size_t i = 0; i < request.count; ++i) {
            request.values.push_back(WordAt(frame, ValuesAt + 2 * i));
        }
    }
    return request;
}

} // namespace

std::uint16_t FrameCrc(std::span<const std::uint8_t> bytes) {
    static constexpr auto table = MakeCrcTable();
    unsigned crc = 0xFFFF;
    for (const auto byte : bytes) {
        crc = (crc >> 8U) ^ table[(crc ^ byte) & 0xFFU];
    }
    return static_cast<std::uint16_t>(crc);
}

void AppendCrc(Bytes& frame) {
    const auto crc = FrameCrc(frame);
    frame.push_back(static_cast<std::uint8_t>(crc & 0xFF));
    frame.push_back(static_cast<std::uint8_t>(crc >> 8));
}

Bytes ReadReply(const Request& request, const Words& words) {
    Bytes frame{request.address, static_cast<std::uint8_t>(request.function),
                static_cast<std::uint8_t>(2 * words.size())};
    for (const auto word : words) {
        AppendWord(frame, word);
    }
    AppendCrc(frame);
    return frame;
}

Bytes WriteReply(const Request& request) {
    Bytes frame{request.address, static_cast<std::uint8_t>(request.function)};
    AppendWord(frame, request.first);
    AppendWord(frame, request.function == Function::WriteRegister ? request.values.front()
                                                                  : request.count);
    AppendCrc(frame);
    return frame;
}

Bytes RefusalReply(const Request& request, Refusal refusal) {
    Bytes frame{request.address,
                static_cast<std::uint8_t>(static_cast<unsigned>(request.function) | 0x80U),
                static_cast<std::uint8_t>(refusal)};
    AppendCrc(frame);
    return frame;
}

void FrameReader::Feed(std::span<const std::uint8_t> bytes, Milliseconds now) {
    if (now - last_ >= Silence) {
        buffer_.clear();
        garbage_ = false;
    }
    last_ = now;
    if (!garbage_) {
        buffer_.insert(buffer_.end(), bytes.begin(), bytes.end());
    }
}

std::optional<Request> FrameReader::Next() {
    if (garbage_ || buffer_.size() < 2) {
        return std::nullopt;
    }
    const auto length = FrameLength();
    if (length > buffer_.size()) {
        return std::nullopt;
    }
    // A right CRC makes the CRC over the whole frame, its own bytes included, zero.
    if (length == 0 || FrameCrc(std::span(buffer_).first(length)) != 0) {
        garbage_ = true;
        buffer_.clear();
        return std::nullopt;
    }
    auto request = Decode(buffer_);
    buffer_.erase(buffer_.begin(), buffer_.begin() + static_cast<std::ptrdiff_t>(length));
    return request;
}

// The length of the frame at the head of the buffer, 0 when that is no frame at all. While the
// head of function 16 is incomplete its least length is given.
std::size_t FrameReader::FrameLength() const {
    switch (static_cast<Function>(buffer_[1])) {
    case Function::ReadRegisters:
    case Function::WriteRegister:
        return ShortFrame;
    case Function::WriteRegisters:
        if (buffer_.size() < ValuesAt) {
            return ValuesAt + CrcSize;
        }
        if (buffer_[6] != 2 * WordAt(buffer_, 4)) {
            return 0;
        }
        return ValuesAt + buffer_[6] + CrcSize;
    }
    return 0;
}

} // namespace Sim
