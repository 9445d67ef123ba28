#include "tools/zanthe/Interrupt.h"

#include <atomic>

#include <signal.h>
#include <unistd.h>

namespace Program {

namespace {

std::atomic<int> g_caught = 0; // what nobody has asked for yet
std::atomic<int> g_first = 0;  // the signal that asked us to end
std::atomic<RemovedWhenEnded::Entry*> g_files = nullptr;
static_assert(std::atomic<int>::is_always_lock_free &&
                  std::atomic<RemovedWhenEnded::Entry*>::is_always_lock_free,
              "a signal handler may not wait for a lock");

} // namespace

// Entries are put in front of each other and stay: a handler may be walking over them, and there
// are no more of them than files that were written.
struct RemovedWhenEnded::Entry {
    std::string path;
    std::atomic<bool> isThere = true;
    Entry* next = nullptr;
};

namespace {

// Calls nothing but what a signal handler may call.
[[noreturn]] void EndNow(int signal) {
    for (const auto* entry = g_files.load(); entry != nullptr; entry = entry->next) {
        if (entry->isThere) {
            unlink(entry->path.c_str());
        }
    }
    _exit(128 + signal);
}

extern "C" void NoteSignal(int signal) {
    int none = 0;
    if (!g_first.compare_exchange_strong(none, signal)) {
        EndNow(signal);
    }
    g_caught = signal;
    alarm(InterruptGrace);
}

extern "C" void EndOfGrace(int) {
    EndNow(g_first);
}

void CatchAlarm() {
    struct sigaction action {};

    action.sa_handler = EndOfGrace;
    action.sa_flags = SA_RESTART;
    sigaction(SIGALRM, &action, nullptr);
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
    g_first = 0;
    CatchAlarm();
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
        alarm(0);
        throw Interrupted{signal};
    }
}

RemovedWhenEnded::RemovedWhenEnded(const std::string& path)
    : m_entry(new Entry{.path = path}) {
    m_entry->next = g_files;
    while (!g_files.compare_exchange_weak(m_entry->next, m_entry)) {
    }
}

RemovedWhenEnded::~RemovedWhenEnded() {
    m_entry->isThere = false;
}

} // namespace Program
