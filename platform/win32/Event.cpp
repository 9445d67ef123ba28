#include "platform/win32/Event.h"

#include <memory>

#include "platform/win32/Signal.h"
#include "platform/win32/Wait.h"

namespace {

class Event final : public win32::WaitableObject {
public:
    Event(bool manualReset, bool set)
        : m_manualReset(manualReset)
        , m_signal(set) {}

    void Set() { m_signal.Set(); }

    void Reset() { m_signal.Reset(); }

    // win32::WaitableObject
    bool Wait(DWORD milliseconds) override { return m_signal.Wait(milliseconds, !m_manualReset); }

private:
    const bool m_manualReset;
    win32::Signal m_signal;
};

} // namespace

HANDLE CreateEventW(SECURITY_ATTRIBUTES*, BOOL manualReset, BOOL initiallySet, LPCWSTR name) {
    if (name != nullptr) {
        return nullptr;
    }
    std::unique_ptr<win32::KernelObject> event =
        std::make_unique<Event>(manualReset != FALSE, initiallySet != FALSE);
    return event.release();
}

BOOL SetEvent(HANDLE event) {
    auto* object = win32::ObjectOf<Event>(event);
    if (object == nullptr) {
        return FALSE;
    }
    object->Set();
    return TRUE;
}

BOOL ResetEvent(HANDLE event) {
    auto* object = win32::ObjectOf<Event>(event);
    if (object == nullptr) {
        return FALSE;
    }
    object->Reset();
    return TRUE;
}
