#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace Sim {

using Bytes = std::vector<std::uint8_t>;
using Words = std::vector<std::uint16_t>;
using Milliseconds = std::chrono::milliseconds;

/// The three exchanges that the modules know.
enum class Function : std::uint8_t { ReadRegisters = 3, WriteRegister = 6, WriteRegisters = 16 };

/// Why a request is refused, as the Modbus exception codes number it.
enum class Refusal : std::uint8_t { UnknownRegister = 2, BadValue = 3 };

/// A request of the master whose CRC was right. `address` 0 is a broadcast.
struct Request {
    std::uint8_t address = 0;
    Function function = Function::ReadRegisters;
    std::uint16_t first = 0; ///< First register.
    std::uint16_t count = 0; ///< Number of registers asked for or written.
    Words values;            ///< Written values; empty for a reading.
};

/// CRC-16/MODBUS of the bytes (polynomial 0xA001 reflected, start 0xFFFF).
std::uint16_t FrameCrc(std::span<const std::uint8_t> bytes);

/// Puts the CRC behind the frame, low byte first.
void AppendCrc(Bytes& frame);

/// The reply to a reading: address, 3, byte count, the words high byte first, CRC.
Bytes ReadReply(const Request& request, const Words& words);

/// The reply to a writing: address, function, first register, then the value (function 6) or the
/// number of registers (function 16), CRC.
Bytes WriteReply(const Request& request);

/// The five bytes of a refusal: address, function | 0x80, code, CRC.
Bytes RefusalReply(const Request& request, Refusal refusal);

/// Cuts the received stream into requests. The end of a frame is known by its length, so frames may
/// come back to back. Bytes that make no frame spoil all that follows up to the next silence.
class FrameReader {
public:
    /// A silence of this length ends whatever was being received.
    static constexpr Milliseconds Silence{20};

    /// Takes bytes received at the time `now`.
    void Feed(std::span<const std::uint8_t> bytes, Milliseconds now);

    /// The next whole request, if there is one.
    std::optional<Request> Next();

private:
    std::size_t FrameLength() const;

    Bytes buffer_;
    Milliseconds last_{0};
    bool garbage_ = false;
};

} // namespace Sim
