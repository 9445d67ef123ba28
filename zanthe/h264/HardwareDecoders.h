// How many readers of this process decode on the graphics device.
#pragma once

namespace Zanthe {

// More are too much for the device. The limit is a rough one: readers that are opened at the same
// moment can pass it together.
inline constexpr int HardwareDecodersLimit = 2;

// Living readers whose samples lie on the device.
//
// Thread-safety: safe from any thread, as are the two below.
int ActiveHardwareDecoders();

void AddHardwareDecoder();
void RemoveHardwareDecoder();

} // namespace Zanthe
