// Rules of colour, as media types tell them.
#pragma once

#include "platform/av/PictureConversion.h"
#include "platform/mf/MediaType.h"

namespace mf {

// Sets MF_MT_YUV_MATRIX and MF_MT_VIDEO_NOMINAL_RANGE.
void SetColour(IMFMediaType& type, const av::ColourRules& rules);

// What a type with a picture of that height tells; a value that it lacks, or that stands for
// nothing known, is the one of a picture that is silent.
av::ColourRules ColourOf(IMFMediaType& type, int height);

} // namespace mf
