// Values by GUID, each of one type, that go with media types, samples and the like. Stands for
// IMFAttributes of mfobjects.h and the functions on it of mfapi.h.
#pragma once

#include "platform/com/Unknown.h"

inline constexpr IID IID_IMFAttributes = {
    0x2CD2D921, 0xC447, 0x44A7, {0xA1, 0x3C, 0x4A, 0xDA, 0xBF, 0xC2, 0x47, 0xE3}};

// A getter fails with MF_E_ATTRIBUTENOTFOUND where nothing has that key and with MF_E_INVALIDTYPE
// where the value is of another type; what it would have given out is then as it was. A setter
// replaces what was there, of whatever type, and fails only for lack of memory.
//
// Thread-safety: safe from any thread.
struct IMFAttributes : IUnknown {
    virtual HRESULT GetUINT32(REFGUID key, UINT32* value) = 0;
    virtual HRESULT GetUINT64(REFGUID key, UINT64* value) = 0;
    virtual HRESULT GetGUID(REFGUID key, GUID* value) = 0;

    // *byteCount: the size of the bytes.
    virtual HRESULT GetBlobSize(REFGUID key, UINT32* byteCount) = 0;

    // Copies the bytes to `buffer`, which has room for `capacity` of them, and their number to
    // *byteCount, which may be null. MF_E_BUFFERTOOSMALL where they do not fit.
    virtual HRESULT GetBlob(REFGUID key, UINT8* buffer, UINT32 capacity, UINT32* byteCount) = 0;

    // *object: the object as its interface `iid`, with a reference for the caller.
    virtual HRESULT GetUnknown(REFGUID key, REFIID iid, void** object) = 0;

    virtual HRESULT SetUINT32(REFGUID key, UINT32 value) = 0;
    virtual HRESULT SetUINT64(REFGUID key, UINT64 value) = 0;
    virtual HRESULT SetGUID(REFGUID key, REFGUID value) = 0;

    // Keeps a copy. E_INVALIDARG for more than 16 MiB, which no attribute has use for.
    virtual HRESULT SetBlob(REFGUID key, const UINT8* bytes, UINT32 byteCount) = 0;

    // Keeps a reference; null is a value too.
    virtual HRESULT SetUnknown(REFGUID key, IUnknown* object) = 0;

    // Replaces everything that is in `destination` by a copy of what is here.
    virtual HRESULT CopyAllItems(IMFAttributes* destination) = 0;

protected:
    ~IMFAttributes() = default;
};

// *attributes: an empty store. It grows as needed: `initialSize` is a hint.
HRESULT MFCreateAttributes(IMFAttributes** attributes, UINT32 initialSize);

constexpr UINT64 Pack2UINT32AsUINT64(UINT32 high, UINT32 low) {
    return UINT64{high} << 32 | low;
}

constexpr void Unpack2UINT32AsUINT64(UINT64 both, UINT32* high, UINT32* low) {
    *high = static_cast<UINT32>(both >> 32);
    *low = static_cast<UINT32>(both);
}

// The value, or `otherwise` where it cannot be had.
inline UINT32 MFGetAttributeUINT32(IMFAttributes* attributes, REFGUID key, UINT32 otherwise) {
    UINT32 value = 0;
    return SUCCEEDED(attributes->GetUINT32(key, &value)) ? value : otherwise;
}

inline UINT64 MFGetAttributeUINT64(IMFAttributes* attributes, REFGUID key, UINT64 otherwise) {
    UINT64 value = 0;
    return SUCCEEDED(attributes->GetUINT64(key, &value)) ? value : otherwise;
}

// Width in the upper half, height in the lower.
inline HRESULT MFGetAttributeSize(IMFAttributes* attributes, REFGUID key, UINT32* width,
                                  UINT32* height) {
    UINT64 both = 0;
    const HRESULT result = attributes->GetUINT64(key, &both);
    if (SUCCEEDED(result)) {
        Unpack2UINT32AsUINT64(both, width, height);
    }
    return result;
}

inline HRESULT MFSetAttributeSize(IMFAttributes* attributes, REFGUID key, UINT32 width,
                                  UINT32 height) {
    return attributes->SetUINT64(key, Pack2UINT32AsUINT64(width, height));
}

// Numerator in the upper half, denominator in the lower.
inline HRESULT MFGetAttributeRatio(IMFAttributes* attributes, REFGUID key, UINT32* numerator,
                                   UINT32* denominator) {
    return MFGetAttributeSize(attributes, key, numerator, denominator);
}

inline HRESULT MFSetAttributeRatio(IMFAttributes* attributes, REFGUID key, UINT32 numerator,
                                   UINT32 denominator) {
    return MFSetAttributeSize(attributes, key, numerator, denominator);
}
