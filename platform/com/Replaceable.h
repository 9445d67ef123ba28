// Something that there is once in the process, and that a test puts its own in place of.
#pragma once

#include <mutex>
#include <utility>

namespace com {

// Thread-safety: safe from any thread.
template <typename T>
class Replaceable {
public:
    // Has `value` take the place of what was there, and answers that.
    T Replace(T value) {
        const std::lock_guard lock(m_mutex);
        return std::exchange(m_value, std::move(value));
    }

    // A copy: a caller under way keeps what it began with.
    T Current() const {
        const std::lock_guard lock(m_mutex);
        return m_value;
    }

private:
    mutable std::mutex m_mutex;
    T m_value; // guarded by m_mutex
};

} // namespace com
