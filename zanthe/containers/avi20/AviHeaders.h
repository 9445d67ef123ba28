// The headers of an AVI file as the file holds them, little-endian, and the four-character codes.
#pragma once

#include <cstdint>

#include "platform/win32/Types.h"

namespace AVI20::Read {

// The code of four characters; the first one is in the lowest byte.
constexpr std::uint32_t FourCc(const char (&code)[5]) {
    std::uint32_t value = 0;
    for (int i = 3; i >= 0; --i) {
        value = value << 8 | static_cast<unsigned char>(code[i]);
    }
    return value;
}

// "avih"
struct MainAVIHeader {
    DWORD dwMicroSecPerFrame;
    DWORD dwMaxBytesPerSec;
    DWORD dwPaddingGranularity;
    DWORD dwFlags;
    DWORD dwTotalFrames;
    DWORD dwInitialFrames;
    DWORD dwStreams;
    DWORD dwSuggestedBufferSize;
    DWORD dwWidth;
    DWORD dwHeight;
    DWORD dwReserved[4];
};

static_assert(sizeof(MainAVIHeader) == 56, "files hold it as 56 bytes without a gap");

struct AVIRect {
    std::int16_t left;
    std::int16_t top;
    std::int16_t right;
    std::int16_t bottom;
};

// "strh"
struct AVIStreamHeader {
    DWORD fccType; // "vids", "auds", ...
    DWORD fccHandler;
    DWORD dwFlags;
    WORD wPriority;
    WORD wLanguage;
    DWORD dwInitialFrames;
    DWORD dwScale; // dwRate / dwScale are samples a second
    DWORD dwRate;
    DWORD dwStart;
    DWORD dwLength;              // samples
    DWORD dwSuggestedBufferSize; // bytes
    DWORD dwQuality;
    DWORD dwSampleSize;
    AVIRect rcFrame;
};

static_assert(sizeof(AVIStreamHeader) == 56, "files hold it as 56 bytes without a gap");

} // namespace AVI20::Read
