// Has memory run out where a test says. A program that is linked with it hands out all memory
// itself.
#pragma once

#include <cstddef>

// From now on the calling thread gets no piece of more than `byteCount` bytes: std::bad_alloc.
void SetLargestPiece(std::size_t byteCount);
