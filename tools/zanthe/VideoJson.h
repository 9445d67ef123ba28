// How reports tell of a video.
#pragma once

#include <optional>

#include "tools/zanthe/IVideo.h"
#include "tools/zanthe/JsonLine.h"

namespace Program {

template <typename T>
Json JsonOrNull(const std::optional<T>& value) {
    return value ? Json(*value) : Json(nullptr);
}

// Reader, stored size, rotation, pixel aspect, duration, remarks.
Json JsonOf(const VideoFacts& facts);

} // namespace Program
