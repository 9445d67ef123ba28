// The units of an H.264 byte stream in its Annex B form.
#pragma once

#include <vector>

namespace Zanthe {

// The units behind the start codes 00 00 01 of `stream`, without the emulation prevention: of each
// 00 00 03 within a unit the 03 is dropped. What stands ahead of the first start code is dropped,
// and a zero ahead of a later one stays at the end of the unit before. A start code or an
// escape that lacks a byte at the end of the stream counts as what it is, bytes of the last unit.
//
// Thread-safety: safe from any thread.
std::vector<std::vector<unsigned char>> SplitNalUnits(const std::vector<unsigned char>& stream);

} // namespace Zanthe
