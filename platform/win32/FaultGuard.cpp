#include "platform/win32/FaultGuard.h"

#include <array>
#include <atomic>
#include <mutex>
#include <utility>

#include <setjmp.h>
#include <signal.h>

namespace win32 {

namespace {

struct Handled {
    int signal;
    struct sigaction before;
};

std::array<Handled, 4> g_handled{{{SIGSEGV, {}}, {SIGBUS, {}}, {SIGFPE, {}}, {SIGILL, {}}}};
std::atomic<bool> g_on = true;

// Where this thread's innermost guarded call goes on after a fault; null outside of any. Placed so
// that a handler finds it without an allocation.
[[gnu::tls_model("initial-exec")]] thread_local sigjmp_buf* t_place = nullptr;

class Armed {
public:
    explicit Armed(sigjmp_buf& place)
        : m_outer(std::exchange(t_place, &place)) {}

    Armed(const Armed&) = delete;
    Armed& operator=(const Armed&) = delete;

    ~Armed() { t_place = m_outer; }

private:
    sigjmp_buf* m_outer;
};

// As the system does it without a handler. A fault happens again when this returns; what was sent
// has to be sent again.
void TakeDefault(const Handled& handled, bool sent) {
    sigaction(handled.signal, &handled.before, nullptr);
    if (sent) {
        raise(handled.signal);
    }
}

void PassOn(const Handled& handled, siginfo_t* facts, void* context) {
    const bool sent = facts->si_code <= 0;
    const struct sigaction& before = handled.before;
    if ((before.sa_flags & SA_SIGINFO) != 0) {
        before.sa_sigaction(handled.signal, facts, context);
    } else if (before.sa_handler == SIG_DFL || (before.sa_handler == SIG_IGN && !sent)) {
        TakeDefault(handled, sent); // a fault cannot be ignored
    } else if (before.sa_handler != SIG_IGN) {
        before.sa_handler(handled.signal);
    }
}

extern "C" void OnFault(int signal, siginfo_t* facts, void* context) {
    if (t_place != nullptr && facts->si_code > 0) { // from the processor, not from a process
        siglongjmp(*t_place, 1);
    }
    for (const Handled& handled : g_handled) {
        if (handled.signal == signal) {
            PassOn(handled, facts, context);
        }
    }
}

void TakeHandlers() {
    static std::once_flag once;
    std::call_once(once, [] {
        for (Handled& handled : g_handled) {
            // Asked first: from the next call on a fault may ask for it.
            sigaction(handled.signal, nullptr, &handled.before);

            struct sigaction action {};

            action.sa_sigaction = OnFault;
            action.sa_flags = SA_SIGINFO | SA_ONSTACK;
            sigaction(handled.signal, &action, nullptr);
        }
    });
}

} // namespace

bool CallGuarded(void (*call)(void*), void* argument) {
    if (!g_on) {
        call(argument);
        return true;
    }
    TakeHandlers();
    sigjmp_buf place;
    const Armed armed(place);
    // NOLINTNEXTLINE(cert-err52-cpp): there is no other way out of a handler of faults
    if (sigsetjmp(place, 1) != 0) {
        return false;
    }
    call(argument);
    return true;
}

void SetFaultGuards(bool on) {
    g_on = on;
}

} // namespace win32
