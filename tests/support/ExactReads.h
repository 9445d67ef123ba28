// A frame number gives the same sample, whatever was read before.
#pragma once

#include "tests/support/StereoSound.h"
#include "zanthe/audio/IAudioReader.h"

// What the random positions follow from.
inline constexpr unsigned int ExactReadsSeed = 20261121;

// `reads` spans of up to 40000 frames, some of them across the end and behind it, each of them
// equal to its part of `whole`, bit for bit. Fails the test otherwise.
void ExpectRandomReadsEqual(Zanthe::IAudioReader& reader, const StereoSound& whole, int reads);

// The sound read in spans of an odd length, one behind the other, is `whole`.
void ExpectOddChunksMakeTheWhole(Zanthe::IAudioReader& reader, const StereoSound& whole);
