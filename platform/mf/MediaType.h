// What a stream of samples is, told by attributes. Stands for IMFMediaType of mfobjects.h.
//
// The keys and formats are in MediaFormats.h.
#pragma once

#include "platform/mf/Attributes.h"

inline constexpr IID IID_IMFMediaType = {
    0x44AE0FA8, 0xEA31, 0x4109, {0x8D, 0x2E, 0x4C, 0xAE, 0x49, 0x97, 0xC5, 0x55}};

// Thread-safety: safe from any thread.
struct IMFMediaType : IMFAttributes {
    // *majorType: MF_MT_MAJOR_TYPE; MF_E_ATTRIBUTENOTFOUND where it is not set.
    virtual HRESULT GetMajorType(GUID* majorType) = 0;

protected:
    ~IMFMediaType() = default;
};

// *type: a media type without attributes.
HRESULT MFCreateMediaType(IMFMediaType** type);
