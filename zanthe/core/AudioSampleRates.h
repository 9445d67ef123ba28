// Which sample rates an editor offers, and how counts of sample frames go from one to another.
#pragma once

#include <cstdint>

#include "zanthe/core/Export.h"

namespace Zanthe {

// Thread-safety: both are safe from any thread, and throw nothing.

// True for 48000, 44100, 32000, 22050, 16000, 11025 and 8000 Hz, and for nothing else.
ZANTHE_API bool AudioSampleRateSupported(unsigned int rate);

// How many sample frames at `toRate` Hz stand for `frameCount` frames at `fromRate` Hz, cut off
// toward zero. Equal rates, whatever they are, give the count back.
//
// Every other pair goes from or to 44100, and by a fixed factor each: the count is multiplied and
// then divided. Any pair besides gives 0, and so does a product that 64 bits do not hold.
//
//     rate     to 44100           from 44100
//     48000    * 14700 / 16000    * 16000 / 14700
//     32000    * 22050 / 16000    * 16000 / 22050
//     22050    * 22050 / 16000    * 16000 / 32000
//     16000    * 44100 / 16000    * 16000 / 44100
//     11025    * 4 / 1            * 16000 / 64000
//      8000    * 88200 / 16000    * 16000 / 88200
//
// These are the rates' own ratios but for 22050 to 44100, which takes that of 32000 and so gives
// 1.378125 times the count: positions made with it are in use, and must keep meaning what they
// meant.
ZANTHE_API std::int64_t ConvertFrameCount(std::int64_t frameCount, std::int64_t fromRate,
                                          std::int64_t toRate);

} // namespace Zanthe
