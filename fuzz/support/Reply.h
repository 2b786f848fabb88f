#pragma once

#include "fuzz/support/Input.h"
#include "support/FakeLink.h"

namespace Fuzz {

/// A reply to a frame, from any bytes up to a right one. Most have a right CRC, which no fuzzer
/// guesses.
QByteArray ReplyTo(const QByteArray& frame, Input& input);

} // namespace Fuzz
