#include "platform/mf/AttributeStore.h"

#include <algorithm>
#include <cstring>

namespace mf {

bool AttributeStore::ByFields::operator()(const GUID& a, const GUID& b) const {
    return std::memcmp(&a, &b, sizeof(GUID)) < 0;
}

HRESULT AttributeStore::Set(REFGUID key, Value value) {
    return com::Wall([&] {
        const std::lock_guard lock(m_mutex);
        auto found = m_values.find(key);
        if (found != m_values.end()) {
            // The old value goes with the argument, behind the lock: ending an object calls out.
            std::swap(found->second, value);
            return S_OK;
        }
        if (m_values.size() >= kMostValues) {
            return E_OUTOFMEMORY;
        }
        m_values.emplace(key, std::move(value));
        return S_OK;
    });
}

HRESULT AttributeStore::SetBlob(REFGUID key, const UINT8* bytes, UINT32 byteCount) {
    if (bytes == nullptr && byteCount > 0) {
        return E_POINTER;
    }
    if (byteCount > kMostBytes) {
        return E_INVALIDARG;
    }
    return com::Wall([&] { return Set(key, Bytes(bytes, bytes + byteCount)); });
}

HRESULT AttributeStore::GetBlobSize(REFGUID key, UINT32* byteCount) const {
    if (byteCount == nullptr) {
        return E_POINTER;
    }
    Bytes bytes;
    const HRESULT result = Get(key, &bytes);
    if (SUCCEEDED(result)) {
        *byteCount = static_cast<UINT32>(bytes.size());
    }
    return result;
}

HRESULT AttributeStore::GetBlob(REFGUID key, UINT8* buffer, UINT32 capacity,
                                UINT32* byteCount) const {
    Bytes bytes;
    const HRESULT result = Get(key, &bytes);
    if (FAILED(result)) {
        return result;
    }
    if (bytes.size() > capacity) {
        return MF_E_BUFFERTOOSMALL;
    }
    if (buffer == nullptr && !bytes.empty()) {
        return E_POINTER;
    }
    std::copy(bytes.begin(), bytes.end(), buffer);
    if (byteCount != nullptr) {
        *byteCount = static_cast<UINT32>(bytes.size());
    }
    return S_OK;
}

HRESULT AttributeStore::GetUnknown(REFGUID key, REFIID iid, void** object) const {
    if (object == nullptr) {
        return E_POINTER;
    }
    com::ComPtr<IUnknown> held;
    const HRESULT result = Get(key, &held);
    if (FAILED(result)) {
        return result;
    }
    *object = nullptr;
    return held ? held->QueryInterface(iid, object) : E_NOINTERFACE;
}

AttributeStore::Values AttributeStore::Copy() const {
    const std::lock_guard lock(m_mutex);
    return m_values;
}

void AttributeStore::Replace(const AttributeStore& other) {
    Values copy = other.Copy();
    const std::lock_guard lock(m_mutex);
    m_values.swap(copy); // what was here goes behind the lock: it was made first
}

namespace {

// Puts one value into somebody's attributes.
struct SetIn {
    IMFAttributes& destination;
    REFGUID key;

    HRESULT operator()(UINT32 value) const { return destination.SetUINT32(key, value); }

    HRESULT operator()(UINT64 value) const { return destination.SetUINT64(key, value); }

    HRESULT operator()(const GUID& value) const { return destination.SetGUID(key, value); }

    HRESULT operator()(const AttributeStore::Bytes& value) const {
        return destination.SetBlob(key, value.data(), static_cast<UINT32>(value.size()));
    }

    HRESULT operator()(const com::ComPtr<IUnknown>& value) const {
        return destination.SetUnknown(key, value.Get());
    }
};

} // namespace

HRESULT AttributeStore::CopyTo(IMFAttributes& destination) const {
    com::ComPtr<IStoreOwner> owner;
    return com::Wall([&] {
        if (SUCCEEDED(destination.QueryInterface(IID_IStoreOwner, owner.PutVoid()))) {
            if (&owner->Store() != this) {
                owner->Store().Replace(*this);
            }
            return S_OK;
        }
        for (const auto& [key, value] : Copy()) {
            if (const HRESULT result = std::visit(SetIn{destination, key}, value); FAILED(result)) {
                return result;
            }
        }
        return S_OK;
    });
}

} // namespace mf
