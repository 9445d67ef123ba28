// What a track holds, as the finders report it.
#pragma once

#include <cstdint>

namespace MP4TrackType {

inline constexpr std::int32_t Video = 0;
inline constexpr std::int32_t Audio = 1;
inline constexpr std::int32_t Other = 2;

} // namespace MP4TrackType
