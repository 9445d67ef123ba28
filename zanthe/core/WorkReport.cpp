#include "zanthe/core/WorkReport.h"

#include "platform/av/PictureConversion.h"
#include "platform/av/WorkTotals.h"

namespace Zanthe {

WorkDone ReadWorkCounters() {
    const av::WorkTotal& totals = av::WorkTotals();
    return {.packetsRead = totals.packetsRead,
            .picturesDecoded = totals.picturesDecoded,
            .picturesConverted = av::PicturesConverted(),
            .seeks = totals.seeks};
}

} // namespace Zanthe
