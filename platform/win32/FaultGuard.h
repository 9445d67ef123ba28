// Faults of the processor in code of other people's, ended like any other failure. Stands for the
// compiler's __try and __except.
//
//     if (!win32::SurvivesFaults([&] { result = AnotherOnesCode(); })) ... // it faulted
#pragma once

#include <memory>
#include <type_traits>

namespace win32 {

// Calls call(argument). True where it came back; false where the processor faulted in it, on this
// thread: memory that is not there or not to be written, an instruction that is none, a division by
// zero. The call has then ended where it was: what it held is not given back, and its destructors
// have not run. What it throws passes through.
//
// The first call takes the process's handlers of SIGSEGV, SIGBUS, SIGFPE and SIGILL, for good. What
// comes on threads that are not in here, or was sent by somebody, goes on to the handlers that were
// there before. A host that sets handlers of its own later has its way, and its faults; so has a
// stack that runs over.
//
// Thread-safety: safe from any thread; calls may stand within each other.
bool CallGuarded(void (*call)(void*), void* argument);

template <typename Call>
bool SurvivesFaults(Call&& call) {
    using Function = std::remove_reference_t<Call>;
    return CallGuarded([](void* function) { (*static_cast<Function*>(function))(); },
                       const_cast<void*>(static_cast<const void*>(std::addressof(call))));
}

// Off: faults end the process, for those who look for them. On at the start.
// Thread-safety: safe from any thread; calls that have begun stay as they are.
void SetFaultGuards(bool on);

} // namespace win32
