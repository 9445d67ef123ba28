// What the system can decode and encode. Stands for IMFActivate of mfobjects.h and MFTEnumEx of
// mfapi.h.
#pragma once

#include "platform/mf/Attributes.h"

inline constexpr IID IID_IMFActivate = {
    0x7FEE9E9A, 0x4A89, 0x47A6, {0x89, 0x9C, 0xB6, 0xA5, 0x3A, 0x70, 0xFB, 0x67}};

// A codec that has not been started.
//
// Thread-safety: safe from any thread.
struct IMFActivate : IMFAttributes {
    // *object: the codec, started, as its interface `iid`, with a reference for the caller; the
    // same one every time until ShutdownObject. It fails where the codec does not start.
    virtual HRESULT ActivateObject(REFIID iid, void** object) = 0;

    // Ends the codec.
    virtual HRESULT ShutdownObject() = 0;

    // Forgets the codec, which lives as long as somebody has a reference on it.
    virtual HRESULT DetachObject() = 0;

protected:
    ~IMFActivate() = default;
};

inline constexpr GUID MFT_CATEGORY_VIDEO_DECODER = {
    0xD6C02D4B, 0x6833, 0x45B4, {0x97, 0x1A, 0x05, 0xA4, 0xB0, 0x4B, 0xAB, 0x91}};
inline constexpr GUID MFT_CATEGORY_VIDEO_ENCODER = {
    0xF79EAC7D, 0xE545, 0x4387, {0xBD, 0xEE, 0xD6, 0x47, 0xD7, 0xBD, 0xE4, 0x2A}};

inline constexpr UINT32 MFT_ENUM_FLAG_SYNCMFT = 0x01;
inline constexpr UINT32 MFT_ENUM_FLAG_ASYNCMFT = 0x02;
inline constexpr UINT32 MFT_ENUM_FLAG_HARDWARE = 0x04;
inline constexpr UINT32 MFT_ENUM_FLAG_FIELDOFUSE = 0x08;
inline constexpr UINT32 MFT_ENUM_FLAG_LOCALMFT = 0x10;
inline constexpr UINT32 MFT_ENUM_FLAG_TRANSCODE_ONLY = 0x20;
inline constexpr UINT32 MFT_ENUM_FLAG_SORTANDFILTER = 0x40;
inline constexpr UINT32 MFT_ENUM_FLAG_ALL = 0x3F;

struct MFT_REGISTER_TYPE_INFO { // NOLINT(readability-identifier-naming): settled
    GUID guidMajorType;
    GUID guidSubtype;
};

// Attribute of an activation object, text without an end mark as bytes (GetBlob): FFmpeg's name of
// the codec.
inline constexpr GUID MFT_FRIENDLY_NAME_Attribute = {
    0x314FFBAE, 0x5B41, 0x4C95, {0x9C, 0x19, 0x4E, 0x7D, 0x58, 0x6F, 0xAC, 0xE3}};

// *activates: the codecs of the category that take `input` (decoders) or give `output` (encoders);
// null stands for any. The array is the caller's to give to CoTaskMemFree, each object in it
// carries a reference; with none it is null, and *count 0, which is no failure. Codecs that run in
// software answer to MFT_ENUM_FLAG_SYNCMFT, those on a device to MFT_ENUM_FLAG_HARDWARE; without
// either of the two flags nothing is found. Software comes first. E_INVALIDARG for an unknown
// category.
HRESULT MFTEnumEx(GUID category, UINT32 flags, const MFT_REGISTER_TYPE_INFO* input,
                  const MFT_REGISTER_TYPE_INFO* output, IMFActivate*** activates, UINT32* count);
