// Where a stream of a recording stands among the streams of its kind.
#pragma once

#include <cstdint>
#include <string>

// For a path that names a numbered member of a ".brec" recording: how many tracks of the member's
// kind stand before the track with the member's number. A demultiplexer numbers its output pins so.
// Screen tracks in the codec "bsc2" are left out of the count of pictures, because they are read by
// other means than a filter graph.
//
// 0 also for any other path, for a recording that cannot be read, and for a number that it has no
// track for.
//
// Thread-safety: safe from any thread.
std::uint32_t BrecStreamOrdinal(const std::wstring& path);
