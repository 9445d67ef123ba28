// What an AVI file says of one of its streams.
#pragma once

#include <vector>

#include "platform/win32/BitmapInfo.h"
#include "platform/win32/WaveFormat.h"
#include "zanthe/containers/avi20/AviHeaders.h"
#include "zanthe/containers/avi20/ChunkHeader.h"

namespace AVI20::Read {

// What the file does not say is zero.
struct StreamInfo {
    AVIStreamHeader header{};
    BITMAPINFOHEADER videoFormat{};       // of a "vids" stream; zero where the file adds a palette
    WAVEFORMATEX audioFormat{};           // of an "auds" stream
    std::vector<std::uint8_t> audioExtra; // the cbSize bytes behind audioFormat
    ChunkHeader indexChunk{};             // size 0: the stream has no index
    bool isOldIndex = false;              // indexChunk is the "idx1" of the whole file
};

} // namespace AVI20::Read
