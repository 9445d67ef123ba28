#include "zanthe/analysis/FitSizeToBounds.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

namespace {

// In single precision the largest sizes round up to 2^31, which is no int.
int Truncated(float size) {
    constexpr float limit = 2147483648.0F;
    return size < limit ? static_cast<int>(size) : std::numeric_limits<int>::max();
}

int FreeAxis(int free, int bounded, int bound) {
    return Truncated(static_cast<float>(free) / static_cast<float>(bounded) *
                     static_cast<float>(bound));
}

void FitHeight(int& width, int& height, int maxHeight) {
    if (maxHeight < height) {
        width = FreeAxis(width, height, maxHeight);
        height = maxHeight;
    }
}

void FitWidth(int& width, int& height, int maxWidth) {
    if (maxWidth < width) {
        height = FreeAxis(height, width, maxWidth);
        width = maxWidth;
    }
}

int Scaled(int size, int bound, int bounded) {
    return static_cast<int>(std::lround(static_cast<double>(bound) * size / bounded));
}

// At least one side is too long here. Neither division is by zero: the limiting side is above 0,
// for its product with a positive bound is the larger one, or it passes its own bound.
void FitBoth(int& width, int& height, int maxWidth, int maxHeight) {
    const std::int64_t byWidth = static_cast<std::int64_t>(height) * maxWidth;
    const std::int64_t byHeight = static_cast<std::int64_t>(width) * maxHeight;
    if (byWidth < byHeight) {
        height = Scaled(height, maxWidth, width);
        width = maxWidth;
    } else {
        width = Scaled(width, maxHeight, height);
        height = maxHeight;
    }
}

} // namespace

void FitSizeToBounds(int& width, int& height, int maxWidth, int maxHeight) {
    const bool fits = width <= maxWidth && height <= maxHeight;
    const bool unbounded = maxWidth == 0 && maxHeight == 0;
    if (fits || unbounded || maxWidth < 0 || maxHeight < 0) {
        return;
    }
    if (maxWidth == 0) {
        FitHeight(width, height, maxHeight);
    } else if (maxHeight == 0) {
        FitWidth(width, height, maxWidth);
    } else {
        FitBoth(width, height, maxWidth, maxHeight);
    }
    width = std::max(width, 1);
    height = std::max(height, 1);
}
