// A step that makes samples out of samples. Stands for mftransform.h and, for the class of the
// colour converter and the resampler, wmcodecdsp.h.
//
//     CoCreateInstance(CLSID_CColorConvertDMO, nullptr, CLSCTX_INPROC_SERVER, IID_IMFTransform,
//     ...)
#pragma once

#include "platform/mf/MediaType.h"
#include "platform/mf/Sample.h"

inline constexpr IID IID_IMFTransform = {
    0xBF94C121, 0x5B05, 0x4E6F, {0x80, 0x00, 0xBA, 0x59, 0x89, 0x61, 0x41, 0x4D}};

// MFVideoFormat_NV12 to MFVideoFormat_RGB32.
inline constexpr CLSID CLSID_CColorConvertDMO = {
    0x98230571, 0x0087, 0x4204, {0xB0, 0x20, 0x32, 0x82, 0x53, 0x8E, 0x57, 0xD3}};

// Sound in memory to sound in memory: another rate, other channels, another format.
inline constexpr CLSID CLSID_CResamplerMediaObject = {
    0xF447B69E, 0x1884, 0x4A7E, {0x80, 0x55, 0x34, 0x6F, 0x74, 0xD6, 0xED, 0xB3}};

// Attribute of a transform, UINT32: 1 where it is asynchronous. None here is.
inline constexpr GUID MF_TRANSFORM_ASYNC = {
    0xF81A699A, 0x649A, 0x497D, {0x8C, 0x73, 0x29, 0xF8, 0xFE, 0xD6, 0xAD, 0x7A}};

enum MFT_MESSAGE_TYPE : UINT32 { // NOLINT(readability-identifier-naming): settled
    MFT_MESSAGE_COMMAND_FLUSH = 0,
    MFT_MESSAGE_COMMAND_DRAIN = 1,
    MFT_MESSAGE_NOTIFY_BEGIN_STREAMING = 0x10000000,
    MFT_MESSAGE_NOTIFY_END_STREAMING = 0x10000001,
};

enum MFT_OUTPUT_STREAM_INFO_FLAGS : UINT32 { // NOLINT(readability-identifier-naming): settled
    MFT_OUTPUT_STREAM_WHOLE_SAMPLES = 0x1,
    MFT_OUTPUT_STREAM_SINGLE_SAMPLE_PER_BUFFER = 0x2,
    MFT_OUTPUT_STREAM_FIXED_SAMPLE_SIZE = 0x4,
};

struct MFT_OUTPUT_STREAM_INFO { // NOLINT(readability-identifier-naming): settled
    DWORD dwFlags;              // of MFT_OUTPUT_STREAM_INFO_FLAGS
    DWORD cbSize;               // bytes of the buffer that ProcessOutput needs
    DWORD cbAlignment;          // 0: none asked for
};

struct IMFCollection;

struct MFT_OUTPUT_DATA_BUFFER { // NOLINT(readability-identifier-naming): settled
    DWORD dwStreamID;
    IMFSample* pSample;     // the caller's, to be filled
    DWORD dwStatus;         // set to 0
    IMFCollection* pEvents; // left null
};

// With one input and one output, each of number 0; calls on others fail with
// MF_E_INVALIDSTREAMNUMBER.
//
// Thread-safety: safe from any thread.
struct IMFTransform : IUnknown {
    // MF_E_TRANSFORM_TYPE_NOT_SET before both types are.
    virtual HRESULT GetOutputStreamInfo(DWORD streamId, MFT_OUTPUT_STREAM_INFO* info) = 0;

    // *attributes: the transform's own, with a reference for the caller; E_NOTIMPL where it has
    // none.
    virtual HRESULT GetAttributes(IMFAttributes** attributes) = 0;

    // Takes a copy of the type; null takes it away. MF_E_INVALIDMEDIATYPE for one that it does not
    // serve. `flags`: with MFT_SET_TYPE_TEST_ONLY nothing is set.
    virtual HRESULT SetInputType(DWORD streamId, IMFMediaType* type, DWORD flags) = 0;
    virtual HRESULT SetOutputType(DWORD streamId, IMFMediaType* type, DWORD flags) = 0;

    // FLUSH drops what is held; DRAIN has it give all that is to come of the input so far; the
    // notifications change nothing.
    virtual HRESULT ProcessMessage(MFT_MESSAGE_TYPE message, std::uintptr_t parameter) = 0;

    // Takes the sample, or what it needs of it. MF_E_NOTACCEPTING while it has as much as it can
    // hold, a picture or some seconds of sound; MF_E_TRANSFORM_TYPE_NOT_SET before both types are
    // set.
    virtual HRESULT ProcessInput(DWORD streamId, IMFSample* sample, DWORD flags) = 0;

    // Fills the first buffer of the sample of buffers[0], a picture or as many frames of sound as
    // there are and fit, and sets its time and duration where the input's are known.
    // MF_E_TRANSFORM_NEED_MORE_INPUT where nothing is to be given; E_INVALIDARG where there is no
    // sample or no buffer; MF_E_BUFFERTOOSMALL. A failed conversion of a picture drops the input.
    virtual HRESULT ProcessOutput(DWORD flags, DWORD bufferCount, MFT_OUTPUT_DATA_BUFFER* buffers,
                                  DWORD* status) = 0;

protected:
    ~IMFTransform() = default;
};

inline constexpr DWORD MFT_SET_TYPE_TEST_ONLY = 1;
