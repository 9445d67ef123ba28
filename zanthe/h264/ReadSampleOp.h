// What a sample finder did, one step of its log.
#pragma once

namespace Zanthe {

enum class ReadSampleOp : int {
    ReturnedCurrentSample = 0,  // the answer was the current sample
    ReturnedPreviousSample = 1, // the answer was the previous sample
    ReadNextSample = 2,         // a read follows
    SeekBackward = 3,           // a seek, because the time lies before the position
    SeekForward = 4,            // a seek, because the decider said so
    SeekFailed = 5,             // the position could not be set
};

} // namespace Zanthe
