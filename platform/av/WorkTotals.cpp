#include "platform/av/WorkTotals.h"

namespace av {

WorkTotal& WorkTotals() {
    static WorkTotal totals;
    return totals;
}

} // namespace av
