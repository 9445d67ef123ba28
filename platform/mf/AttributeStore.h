// What attributes are kept in, and the interface on it for every class that has some.
#pragma once

#include <cstdint>
#include <map>
#include <mutex>
#include <utility>
#include <variant>
#include <vector>

#include "platform/com/Object.h"
#include "platform/mf/Attributes.h"
#include "platform/mf/Errors.h"

namespace mf {

// Thread-safety: safe from any thread.
class AttributeStore {
public:
    using Bytes = std::vector<std::uint8_t>;
    using Value = std::variant<UINT32, UINT64, GUID, Bytes, com::ComPtr<IUnknown>>;

    // A copy of the value, which has to be of the type T.
    template <typename T>
    HRESULT Get(REFGUID key, T* value) const {
        if (value == nullptr) {
            return E_POINTER;
        }
        return com::Wall([&] {
            const std::lock_guard lock(m_mutex);
            const auto found = m_values.find(key);
            if (found == m_values.end()) {
                return MF_E_ATTRIBUTENOTFOUND;
            }
            const T* held = std::get_if<T>(&found->second);
            if (held == nullptr) {
                return MF_E_INVALIDTYPE;
            }
            *value = *held;
            return S_OK;
        });
    }

    // E_OUTOFMEMORY beyond kMostValues, far more than anybody sets.
    HRESULT Set(REFGUID key, Value value);

    HRESULT SetBlob(REFGUID key, const UINT8* bytes, UINT32 byteCount);
    HRESULT GetBlobSize(REFGUID key, UINT32* byteCount) const;
    HRESULT GetBlob(REFGUID key, UINT8* buffer, UINT32 capacity, UINT32* byteCount) const;
    HRESULT GetUnknown(REFGUID key, REFIID iid, void** object) const;

    // A store of this layer is replaced; what another maker's has beside these values stays.
    HRESULT CopyTo(IMFAttributes& destination) const;

    // Takes the place of everything here.
    void Replace(const AttributeStore& other);

    static constexpr std::size_t kMostValues = 1024;
    static constexpr UINT32 kMostBytes = 16U << 20;

private:
    struct ByFields {
        bool operator()(const GUID& a, const GUID& b) const;
    };

    using Values = std::map<GUID, Value, ByFields>;

    Values Copy() const;

    mutable std::mutex m_mutex;
    Values m_values; // guarded by m_mutex
};

// An object that has attributes. It tells its store to others of this layer by an interface of its
// own, so that one can be copied whole.
struct IStoreOwner : IUnknown {
    virtual AttributeStore& Store() = 0;

protected:
    ~IStoreOwner() = default;
};

inline constexpr IID IID_IStoreOwner = {
    0x8C0D65B7, 0x92FA, 0x4E31, {0xA7, 0x1C, 0x55, 0xE8, 0x3B, 0x0F, 0xC2, 0x94}};

// Interface: IMFAttributes or one derived from it, with the name `iid` of its own.
template <typename Interface>
class WithAttributes : public com::Object<Interface, IStoreOwner> {
public:
    HRESULT GetUINT32(REFGUID key, UINT32* value) final { return m_store.Get(key, value); }

    HRESULT GetUINT64(REFGUID key, UINT64* value) final { return m_store.Get(key, value); }

    HRESULT GetGUID(REFGUID key, GUID* value) final { return m_store.Get(key, value); }

    HRESULT GetBlobSize(REFGUID key, UINT32* byteCount) final {
        return m_store.GetBlobSize(key, byteCount);
    }

    HRESULT GetBlob(REFGUID key, UINT8* buffer, UINT32 capacity, UINT32* byteCount) final {
        return m_store.GetBlob(key, buffer, capacity, byteCount);
    }

    HRESULT GetUnknown(REFGUID key, REFIID iid, void** object) final {
        return m_store.GetUnknown(key, iid, object);
    }

    HRESULT SetUINT32(REFGUID key, UINT32 value) final { return m_store.Set(key, value); }

    HRESULT SetUINT64(REFGUID key, UINT64 value) final { return m_store.Set(key, value); }

    HRESULT SetGUID(REFGUID key, REFGUID value) final { return m_store.Set(key, value); }

    HRESULT SetBlob(REFGUID key, const UINT8* bytes, UINT32 byteCount) final {
        return m_store.SetBlob(key, bytes, byteCount);
    }

    HRESULT SetUnknown(REFGUID key, IUnknown* object) final {
        return m_store.Set(key, com::ComPtr<IUnknown>(object));
    }

    HRESULT CopyAllItems(IMFAttributes* destination) final {
        return destination == nullptr ? E_POINTER : m_store.CopyTo(*destination);
    }

    AttributeStore& Store() final { return m_store; }

protected:
    explicit WithAttributes(REFIID own)
        : m_own(own) {}

private:
    void* Find(REFIID iid) override {
        if (iid == IID_IStoreOwner) {
            return static_cast<IStoreOwner*>(this);
        }
        const bool known = iid == m_own || iid == IID_IMFAttributes || iid == IID_IUnknown;
        return known ? static_cast<Interface*>(this) : nullptr;
    }

    const IID m_own;
    AttributeStore m_store;
};

} // namespace mf
