#include "platform/com/TaskMemory.h"

#include <cstdlib>

void* CoTaskMemAlloc(std::size_t byteCount) {
    return std::malloc(byteCount);
}

void CoTaskMemFree(void* memory) {
    std::free(memory);
}
