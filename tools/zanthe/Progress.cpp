#include "tools/zanthe/Progress.h"

#include <iomanip>
#include <iostream>
#include <sstream>

#include <unistd.h>

namespace Program {

Progress::Progress(std::ostream& stream, bool visible, std::chrono::milliseconds interval)
    : m_stream(stream)
    , m_visible(visible)
    , m_interval(interval)
    , m_last(std::chrono::steady_clock::now()) {}

Progress::~Progress() {
    Wipe();
}

void Progress::Show(const std::string& text) {
    const auto now = std::chrono::steady_clock::now();
    if (!m_visible || now - m_last < m_interval) {
        return;
    }
    m_last = now;
    Wipe();
    m_stream << text << std::flush;
    m_shown = true;
}

void Progress::Wipe() {
    if (m_shown) {
        m_stream << "\r\x1b[K" << std::flush;
        m_shown = false;
    }
}

StandardProgress::StandardProgress()
    : Progress(std::cerr, isatty(STDERR_FILENO) != 0) {}

std::string Clock(std::int64_t frames, int rate) {
    const std::int64_t seconds = frames / rate;
    std::ostringstream text;
    text << seconds / 3600 << std::setfill('0') << ':' << std::setw(2) << seconds / 60 % 60 << ':'
         << std::setw(2) << seconds % 60;
    return text.str();
}

} // namespace Program
