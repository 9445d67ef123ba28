// Where everything stands on a contact sheet.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "tools/zanthe/Canvas.h"

namespace Program {

struct SheetCell {
    Rect picture;
    Rect caption; // below the picture
};

struct SheetLayout {
    Size sheet;
    Rect title;
    std::vector<SheetCell> cells; // row by row
    // Below the cells, over their whole width, for what goes along with the time from the first
    // cell to the last: the sound. Without height as long as nothing draws it.
    Rect strip;
};

// Cells in `columns` and `rows` for pictures whose display size is `picture`: scaled down to have
// no side above 320, never up. REQUIRES: sizes above 0.
SheetLayout LayOutSheet(Size picture, int columns, int rows, int stripHeight = 0);

// The times of `count` cells over a video of `duration`, in 100 ns: each from the middle of its
// share, so that neither a black start nor the end of the fade-out takes a cell.
std::vector<std::int64_t> SheetTimes(std::int64_t duration, std::size_t count);

} // namespace Program
