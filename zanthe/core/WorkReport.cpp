#include "zanthe/core/WorkReport.h"

#include "platform/av/WorkTotals.h"

namespace Zanthe {

WorkDone ReadWorkCounters() {
    const av::WorkTotal& totals = av::WorkTotals();
    return {.packetsRead = totals.packetsRead,
            .picturesDecoded = totals.picturesDecoded,
            .picturesConverted = totals.picturesConverted,
            .seeks = totals.seeks};
}

} // namespace Zanthe
