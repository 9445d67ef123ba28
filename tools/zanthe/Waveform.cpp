#include "tools/zanthe/Waveform.h"

#include <algorithm>
#include <cmath>

#include "tools/zanthe/TimeText.h"

namespace Program {

namespace {

void Widen(Swing& swing, const std::vector<float>& samples, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        const float sample = samples[i];
        if (!std::isnan(sample)) {
            swing.low = std::max(-1.0F, std::min(swing.low, sample));
            swing.high = std::min(1.0F, std::max(swing.high, sample));
        }
    }
}

} // namespace

std::vector<Swing> MeasureWaveform(Zanthe::IAudioReader& reader, int rate, std::int64_t duration,
                                   int columns, const std::function<void(int column)>& watch) {
    const double framesPerColumn =
        static_cast<double>(duration) / static_cast<double>(UnitsPerSecond) * rate / columns;
    const auto wanted = static_cast<unsigned int>(
        std::clamp(std::ceil(framesPerColumn), 1.0, static_cast<double>(rate)));
    std::vector<float> left(wanted);
    std::vector<float> right(wanted);
    std::vector<float*> planes{left.data(), right.data()};
    std::vector<Swing> swings(static_cast<std::size_t>(columns));
    bool hasSound = false;
    for (int column = 0; column < columns; ++column) {
        if (watch) {
            watch(column);
        }
        const double spare = std::max(framesPerColumn - wanted, 0.0);
        const auto start = static_cast<std::int64_t>(column * framesPerColumn + spare / 2);
        const unsigned int count = std::min(reader.FillAudioBuffer(start, wanted, planes), wanted);
        Swing& swing = swings[static_cast<std::size_t>(column)];
        Widen(swing, left, count);
        Widen(swing, right, count);
        hasSound = hasSound || count > 0;
    }
    return hasSound ? swings : std::vector<Swing>();
}

void DrawWaveform(Canvas& canvas, const Rect& area, const std::vector<Swing>& swings,
                  const Colour& colour) {
    const double half = area.height / 2.0;
    const auto rowOf = [&](float sample) {
        return std::min(static_cast<int>((1 - static_cast<double>(sample)) * half),
                        area.height - 1);
    };
    for (std::size_t i = 0; i < swings.size() && i < static_cast<std::size_t>(area.width); ++i) {
        const int top = rowOf(swings[i].high);
        const int bottom = rowOf(swings[i].low);
        canvas.FillArea({area.x + static_cast<int>(i), area.y + top, 1, bottom - top + 1}, colour);
    }
}

} // namespace Program
