// Ctrl-C and its like, turned into an exception at a place of our choosing, so that half-written
// files go the way of every other error.
//
//     CatchInterrupts();
//     while (more) { ThrowIfInterrupted(); work(); }
#pragma once

namespace Program {

// Thrown by ThrowIfInterrupted. No std::exception on purpose: a handler that turns the library's
// errors into text must not take it for one.
struct Interrupted {
    int signal; // the program's exit status is 128 + signal
};

// From now on SIGINT, SIGTERM, SIGHUP and SIGPIPE only leave a note. A signal that whoever started
// the program wants ignored (nohup) stays ignored.
void CatchInterrupts();

// Throws Interrupted if a signal came since CatchInterrupts or the last throw.
void ThrowIfInterrupted();

} // namespace Program
