#include "tests/zanthe/h264/LimitedMemory.h"

#include <cstdlib>
#include <limits>
#include <new>

namespace {

thread_local std::size_t largestPiece = std::numeric_limits<std::size_t>::max();

} // namespace

void SetLargestPiece(std::size_t byteCount) {
    largestPiece = byteCount;
}

void* operator new(std::size_t size) {
    if (size <= largestPiece) {
        if (void* piece = std::malloc(size == 0 ? 1 : size); piece != nullptr) {
            return piece;
        }
    }
    throw std::bad_alloc();
}

void operator delete(void* piece) noexcept {
    std::free(piece);
}

void operator delete(void* piece, std::size_t) noexcept {
    std::free(piece);
}
