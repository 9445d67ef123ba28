// How long something took.
#pragma once

#include <chrono>

namespace Program {

// Runs from its making on.
class Stopwatch {
public:
    double Milliseconds() const {
        return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - m_begin)
            .count();
    }

private:
    std::chrono::steady_clock::time_point m_begin = std::chrono::steady_clock::now();
};

} // namespace Program
