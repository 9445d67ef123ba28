// How the commands read sound: in spans, so that memory stays the same for any length of file.
#pragma once

#include <cstdint>
#include <functional>

#include "zanthe/audio/IAudioReader.h"

namespace Program {

// Every reader of the library delivers stereo.
inline constexpr int SoundChannels = 2;

// Frames to ask for at a time at `rate` Hz: about six seconds, at most 1 << 18. Each read of the
// MP3 reader costs a fixed pre-roll, which this makes small; and between two reads is where the
// program hears Ctrl-C, so a low rate must not put the whole file into one.
unsigned int SpanFrames(int rate);

// The frames [start, start + frames) of a sound, or as many of them as there are.
//
// Hands them to `take` span by span in their order: two planes of `count` floats, valid for the
// call, and the number of the first frame. Answers how many frames it handed over; fewer than
// `frames` means that the sound ended. What the reader and `take` throw passes through, and
// Interrupted comes between two spans.
using TakeSpan = std::function<void(std::int64_t first, const float* left, const float* right,
                                    unsigned int count)>;
std::int64_t ReadSound(Zanthe::IAudioReader& reader, std::int64_t start, std::int64_t frames,
                       unsigned int spanFrames, const TakeSpan& take);

// Where a sound ends, in frames, found with some fifty reads of one frame each; 0 where there is
// none. Throws what the reader throws, and Interrupted.
std::int64_t FindSoundEnd(Zanthe::IAudioReader& reader, int rate);

} // namespace Program
