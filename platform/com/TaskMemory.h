// Memory that one side allocates and the other gives back. Stands for combaseapi.h.
#pragma once

#include <cstddef>
#include <memory>

// Thread-safety: both are safe from any thread.

// `byteCount` bytes, aligned for anything, the caller's to give to CoTaskMemFree; null where there
// is no memory.
void* CoTaskMemAlloc(std::size_t byteCount);

// Null is given back like anything else: nothing happens.
void CoTaskMemFree(void* memory);

namespace com {

struct FreeTaskMemory {
    void operator()(void* memory) const { CoTaskMemFree(memory); }
};

// Text that the other side has allocated, given back at its end.
using TaskText = std::unique_ptr<wchar_t, FreeTaskMemory>;

} // namespace com
