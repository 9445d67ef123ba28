// A sound as it looks: how far it swings, column by column.
#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "tools/zanthe/Canvas.h"
#include "zanthe/audio/IAudioReader.h"

namespace Program {

// The lowest and the highest sample of both channels, within [-1, 1]; both 0 in silence.
struct Swing {
    float low = 0;
    float high = 0;
};

// One a column: `duration` (100 ns) is shared out evenly among `columns` of them. Of a share longer
// than a second, the second in its middle is read, so that the work has a bound for any length of
// file. Empty where there is no sound at all; columns behind its end are silent.
//
// `watch` is called before each read with the column, and may throw to stop the work. Throws what
// the reader throws. REQUIRES: columns above 0.
std::vector<Swing> MeasureWaveform(Zanthe::IAudioReader& reader, int rate, std::int64_t duration,
                                   int columns, const std::function<void(int column)>& watch = {});

// A pixel for each, as wide as `area`; full scale is its whole height.
void DrawWaveform(Canvas& canvas, const Rect& area, const std::vector<Swing>& swings,
                  const Colour& colour);

} // namespace Program
