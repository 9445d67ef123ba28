// A flag that threads can wait for: what events and the ends of threads are made of.
#pragma once

#include <condition_variable>
#include <mutex>

#include "platform/win32/Types.h"

namespace win32 {

// Thread-safety: safe from any thread.
class Signal {
public:
    explicit Signal(bool set)
        : m_set(set) {}

    void Set();
    void Reset();

    // Whether it was set within `milliseconds` (INFINITE: no limit). `consume`: it is reset by
    // this; of several such waits each setting ends one.
    bool Wait(DWORD milliseconds, bool consume);

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    bool m_set; // guarded by m_mutex
};

} // namespace win32
