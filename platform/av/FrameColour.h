// Rules of colour, written into a frame.
#pragma once

#include "platform/av/PictureConversion.h"

namespace av {

// From here on ColourRulesOf(frame) == rules, whatever the frame's size; but a format that is of
// full range by definition stays so.
void SetColourRules(AVFrame& frame, const ColourRules& rules);

} // namespace av
