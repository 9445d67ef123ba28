// Who is told what an asynchronous source reader has done. Stands for IMFSourceReaderCallback of
// mfreadwrite.h.
//
//     attributes->SetUnknown(MF_SOURCE_READER_ASYNC_CALLBACK, callback);
//     MFCreateSourceReaderFromURL(path.c_str(), attributes, reader.Put());
//     reader->ReadSample(MF_SOURCE_READER_FIRST_AUDIO_STREAM, 0, nullptr, nullptr, nullptr,
//                        nullptr); // answered by OnReadSample
#pragma once

#include "platform/mf/Sample.h"

inline constexpr IID IID_IMFSourceReaderCallback = {
    0xDEEC8D99, 0xFA1D, 0x4D82, {0x84, 0xC2, 0x2C, 0x89, 0x69, 0x94, 0x48, 0x67}};

// Attribute of a reader, given when it is made: an IMFSourceReaderCallback. With it the reader is
// asynchronous.
inline constexpr GUID MF_SOURCE_READER_ASYNC_CALLBACK = {
    0x1E3DBEAC, 0xBB43, 0x4C35, {0xB5, 0x07, 0xCD, 0x64, 0x44, 0x64, 0xC9, 0x65}};

struct IMFMediaEvent;

// The reader holds a reference on it until its own last one is given back and the answer that is
// then under way is over.
//
// The calls come on threads of this layer, one after the other for each reader, and may come before
// the call that asked for them returns. No lock is held: a callback may call the reader, and may
// give back its last reference. What they return plays no part.
struct IMFSourceReaderCallback : IUnknown {
    // Answers one ReadSample, in the order of the requests. `result`: whether it succeeded;
    // `streamIndex`: the stream's number; `streamFlags`: of MF_SOURCE_READERF_...; `timestamp`: the
    // sample's time; `sample`: borrowed for the call, null at the end of the stream and on failure.
    virtual HRESULT OnReadSample(HRESULT result, DWORD streamIndex, DWORD streamFlags,
                                 LONGLONG timestamp, IMFSample* sample) = 0;

    // Answers one Flush. Requests of the stream that were made before it get no other answer,
    // unless that was under way already, and none behind this one.
    virtual HRESULT OnFlush(DWORD streamIndex) = 0;

    // Other news of the source; this layer has none.
    virtual HRESULT OnEvent(DWORD streamIndex, IMFMediaEvent* event) = 0;

protected:
    ~IMFSourceReaderCallback() = default;
};
