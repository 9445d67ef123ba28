#include "tools/zanthe/SheetLayout.h"

#include <algorithm>
#include <cmath>

namespace Program {

namespace {

constexpr int LongestCellSide = 320;
constexpr int Gap = 8; // between cells, and around everything
constexpr int TitleHeight = 28;
constexpr int CaptionHeight = 20;
// A caption needs its place, whatever the shape of the picture.
constexpr int NarrowestCell = 96;

Size Fitted(Size picture) {
    const int longest = std::max(picture.width, picture.height);
    const double factor = std::min(1.0, static_cast<double>(LongestCellSide) / longest);
    const auto scaled = [&](int side) {
        return std::max(1, static_cast<int>(std::lround(side * factor)));
    };
    return {scaled(picture.width), scaled(picture.height)};
}

} // namespace

SheetLayout LayOutSheet(Size picture, int columns, int rows, int stripHeight) {
    const Size shown = Fitted(picture);
    const int cellWidth = std::max(shown.width, NarrowestCell);
    const int cellHeight = shown.height + CaptionHeight;
    const int inner = columns * (cellWidth + Gap) - Gap;
    SheetLayout layout;
    layout.title = {Gap, Gap, inner, TitleHeight};
    const int top = Gap + TitleHeight + Gap;
    for (int row = 0; row < rows; ++row) {
        for (int column = 0; column < columns; ++column) {
            const int x = Gap + column * (cellWidth + Gap);
            const int y = top + row * (cellHeight + Gap);
            layout.cells.push_back(
                {.picture = {x + (cellWidth - shown.width) / 2, y, shown.width, shown.height},
                 .caption = {x, y + shown.height, cellWidth, CaptionHeight}});
        }
    }
    const int bottom = top + rows * (cellHeight + Gap);
    layout.strip = {Gap, bottom, inner, stripHeight};
    layout.sheet = {inner + 2 * Gap, bottom + (stripHeight > 0 ? stripHeight + Gap : 0)};
    return layout;
}

std::vector<std::int64_t> SheetTimes(std::int64_t duration, std::size_t count) {
    std::vector<std::int64_t> times;
    for (std::size_t i = 0; i < count; ++i) {
        const double share =
            (2.0 * static_cast<double>(i) + 1) / (2.0 * static_cast<double>(count));
        times.push_back(static_cast<std::int64_t>(static_cast<double>(duration) * share));
    }
    return times;
}

} // namespace Program
