// What makes a class an object of the platform: a count that ends it, and its interfaces by name.
//
//     class Buffer final : public com::Object<IMFMediaBuffer> {
//         void* Find(REFIID iid) override {
//             return com::Among(iid, IID_IMFMediaBuffer, static_cast<IMFMediaBuffer*>(this));
//         }
//     };
//     return com::Make<Buffer>(buffer, arguments...);
#pragma once

#include <atomic>
#include <exception>
#include <new>
#include <utility>

#include "platform/com/ComPtr.h"
#include "platform/com/Unknown.h"

namespace com {

// `object` where `iid` names its interface or IUnknown, else null. `object` is the interface as it
// stands in the table of `iid`: each interface of a class with several has an address of its own.
inline void* Among(REFIID iid, REFIID own, void* object) {
    return iid == own || iid == IID_IUnknown ? object : nullptr;
}

// `call`, with what it throws turned into a result: nothing is thrown through an interface.
template <typename Call>
HRESULT Wall(const Call& call) noexcept {
    try {
        return call();
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    } catch (...) {
        return E_FAIL;
    }
}

// Starts with one reference, its maker's, and ends itself with the last one.
//
// Thread-safety: the count is safe from any thread.
template <typename First, typename... More>
class Object : public First, public More... {
public:
    Object() = default;
    Object(const Object&) = delete;
    Object& operator=(const Object&) = delete;
    virtual ~Object() = default;

    HRESULT QueryInterface(REFIID iid, void** object) final {
        if (object == nullptr) {
            return E_POINTER;
        }
        *object = Find(iid);
        if (*object == nullptr) {
            return E_NOINTERFACE;
        }
        AddRef();
        return S_OK;
    }

    ULONG AddRef() final { return m_references.fetch_add(1, std::memory_order_relaxed) + 1; }

    ULONG Release() final {
        // Every thread's last use comes before the end.
        const ULONG left = m_references.fetch_sub(1, std::memory_order_acq_rel) - 1;
        if (left == 0) {
            delete this;
        }
        return left;
    }

private:
    // This object as the interface `iid`; null where it has none of that name.
    virtual void* Find(REFIID iid) = 0;

    std::atomic<ULONG> m_references{1};
};

// A new T in *object, as one of its interfaces, with a reference for the caller; null on failure.
template <typename T, typename Interface, typename... Arguments>
HRESULT Make(Interface** object, Arguments&&... arguments) {
    if (object == nullptr) {
        return E_POINTER;
    }
    *object = nullptr;
    return Wall([&] {
        *object = new T(std::forward<Arguments>(arguments)...);
        return S_OK;
    });
}

// The same as an owner; throws what the constructor throws.
template <typename T, typename... Arguments>
ComPtr<T> MakeOwned(Arguments&&... arguments) {
    return ComPtr<T>::Attach(new T(std::forward<Arguments>(arguments)...));
}

} // namespace com
