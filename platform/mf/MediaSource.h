// A media file that is open, for a reader to be put on. Stands for IMFMediaSource and
// IMFSourceResolver of mfidl.h.
//
//     com::ComPtr<IMFSourceResolver> resolver;
//     MFCreateSourceResolver(resolver.Put());
//     MF_OBJECT_TYPE type = MF_OBJECT_INVALID;
//     resolver->CreateObjectFromURL(path.c_str(), MF_RESOLUTION_MEDIASOURCE, nullptr, &type,
//                                   object.Put());
//     MFCreateSourceReaderFromMediaSource(source.Get(), attributes, reader.Put());
#pragma once

#include "platform/com/Unknown.h"

inline constexpr IID IID_IMFMediaSource = {
    0x279A808D, 0xAEC7, 0x40C8, {0x9C, 0x6B, 0xA6, 0xB4, 0x92, 0xC7, 0x8A, 0x66}};
inline constexpr IID IID_IMFSourceResolver = {
    0xFBE5A32D, 0xA497, 0x4B61, {0xBB, 0x85, 0x97, 0xB1, 0xA8, 0x48, 0xA6, 0xE3}};

// Thread-safety: safe from any thread.
struct IMFMediaSource : IUnknown {
    // No reader can be made on it any more; those there are go on.
    virtual HRESULT Shutdown() = 0;

protected:
    ~IMFMediaSource() = default;
};

enum MF_OBJECT_TYPE : UINT32 { // NOLINT(readability-identifier-naming): settled
    MF_OBJECT_MEDIASOURCE = 0,
    MF_OBJECT_BYTESTREAM = 1,
    MF_OBJECT_INVALID = 2,
};

inline constexpr DWORD MF_RESOLUTION_MEDIASOURCE = 1;

struct IPropertyStore;

// Thread-safety: safe from any thread.
struct IMFSourceResolver : IUnknown {
    // *object: the source of the file at `url`, a path as CreateFileW takes it, with a reference
    // for the caller and *type MF_OBJECT_MEDIASOURCE. `flags` is MF_RESOLUTION_MEDIASOURCE,
    // E_INVALIDARG otherwise; `properties` plays no part. Fails as MFCreateSourceReaderFromURL
    // does.
    virtual HRESULT CreateObjectFromURL(LPCWSTR url, DWORD flags, IPropertyStore* properties,
                                        MF_OBJECT_TYPE* type, IUnknown** object) = 0;

protected:
    ~IMFSourceResolver() = default;
};

HRESULT MFCreateSourceResolver(IMFSourceResolver** resolver);
