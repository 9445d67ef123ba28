#include "platform/win32/Thread.h"

#include <atomic>
#include <memory>
#include <mutex>
#include <system_error>
#include <thread>

#include "platform/win32/Signal.h"
#include "platform/win32/Wait.h"

namespace {

using Start = unsigned int (*)(void*);

class Thread final : public win32::WaitableObject {
public:
    Thread(Start start, void* argument)
        : m_ended(std::make_shared<win32::Signal>(false))
        , m_thread([start, argument, ended = m_ended]() noexcept {
            start(argument);
            ended->Set();
        }) {}

    ~Thread() override {
        if (m_thread.joinable()) {
            m_thread.detach();
        }
    }

    // win32::WaitableObject
    bool Wait(DWORD milliseconds) override {
        if (!m_ended->Wait(milliseconds, false)) {
            return false;
        }
        // Its last steps, behind the signal, are over with it.
        const std::lock_guard lock(m_joining);
        if (m_thread.joinable()) {
            m_thread.join();
        }
        return true;
    }

private:
    const std::shared_ptr<win32::Signal> m_ended; // the thread's too, which may outlive the handle
    std::mutex m_joining;
    std::thread m_thread; // guarded by m_joining
};

unsigned int NextIdentifier() {
    static std::atomic<unsigned int> last{0};
    return ++last;
}

} // namespace

std::uintptr_t _beginthreadex(void*, unsigned int stackSize, Start start, void* argument,
                              unsigned int flags, unsigned int* identifier) {
    if (start == nullptr || stackSize != 0 || flags != 0) {
        return 0;
    }
    try {
        std::unique_ptr<win32::KernelObject> thread = std::make_unique<Thread>(start, argument);
        if (identifier != nullptr) {
            *identifier = NextIdentifier();
        }
        return reinterpret_cast<std::uintptr_t>(thread.release());
    } catch (const std::system_error&) {
        return 0;
    }
}
