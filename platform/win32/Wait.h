// Waiting for events and threads. Stands for synchapi.h.
#pragma once

#include "platform/win32/Handle.h"

inline constexpr DWORD INFINITE = 0xFFFFFFFF;

inline constexpr DWORD WAIT_OBJECT_0 = 0;
inline constexpr DWORD WAIT_TIMEOUT = 258;
inline constexpr DWORD WAIT_FAILED = 0xFFFFFFFF;

// Waits until the event or thread behind `handle` is signalled, for `milliseconds` at most;
// INFINITE sets no limit, 0 only looks. A thread is signalled for good once it has ended; a wait
// that an auto-reset event ends resets it.
//
// WAIT_OBJECT_0 when it is signalled, WAIT_TIMEOUT when the time ran out, WAIT_FAILED for a handle
// of neither kind.
//
// Thread-safety: safe from any thread; the handle must not be closed meanwhile.
DWORD WaitForSingleObject(HANDLE handle, DWORD milliseconds);

namespace win32 {

// The base of what can be waited for.
class WaitableObject : public KernelObject {
public:
    // Whether it was signalled in that time; `milliseconds` as above.
    virtual bool Wait(DWORD milliseconds) = 0;
};

} // namespace win32
