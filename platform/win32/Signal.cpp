#include "platform/win32/Signal.h"

#include <chrono>

#include "platform/win32/Wait.h"

namespace win32 {

// Told under the lock: whoever waits may end the signal as soon as the wait is over.
void Signal::Set() {
    const std::lock_guard lock(m_mutex);
    m_set = true;
    m_changed.notify_all();
}

void Signal::Reset() {
    const std::lock_guard lock(m_mutex);
    m_set = false;
}

bool Signal::Wait(DWORD milliseconds, bool consume) {
    std::unique_lock lock(m_mutex);
    const auto isSet = [this] { return m_set; };
    if (milliseconds == INFINITE) {
        m_changed.wait(lock, isSet);
    } else if (!m_changed.wait_for(lock, std::chrono::milliseconds(milliseconds), isSet)) {
        return false;
    }
    m_set = m_set && !consume;
    return true;
}

} // namespace win32
