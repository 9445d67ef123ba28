// When the pictures of a GIF file begin. Its reader gives the last one for ever and tells nothing
// of this, but the file does.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace Program {

// In 100 ns from 0, rising: the begin of each picture, and behind them the end of the last. A delay
// below 11 ms counts as 100 ms, as the reader has it. Of a file that is cut off, what is there;
// empty where `path` is no GIF file that can be read, or has no picture.
std::vector<std::int64_t> GifTimes(const std::string& path);

} // namespace Program
