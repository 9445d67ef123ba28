// How long a frame of an animated GIF is shown.
#pragma once

#include <cstdint>

namespace Zanthe {

// Milliseconds, of a frame that tells none.
inline constexpr std::uint32_t DefaultGifDelay = 100;

// Milliseconds that a frame is shown, of those that its file tells: 10 and less are taken for none.
constexpr std::uint32_t ShownGifDelay(std::uint32_t told) {
    constexpr std::uint32_t shortest = 11;
    return told < shortest ? DefaultGifDelay : told;
}

} // namespace Zanthe
