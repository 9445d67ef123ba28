// Video for Windows' decompressors. Stands for vfw.h.
//
//     const HIC codec = ICOpen(ICTYPE_VIDEO, header.fccHandler, ICMODE_DECOMPRESS);
//     if (codec != nullptr && ICSendMessage(codec, ICM_DECOMPRESS_QUERY, in, out) == ICERR_OK)
//         ... ICDecompress(codec, 0, &input, bytes, &output, rows) ... ICClose(codec);
//
// Every four-character code that FFmpeg decodes has a codec. A host that has one of its own hands
// it in with ICInstall; it then comes before FFmpeg's.
//
// FFmpeg's codecs give pictures of the input's own size in 16 (5 bits each for red, green and
// blue, the highest bit 0), 24 (blue, green, red) or 32 (the same and 255) bits, bottom row first,
// top row first where the output's height is negative, rows padded to 4 bytes.
//
// Thread-safety: the functions are safe from any thread; one open codec serves one at a time.
#pragma once

#include <cstdint>

#include "platform/win32/BitmapInfo.h"
#include "platform/win32/Export.h"
#include "platform/win32/Types.h"

using DWORD_PTR = std::uintptr_t;
using LPARAM = std::intptr_t;
using LRESULT = std::intptr_t;
using HDRVR = struct DriverHandle*;
using HIC = struct OpenCodec*;

// Four characters, the first one lowest: "vidc".
inline constexpr DWORD ICTYPE_VIDEO = 0x63646976;

inline constexpr UINT ICMODE_DECOMPRESS = 2;

// What comes back; failures are negative.
inline constexpr LRESULT ICERR_OK = 0;
inline constexpr LRESULT ICERR_DONTDRAW = 1;
inline constexpr LRESULT ICERR_UNSUPPORTED = -1;
inline constexpr LRESULT ICERR_BADFORMAT = -2;
inline constexpr LRESULT ICERR_MEMORY = -3;
inline constexpr LRESULT ICERR_BADPARAM = -6;
inline constexpr LRESULT ICERR_BADHANDLE = -8;
inline constexpr LRESULT ICERR_ERROR = -100;

// Messages to a codec. First those for every driver: the three on the way in, of which a refusal
// (0) of the first or the last refuses the codec, and the three on the way out.
inline constexpr UINT DRV_LOAD = 1;
inline constexpr UINT DRV_ENABLE = 2;
inline constexpr UINT DRV_OPEN = 3; // lParam2: ICOPEN*; answers a number of its own for the rest
inline constexpr UINT DRV_CLOSE = 4;
inline constexpr UINT DRV_DISABLE = 5;
inline constexpr UINT DRV_FREE = 6;

inline constexpr UINT ICM_USER = 0x4000;
inline constexpr UINT ICM_DECOMPRESS_QUERY = ICM_USER + 11; // input, output format; 0: accepted
inline constexpr UINT ICM_DECOMPRESS_BEGIN = ICM_USER + 12; // input, output format
inline constexpr UINT ICM_DECOMPRESS = ICM_USER + 13;       // ICDECOMPRESS*, its size
inline constexpr UINT ICM_DECOMPRESS_END = ICM_USER + 14;
inline constexpr UINT ICM_GETINFO = ICM_USER + 0x1002; // ICINFO*, its size; answers that size

// Flags of a picture to be decoded.
inline constexpr DWORD ICDECOMPRESS_NOTKEYFRAME = 0x08000000;

struct ICOPEN {
    DWORD dwSize;
    DWORD fccType;
    DWORD fccHandler;
    DWORD dwVersion;
    DWORD dwFlags; // the mode
    LRESULT dwError;
    void* pV1Reserved;
    void* pV2Reserved;
    DWORD dnDevNode;
};

struct ICINFO {
    DWORD dwSize;
    DWORD fccType;
    DWORD fccHandler;
    DWORD dwFlags;
    DWORD dwVersion;
    DWORD dwVersionICM;
    wchar_t szName[16];
    wchar_t szDescription[128];
    wchar_t szDriver[128];
};

struct ICDECOMPRESS {
    DWORD dwFlags;
    BITMAPINFOHEADER* lpbiInput;
    void* lpInput;
    BITMAPINFOHEADER* lpbiOutput;
    void* lpOutput;
    DWORD ckid;
};

// A codec: what it answers to each message. `id` is what it answered to DRV_OPEN, 0 before that.
using DRIVERPROC = LRESULT (*)(DWORD_PTR id, HDRVR driver, UINT message, LPARAM lParam1,
                               LPARAM lParam2);

// The codec for the code, ready for messages, to be ended by ICClose; null where there is none or
// it refuses. `type` is ICTYPE_VIDEO and `mode` ICMODE_DECOMPRESS, else it is null.
PLATFORM_API HIC ICOpen(DWORD type, DWORD handler, UINT mode);

// What the codec answers; ICERR_BADHANDLE for null.
PLATFORM_API LRESULT ICSendMessage(HIC codec, UINT message, DWORD_PTR parameter1,
                                   DWORD_PTR parameter2);

// Decodes one picture of input->biSizeImage bytes into the rows that `output` tells. ICERR_OK where
// `bits` hold the picture now; anything else is a failure. What a codec throws passes through.
PLATFORM_API DWORD ICDecompress(HIC codec, DWORD flags, BITMAPINFOHEADER* input, void* data,
                                BITMAPINFOHEADER* output, void* bits);

PLATFORM_API LRESULT ICClose(HIC codec);

// Fills `size` bytes of *info and answers how many; 0 where the codec does not know.
PLATFORM_API LRESULT ICGetInfo(HIC codec, ICINFO* info, DWORD size);

inline constexpr UINT ICINSTALL_FUNCTION = 1;

// Has codecs for `handler` be made by the function `function`, a DRIVERPROC, from now on, in place
// of whoever made them before. `type` is ICTYPE_VIDEO and `flags` ICINSTALL_FUNCTION, else nothing
// is installed; `description` plays no part. Codecs that are open stay what they are.
PLATFORM_API BOOL ICInstall(DWORD type, DWORD handler, LPARAM function, const char* description,
                            UINT flags);

// Takes an installed codec back. FALSE where none is installed.
PLATFORM_API BOOL ICRemove(DWORD type, DWORD handler, UINT flags);
