// What the sound of a stream is. Stands for mmreg.h.
#pragma once

#include "platform/win32/Types.h"

inline constexpr WORD WAVE_FORMAT_PCM = 1;

// As files hold it, little-endian and without a gap; `cbSize` bytes of the codec's own follow.
#pragma pack(push, 1)

struct WAVEFORMATEX {
    WORD wFormatTag;
    WORD nChannels;
    DWORD nSamplesPerSec;
    DWORD nAvgBytesPerSec;
    WORD nBlockAlign; // bytes of one sample of all channels
    WORD wBitsPerSample;
    WORD cbSize;
};

#pragma pack(pop)

static_assert(sizeof(WAVEFORMATEX) == 18, "files hold it as 18 bytes without a gap");
