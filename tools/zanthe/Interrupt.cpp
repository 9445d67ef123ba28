#include "tools/zanthe/Interrupt.h"

#include <atomic>

#include <signal.h>

namespace Program {

namespace {

std::atomic<int> g_caught = 0;
static_assert(std::atomic<int>::is_always_lock_free, "a signal handler may not wait for a lock");

extern "C" void NoteSignal(int signal) {
    g_caught = signal;
}

void Catch(int signal) {
    struct sigaction action {};

    if (sigaction(signal, nullptr, &action) != 0 || action.sa_handler == SIG_IGN) {
        return;
    }
    action = {};
    action.sa_handler = NoteSignal;
    // Reads and writes under way go on: who does them (FFmpeg, the streams) knows nothing of us.
    action.sa_flags = SA_RESTART;
    sigaction(signal, &action, nullptr);
}

void StopCatching(int signal) {
    struct sigaction action {};

    if (sigaction(signal, nullptr, &action) == 0 && action.sa_handler == NoteSignal) {
        action = {};
        action.sa_handler = SIG_DFL;
        sigaction(signal, &action, nullptr);
    }
}

} // namespace

void CatchInterrupts() {
    Catch(SIGINT);
    Catch(SIGTERM);
    Catch(SIGHUP);
    Catch(SIGPIPE);
}

void StopCatchingInterrupts() {
    StopCatching(SIGINT);
    StopCatching(SIGTERM);
    StopCatching(SIGHUP);
    StopCatching(SIGPIPE);
    ThrowIfInterrupted();
}

void ThrowIfInterrupted() {
    if (const int signal = g_caught.exchange(0); signal != 0) {
        throw Interrupted{signal};
    }
}

} // namespace Program
