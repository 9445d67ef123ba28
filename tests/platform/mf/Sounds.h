// Sound through source readers, for the tests.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/com/ComPtr.h"
#include "platform/mf/SourceReader.h"

constexpr DWORD kSound = MF_SOURCE_READER_FIRST_AUDIO_STREAM;

// A media type of sound; 0 leaves a value out.
com::ComPtr<IMFMediaType> SoundType(REFGUID subtype, UINT32 bits = 0, UINT32 channels = 0,
                                    UINT32 rate = 0);

// A reader on the made file whose first sound stream alone is selected and gives `type`.
com::ComPtr<IMFSourceReader> OpenSound(const std::string& name,
                                       const com::ComPtr<IMFMediaType>& type);

struct SoundRun {
    std::vector<std::uint8_t> bytes;
    LONGLONG start = -1; // time of the first sample
    LONGLONG end = -1;   // where the last one ends
    std::size_t samples = 0;
    bool ended = false; // with the end of the stream, and not by `most`
};

// What comes next, at most so many samples. A failure, and a sample that does not begin where the
// one before ended, fail the test.
SoundRun ReadSound(IMFSourceReader& reader, std::size_t most = 1U << 30);

// The bytes of a sample.
std::vector<std::uint8_t> BytesOf(IMFSample& sample);
