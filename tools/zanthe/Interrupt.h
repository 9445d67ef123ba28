// Ctrl-C and its like, turned into an exception at a place of our choosing, so that half-written
// files go the way of every other error. Work that does not come to such a place in time is ended
// all the same.
//
//     CatchInterrupts();
//     while (more) { ThrowIfInterrupted(); work(); }
#pragma once

#include <string>

namespace Program {

// Thrown by ThrowIfInterrupted. No std::exception on purpose: a handler that turns the library's
// errors into text must not take it for one.
struct Interrupted {
    int signal; // the program's exit status is 128 + signal
};

// From now on the first SIGINT, SIGTERM, SIGHUP or SIGPIPE only leaves a note. The next one ends
// the program at once with the status 128 + signal, and so do InterruptGrace seconds in which
// nobody has asked for the note; files that are named by RemovedWhenEnded go first. A signal that
// whoever started the program wants ignored (nohup) stays ignored.
void CatchInterrupts();

// For the longest reading of a film and the largest page that is drawn in one piece.
inline constexpr unsigned int InterruptGrace = 2; // seconds

// Undoes it: a signal ends the program at once from now on. For work that writes no file, so that
// there is nothing to tidy and no need to ask. Throws as ThrowIfInterrupted does.
void StopCatchingInterrupts();

// Throws Interrupted if a signal came since CatchInterrupts or the last throw.
void ThrowIfInterrupted();

// A file that goes when a signal ends the program at once, as long as this lives.
//
// Thread-safety: objects are independent.
class RemovedWhenEnded {
public:
    explicit RemovedWhenEnded(const std::string& path);
    RemovedWhenEnded(const RemovedWhenEnded&) = delete;
    RemovedWhenEnded& operator=(const RemovedWhenEnded&) = delete;
    ~RemovedWhenEnded();

    struct Entry;

private:
    Entry* m_entry;
};

} // namespace Program
