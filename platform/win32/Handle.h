// What a HANDLE is, and how it is given back. Stands for handleapi.h.
//
// A handle of this layer is a pointer to a KernelObject, whichever call made it, so that one
// CloseHandle serves them all.
#pragma once

#include <cstdint>

#include "platform/win32/Types.h"

using HANDLE = void*;

// What calls that make a file handle answer when they fail; others answer a null handle.
// NOLINTNEXTLINE(performance-no-int-to-ptr): the value is the SDK's; it is compared, never followed
inline const HANDLE INVALID_HANDLE_VALUE = reinterpret_cast<HANDLE>(std::intptr_t{-1});

// Ends the object behind `handle`. FALSE, with nothing done, for null and INVALID_HANDLE_VALUE.
// A handle is closed once: it names nothing afterwards.
//
// Thread-safety: safe from any thread, as long as no other call on the same handle is under way.
BOOL CloseHandle(HANDLE handle);

namespace win32 {

// The base of whatever a HANDLE can stand for.
class KernelObject {
public:
    KernelObject() = default;
    KernelObject(const KernelObject&) = delete;
    KernelObject& operator=(const KernelObject&) = delete;
    virtual ~KernelObject() = default;
};

// The object of class T behind `handle`; null when it stands for nothing or for another kind.
template <typename T>
T* ObjectOf(HANDLE handle) {
    const bool namesNothing = handle == nullptr || handle == INVALID_HANDLE_VALUE;
    return namesNothing ? nullptr : dynamic_cast<T*>(static_cast<KernelObject*>(handle));
}

} // namespace win32
