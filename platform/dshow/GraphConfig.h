// What a filter graph keeps ready to be connected. Stands for strmif.h, as far as it is used.
#pragma once

#include "platform/com/Unknown.h"
#include "platform/win32/Handle.h"

struct AM_MEDIA_TYPE;
struct IGraphConfigCallback;
struct IPin;

// Of a filter only its references are used.
struct IBaseFilter : IUnknown {
protected:
    ~IBaseFilter() = default;
};

inline constexpr IID IID_IGraphConfig = {
    0x03A1EB8E, 0x32BF, 0x4245, {0x85, 0x02, 0x11, 0x4D, 0x08, 0xA9, 0xCB, 0x88}};

struct IGraphConfig : IUnknown {
    virtual HRESULT Reconnect(IPin* output, IPin* input, const AM_MEDIA_TYPE* firstConnection,
                              IBaseFilter* usingFilter, HANDLE abortEvent, DWORD flags) = 0;
    virtual HRESULT Reconfigure(IGraphConfigCallback* callback, void* context, DWORD flags,
                                HANDLE abortEvent) = 0;

    // Keeps `filter`, with a reference of its own, for connections to be tried with.
    virtual HRESULT AddFilterToCache(IBaseFilter* filter) = 0;

protected:
    ~IGraphConfig() = default;
};
