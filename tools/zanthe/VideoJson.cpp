#include "tools/zanthe/VideoJson.h"

#include "tools/zanthe/DisplayPicture.h"

namespace Program {

Json JsonOf(const VideoFacts& facts) {
    const Size shown = facts.width > 0 && facts.height > 0 ? DisplaySize(facts) : Size{};
    return {{"reader", facts.reader},
            {"stored_width", facts.width},
            {"stored_height", facts.height},
            {"rotation", facts.rotation},
            {"pixel_aspect", {facts.aspectNumerator, facts.aspectDenominator}},
            {"display_width", shown.width},
            {"display_height", shown.height},
            {"duration_100ns", JsonOrNull(facts.duration)},
            {"remarks", facts.remarks}};
}

} // namespace Program
