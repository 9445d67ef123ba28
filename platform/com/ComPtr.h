// The owner of one reference on an object of the platform.
//
//     com::ComPtr<IMFSample> sample;
//     if (SUCCEEDED(MFCreateSample(sample.Put())))
//         sample->SetSampleTime(0);
#pragma once

#include <utility>

#include "platform/com/Unknown.h"

namespace com {

// Thread-safety: as a raw pointer's; the object's own count is safe from any thread.
template <typename T>
class ComPtr {
public:
    ComPtr() = default;

    // Takes a reference of its own; `object` may be null.
    explicit ComPtr(T* object)
        : m_object(object) {
        if (m_object != nullptr) {
            m_object->AddRef();
        }
    }

    ComPtr(const ComPtr& other)
        : ComPtr(other.m_object) {}

    ComPtr(ComPtr&& other) noexcept
        : m_object(other.Detach()) {}

    // By value: serves copies and moves, and assigning to oneself.
    ComPtr& operator=(ComPtr other) noexcept {
        std::swap(m_object, other.m_object);
        return *this;
    }

    ~ComPtr() { Reset(); }

    // An owner of the reference that the caller has on `object`, which may be null.
    static ComPtr Attach(T* object) {
        ComPtr owner;
        owner.m_object = object;
        return owner;
    }

    // Gives the reference to the caller and keeps none.
    [[nodiscard]] T* Detach() { return std::exchange(m_object, nullptr); }

    void Reset() {
        // Emptied first: what ends here may come back to this very owner.
        if (T* object = Detach(); object != nullptr) {
            object->Release();
        }
    }

    // Where a call is to leave a pointer out; what was owned is given back first.
    [[nodiscard]] T** Put() {
        Reset();
        return &m_object;
    }

    // The same for calls that answer any interface.
    [[nodiscard]] void** PutVoid() { return reinterpret_cast<void**>(Put()); }

    T* Get() const { return m_object; }

    T* operator->() const { return m_object; }

    T& operator*() const { return *m_object; }

    explicit operator bool() const { return m_object != nullptr; }

    // Another reference for a caller, through a pointer out; null where this is empty.
    template <typename Interface>
    void CopyTo(Interface** out) const {
        *out = m_object;
        if (m_object != nullptr) {
            m_object->AddRef();
        }
    }

    // The object's interface `iid`, which is that of `Interface`; empty where it has none.
    template <typename Interface>
    ComPtr<Interface> As(REFIID iid) const {
        ComPtr<Interface> other;
        if (m_object == nullptr || FAILED(m_object->QueryInterface(iid, other.PutVoid()))) {
            return {};
        }
        return other;
    }

    friend bool operator==(const ComPtr& a, const ComPtr& b) { return a.m_object == b.m_object; }

private:
    T* m_object = nullptr;
};

} // namespace com
