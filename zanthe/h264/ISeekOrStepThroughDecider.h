// Whether a reader gets to a time sooner by a seek or by reading on.
#pragma once

#include <cstdint>

#include "zanthe/core/Export.h"

namespace Zanthe {

// A long-GOP stream is decoded forward from a key frame only: a seek costs a restart there, a step
// the decoding of each picture on the way. Times are in units of 100 ns on the reader's timeline,
// on which the first sample is at 0.
//
// Hosts call through the order of these operations: it is settled, and new ones go to the end.
class ZANTHE_API ISeekOrStepThroughDecider {
public:
    ISeekOrStepThroughDecider() = default;
    ISeekOrStepThroughDecider(const ISeekOrStepThroughDecider&) = delete;
    ISeekOrStepThroughDecider& operator=(const ISeekOrStepThroughDecider&) = delete;
    virtual ~ISeekOrStepThroughDecider();

    // True: seek to get from `from` to `to`. False: read on. May throw, as each decider says.
    virtual bool NeedToSeekBetweenTimes(std::int64_t from, std::int64_t to) const = 0;
};

} // namespace Zanthe
