// One line on a terminal that says how far a long work has come, and nothing at all elsewhere.
//
//     Progress progress(std::cerr, isatty(STDERR_FILENO) != 0);
//     while (more) progress.Show("read " + Clock(seconds));
#pragma once

#include <chrono>
#include <cstdint>
#include <ostream>
#include <string>

namespace Program {

// Thread-safety: none.
class Progress {
public:
    // Every line stays for at least `interval`, and none comes before it has passed once: work that
    // is done sooner shows nothing. The stream stays the caller's.
    explicit Progress(std::ostream& stream, bool visible,
                      std::chrono::milliseconds interval = std::chrono::milliseconds(200));
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    // Wipes the line, so that what is printed next begins on an empty one.
    ~Progress();

    void Show(const std::string& text);

    // Takes the line away, until the next Show.
    void Wipe();

private:
    std::ostream& m_stream;
    bool m_visible;
    std::chrono::milliseconds m_interval;
    std::chrono::steady_clock::time_point m_last;
    bool m_shown = false; // a line of ours stands on the terminal
};

// On the program's stderr, visible when that is a terminal.
class StandardProgress : public Progress {
public:
    StandardProgress();
};

// `frames` at `rate` Hz as h:mm:ss.
std::string Clock(std::int64_t frames, int rate);

} // namespace Program
