// A file's sound, read at random: any span, in any order, always the same samples.
//
//     std::vector<float> left(44100), right(44100);
//     std::vector<float*> planes{left.data(), right.data()};
//     unsigned int got = reader->FillAudioBuffer(10 * 44100, 44100, planes);
#pragma once

#include <cstdint>
#include <vector>

#include "zanthe/core/Export.h"

namespace Zanthe {

// Thread-safety: none; one reader serves one thread at a time. Different readers are independent.
class ZANTHE_API IAudioReader {
public:
    IAudioReader() = default;
    IAudioReader(const IAudioReader&) = delete;
    IAudioReader& operator=(const IAudioReader&) = delete;
    virtual ~IAudioReader();

    // Writes the sample frames [startFrame, startFrame + frameCount) into the caller's planes and
    // answers how many were written to each, counted from index 0.
    //
    // Fewer than frameCount: the stream ended inside the span; what lies behind the answered count
    // is untouched. 0: the whole span lies past the end, or the number of planes is not the
    // reader's channel count (2 for every reader of this library); the planes are untouched.
    //
    // A negative startFrame is no error; what lies before frame 0 reads as silence where the reader
    // does not say otherwise.
    //
    // startFrame counts sample frames at the reader's output rate: of MP3 and recordings from the
    // start of the file's own time, of Media Foundation from the sound's first frame. It may jump
    // freely from call to call. Samples are floats at full scale 1.0, one plane a channel;
    // each plane holds at least frameCount floats and stays the caller's.
    //
    // The reader of MP3 throws std::runtime_error, with the texts that it states, when the file can
    // no longer be read or decoded; its next call starts afresh. Those of Media Foundation and of
    // recordings throw for lack of memory alone: where a file is damaged they answer silence in
    // place of what is lost, or end there.
    virtual unsigned int FillAudioBuffer(std::int64_t startFrame, unsigned int frameCount,
                                         std::vector<float*>& channels) = 0;
};

} // namespace Zanthe
