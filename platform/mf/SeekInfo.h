// Where a source has its key frames. Stands for IMFSeekInfo of mfidl.h.
#pragma once

#include "platform/com/PropVariant.h"

inline constexpr IID IID_IMFSeekInfo = {
    0x26AFEA53, 0xD9ED, 0x42B5, {0xAB, 0x80, 0xE6, 0x4F, 0x9E, 0xE3, 0x47, 0x79}};

// The service of a media source that has it.
inline constexpr GUID MF_SCRUBBING_SERVICE = {
    0xDD0AC3D8, 0x40E3, 0x4128, {0xAC, 0x48, 0xC0, 0xAD, 0xD0, 0x67, 0xB7, 0x14}};

// Thread-safety: safe from any thread.
struct IMFSeekInfo : IUnknown {
    // *previous: the nearest key frame at or before `start`; *next: the nearest at or after it, so
    // that a position on a key frame gets that one twice. Times are VT_I8 in units of 100 ns, the
    // only format (GUID_NULL, or null); others fail with MF_E_UNSUPPORTED_TIME_FORMAT. Where there
    // is none on one side, the variant there is VT_EMPTY. What the two held before is not given
    // back.
    virtual HRESULT GetNearestKeyFrames(const GUID* timeFormat, const PROPVARIANT* start,
                                        PROPVARIANT* previous, PROPVARIANT* next) = 0;

protected:
    ~IMFSeekInfo() = default;
};
