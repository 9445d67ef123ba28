// Source readers for the tests.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/com/ComPtr.h"
#include "platform/mf/SourceReader.h"

constexpr DWORD kVideo = MF_SOURCE_READER_FIRST_VIDEO_STREAM;

// A source reader's attributes, with advanced video processing on.
com::ComPtr<IMFAttributes> ProcessingAttributes();

// A reader on the file; a failure fails the test and gives an empty one.
com::ComPtr<IMFSourceReader> OpenReader(const std::string& path,
                                        const com::ComPtr<IMFAttributes>& attributes);

// The same whose first video stream gives `subtype`, with everything else deselected.
com::ComPtr<IMFSourceReader> OpenPixels(const std::string& path, REFGUID subtype);

// A media type of video.
com::ComPtr<IMFMediaType> VideoType(REFGUID subtype);

struct ReadResult {
    HRESULT result = S_OK;
    DWORD index = 0;
    DWORD flags = 0;
    LONGLONG time = -1;
    com::ComPtr<IMFSample> sample;
};

ReadResult ReadNext(IMFSourceReader& reader, DWORD stream = kVideo);

HRESULT Seek(IMFSourceReader& reader, LONGLONG position);

LONGLONG TimeOf(IMFSample& sample);
LONGLONG DurationOf(IMFSample& sample);

// A copy of the memory of buffer 0; empty where it cannot be locked.
std::vector<std::uint8_t> PixelsOf(IMFSample& sample);

// The rest of the first video stream's samples.
std::vector<com::ComPtr<IMFSample>> ReadAll(IMFSourceReader& reader);

GUID SubtypeOf(IMFMediaType& type);

struct FrameSize {
    UINT32 width = 0;
    UINT32 height = 0;

    bool operator==(const FrameSize&) const = default;
};

FrameSize SizeOf(IMFMediaType& type);
FrameSize CurrentSize(IMFSourceReader& reader);
