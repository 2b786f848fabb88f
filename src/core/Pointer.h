#pragma once

/// The mouse pointer of the application while something takes long.
namespace Pointer {

void Hourglass();
/// Back to the pointer of each screen, however often Hourglass was called.
void Default();

} // namespace Pointer
