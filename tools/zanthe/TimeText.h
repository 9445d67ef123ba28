// Times as they are written on the command line and printed: exact, never through a double.
//
//     ParseTime("1001/30000");      // one frame of 29.97 Hz
//     ParseTime("0:01:02.5");       // 125/2
//     ClockText(625'000'000);       // "0:01:02.500"
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "zanthe/core/MediaTime.h"

namespace Program {

inline constexpr std::int64_t UnitsPerSecond = 10'000'000; // units of 100 ns, as samples count

// A time in seconds, from 0: a fraction ("1001/30000"), a decimal ("12.5"), or minutes or hours in
// front of one ("1:02.5", "0:01:02.5"; what follows a colon is below 60).
//
// Throws std::invalid_argument with a text that names `text`: "... is no time", or "... cannot be
// counted" when the exact value, or its count of 100 ns, leaves 64 bits.
Zanthe::MediaTime ParseTime(std::string_view text);

// The same of one or more times with commas between them.
std::vector<Zanthe::MediaTime> ParseTimes(std::string_view text);

// What stands between the commas, as it is.
std::vector<std::string> SplitAtCommas(std::string_view text);

// "1001/30000", "5".
std::string FractionText(const Zanthe::MediaTime& time);

// h:mm:ss.mmm, rounded up to the millisecond: who asks for the printed start of a picture gets that
// picture.
std::string ClockText(std::int64_t units);

double SecondsOf(std::int64_t units);

// Exactly so many units of 100 ns.
Zanthe::MediaTime TimeOfUnits(std::int64_t units);

// The whole units of 100 ns in `time`, from 0, which is what a sample reader looks for: what is
// left over is cut off. Exact for any time whose parts are no finer than 10^-11 s.
std::int64_t UnitsLookedFor(const Zanthe::MediaTime& time);

} // namespace Program
