// A piece of a stream with its time: buffers, and attributes. Stands for IMFSample of mfobjects.h.
#pragma once

#include "platform/mf/Attributes.h"
#include "platform/mf/MediaBuffer.h"

inline constexpr IID IID_IMFSample = {
    0xC40A00F2, 0xB93A, 0x4D80, {0xAE, 0x8C, 0x5A, 0x1C, 0x63, 0x4F, 0x58, 0xE4}};

// Times are in units of 100 ns.
//
// Thread-safety: safe from any thread.
struct IMFSample : IMFAttributes {
    // MF_E_NO_SAMPLE_TIMESTAMP, MF_E_NO_SAMPLE_DURATION where it was never set.
    virtual HRESULT GetSampleTime(LONGLONG* time) = 0;
    virtual HRESULT SetSampleTime(LONGLONG time) = 0;
    virtual HRESULT GetSampleDuration(LONGLONG* duration) = 0;
    virtual HRESULT SetSampleDuration(LONGLONG duration) = 0;

    virtual HRESULT GetBufferCount(DWORD* count) = 0;

    // *buffer: the buffer, with a reference for the caller. E_INVALIDARG past the last one.
    virtual HRESULT GetBufferByIndex(DWORD index, IMFMediaBuffer** buffer) = 0;

    // *buffer: all that the sample holds, in one buffer, which takes the place of those it had;
    // where it had one, that one. E_UNEXPECTED where it has none.
    virtual HRESULT ConvertToContiguousBuffer(IMFMediaBuffer** buffer) = 0;

    // Puts the buffer, of which it keeps a reference, behind the others.
    virtual HRESULT AddBuffer(IMFMediaBuffer* buffer) = 0;

protected:
    ~IMFSample() = default;
};

// *sample: one without buffers, time, duration and attributes.
HRESULT MFCreateSample(IMFSample** sample);
