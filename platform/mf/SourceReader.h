// The samples of a media file's streams, compressed or decoded. Stands for mfreadwrite.h.
//
//     com::ComPtr<IMFSourceReader> reader;
//     MFCreateSourceReaderFromURL(path.c_str(), attributes, reader.Put());
//     reader->SetCurrentMediaType(MF_SOURCE_READER_FIRST_VIDEO_STREAM, nullptr, type);
//     reader->ReadSample(MF_SOURCE_READER_FIRST_VIDEO_STREAM, 0, nullptr, &flags, &time, &sample);
#pragma once

#include "platform/com/PropVariant.h"
#include "platform/mf/Attributes.h"
#include "platform/mf/MediaSource.h"
#include "platform/mf/MediaType.h"
#include "platform/mf/Sample.h"
#include "platform/mf/SourceReaderCallback.h"

inline constexpr IID IID_IMFSourceReader = {
    0x70AE66F2, 0xC809, 0x4E4F, {0x89, 0x15, 0xBD, 0xCB, 0x40, 0x6B, 0x79, 0x93}};

// In place of a stream's index.
inline constexpr DWORD MF_SOURCE_READER_FIRST_VIDEO_STREAM = 0xFFFFFFFC;
inline constexpr DWORD MF_SOURCE_READER_FIRST_AUDIO_STREAM = 0xFFFFFFFD;
inline constexpr DWORD MF_SOURCE_READER_ALL_STREAMS = 0xFFFFFFFE;
inline constexpr DWORD MF_SOURCE_READER_ANY_STREAM = 0xFFFFFFFE;
inline constexpr DWORD MF_SOURCE_READER_MEDIASOURCE = 0xFFFFFFFF;
inline constexpr DWORD MF_SOURCE_READER_INVALID_STREAM_INDEX = 0xFFFFFFFF;

// What a read says besides its sample.
inline constexpr DWORD MF_SOURCE_READERF_ERROR = 0x1;
inline constexpr DWORD MF_SOURCE_READERF_ENDOFSTREAM = 0x2;
inline constexpr DWORD MF_SOURCE_READERF_NEWSTREAM = 0x4;
inline constexpr DWORD MF_SOURCE_READERF_NATIVEMEDIATYPECHANGED = 0x10;
inline constexpr DWORD MF_SOURCE_READERF_CURRENTMEDIATYPECHANGED = 0x20;
inline constexpr DWORD MF_SOURCE_READERF_STREAMTICK = 0x100;

// Attributes of a reader, given when it is made.
inline constexpr GUID MF_SOURCE_READER_ENABLE_ADVANCED_VIDEO_PROCESSING = { // UINT32: 1 is yes
    0x0F81DA2C,
    0xB537,
    0x4672,
    {0xA8, 0xB2, 0xA6, 0x81, 0xB1, 0x73, 0x07, 0xA3}};
inline constexpr GUID MF_READWRITE_ENABLE_HARDWARE_TRANSFORMS = { // UINT32: 1 is yes
    0xA634A91C,
    0x822B,
    0x41B9,
    {0xA4, 0x94, 0x4D, 0xE4, 0x64, 0x36, 0x12, 0xB0}};
inline constexpr GUID MF_SOURCE_READER_D3D_MANAGER = { // an IMFDXGIDeviceManager
    0xEC822DA2,
    0xE1E9,
    0x4B29,
    {0xA0, 0xD8, 0x56, 0x3C, 0x71, 0x9F, 0x52, 0x69}};

// Presentation attribute, VT_UI8: how long the file lasts, in units of 100 ns.
inline constexpr GUID MF_PD_DURATION = {
    0x6C990D33, 0xBB8E, 0x477A, {0x85, 0x98, 0x0D, 0x5D, 0x96, 0xFC, 0xD8, 0x8A}};

// Every call on a stream that the file has not fails with MF_E_INVALIDSTREAMNUMBER. Streams are the
// file's sound and video streams in its order, without attached pictures; all are selected at the
// start and give their native type.
//
// With MF_SOURCE_READER_ASYNC_CALLBACK it is asynchronous: ReadSample and Flush only ask, and the
// callback is answered, on a thread of this layer.
//
// Thread-safety: calls are safe from any thread and come one after the other. In asynchronous mode
// its last reference may be given back at any moment, in a callback too. Requests in flight are
// then dropped; elsewhere than in a callback that waits for an answer that is just under way, so
// hold no lock there that the callback takes.
struct IMFSourceReader : IUnknown {
    virtual HRESULT GetStreamSelection(DWORD streamIndex, BOOL* selected) = 0;

    // ALL_STREAMS stands for each of them.
    virtual HRESULT SetStreamSelection(DWORD streamIndex, BOOL selected) = 0;

    // *type: what the file holds, the caller's own copy. A stream has one native type: with an
    // index from 1 on the call fails with MF_E_NO_MORE_TYPES.
    virtual HRESULT GetNativeMediaType(DWORD streamIndex, DWORD typeIndex, IMFMediaType** type) = 0;

    // *type: what the samples are, the caller's own copy. Behind the first decoded sample its
    // MF_MT_FRAME_SIZE is that of the samples.
    virtual HRESULT GetCurrentMediaType(DWORD streamIndex, IMFMediaType** type) = 0;

    // Has the stream give samples of the type: its native one, compressed; MFVideoFormat_NV12; and
    // with advanced video processing MFVideoFormat_ARGB32 and MFVideoFormat_RGB32; of sound
    // MFAudioFormat_PCM (8, 16, 24 or 32 bits) and MFAudioFormat_Float (32 bits), of any rate and
    // 1 to 8 channels. What the type does not say of sound is as in the stream, and 16 bits for PCM
    // of compressed sound. MF_E_INVALIDMEDIATYPE for others, MF_E_TOPO_CODEC_NOT_FOUND where
    // nothing decodes the stream, MF_E_INVALIDREQUEST while an asynchronous request is in flight.
    // `reserved` is null.
    virtual HRESULT SetCurrentMediaType(DWORD streamIndex, DWORD* reserved, IMFMediaType* type) = 0;

    // The next sample of each stream is the one shown at `position`, VT_I8 in units of 100 ns, the
    // only `timeFormat` (GUID_NULL). For pictures that is the one shown a unit later: a position
    // one unit before a picture, which its time cut to whole units may be, gives that picture. A
    // position before the start is the start; behind the end of a stream comes its last sample, and
    // then its end. Compressed samples go on from the key frame at or before it. The next sample of
    // decoded sound begins with the frame at the position, and behind the stream's last one there
    // is only its end. MF_E_INVALIDREQUEST while an asynchronous request is in flight.
    virtual HRESULT SetCurrentPosition(REFGUID timeFormat, REFPROPVARIANT position) = 0;

    // The next sample of a stream, waited for. *sample: it, with a reference for the caller; null
    // with MF_SOURCE_READERF_ENDOFSTREAM in *flags behind the last one, and on failure.
    // *actualIndex: its stream; *time: its time. These two may be null. MF_E_INVALIDREQUEST where
    // the stream is not selected. `controlFlags` is 0. The sample of a picture lasts until a unit
    // before the next one's time, as that unit leads to the next one; only the last picture's
    // sample lasts until its end.
    //
    // Asynchronous: the four pointers are null, E_INVALIDARG otherwise, and S_OK says that
    // OnReadSample will be called. MF_E_NOTACCEPTING from Flush to its OnFlush, and where very many
    // requests are waiting.
    virtual HRESULT ReadSample(DWORD streamIndex, DWORD controlFlags, DWORD* actualIndex,
                               DWORD* flags, LONGLONG* time, IMFSample** sample) = 0;

    // Drops what a stream has read ahead; SetCurrentPosition then says where it goes on.
    // Asynchronous: drops the stream's requests in flight too, and OnFlush says when that is done.
    virtual HRESULT Flush(DWORD streamIndex) = 0;

    // *object: of MF_SOURCE_READER_MEDIASOURCE the service MF_SCRUBBING_SERVICE as IMFSeekInfo,
    // where the file has video; MF_E_UNSUPPORTED_SERVICE for any other.
    virtual HRESULT GetServiceForStream(DWORD streamIndex, REFGUID service, REFIID iid,
                                        void** object) = 0;

    // *value: of MF_SOURCE_READER_MEDIASOURCE the attribute MF_PD_DURATION;
    // MF_E_ATTRIBUTENOTFOUND for others, and where the file does not say.
    virtual HRESULT GetPresentationAttribute(DWORD streamIndex, REFGUID attribute,
                                             PROPVARIANT* value) = 0;

protected:
    ~IMFSourceReader() = default;
};

// *reader: one on the file at `url`, a path as CreateFileW takes it. `attributes`, which may be
// null, are read here and not kept. MF_E_UNSUPPORTED_BYTESTREAM_TYPE where it is no media file,
// HRESULT 0x80070002 where nothing is there.
HRESULT MFCreateSourceReaderFromURL(LPCWSTR url, IMFAttributes* attributes,
                                    IMFSourceReader** reader);

// *reader: one on an open source, made by IMFSourceResolver, which the reader shuts down at its own
// end. Otherwise as above; MF_E_SHUTDOWN where the source is shut down, E_NOINTERFACE where it is
// none of this layer's.
HRESULT MFCreateSourceReaderFromMediaSource(IMFMediaSource* source, IMFAttributes* attributes,
                                            IMFSourceReader** reader);
