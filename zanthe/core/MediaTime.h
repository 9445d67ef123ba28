// Exact points and spans of time.
//
//     MediaTime frame(1001, 30000);                    // one frame of 29.97 Hz, exactly
//     MediaTimeToReferenceTime(100 * frame);           // 33366667
//
// Time stays a MediaTime as long as it can: these conversions stand at the border of a backend
// only.
#pragma once

#include <cstdint>

#include <boost/rational.hpp>

#include "zanthe/core/Export.h"

namespace Zanthe {

// Seconds as an exact, normalised fraction with a positive denominator. Making one with a zero
// denominator throws boost::bad_rational.
using MediaTime = boost::rational<std::int64_t>;

// Thread-safety: both are safe from any thread, and throw nothing.

// Seconds: the numerator as a double divided by the denominator as a double.
ZANTHE_API double MediaTimeToSeconds(MediaTime time);

// Units of 100 ns, 10,000,000 a second, as Media Foundation and DirectShow count; rounded to the
// nearest, ties away from zero, so that -t always gives the negation of what t gives.
//
// With |time| = n/d and the scale k = 10,000,000, common divisors taken out of both factors first,
// the magnitude is (d + 2*n*k) / (2*d) in unsigned 64-bit arithmetic. That is exact while
// d + 2*n*k < 2^64, for whole seconds some 29,000 years; beyond it the value wraps and means
// nothing.
ZANTHE_API std::int64_t MediaTimeToReferenceTime(MediaTime time);

} // namespace Zanthe
