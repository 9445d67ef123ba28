#pragma once

#include <algorithm>
#include <cstring>
#include <map>
#include <utility>
#include <variant>
#include <vector>

#include "platform/com/Object.h"
#include "platform/mf/Attributes.h"
#include "platform/mf/Errors.h"

// Attributes of the test's own making, for any interface that begins with them.
template <typename Interface>
class ScriptedAttributes : public com::Object<Interface> {
public:
    int setsToFail = 0;
    std::vector<GUID> keysSet; // in order, those that failed included

    HRESULT GetUINT32(REFGUID key, UINT32* value) override { return Get(key, value); }

    HRESULT GetUINT64(REFGUID key, UINT64* value) override { return Get(key, value); }

    HRESULT GetGUID(REFGUID key, GUID* value) override { return Get(key, value); }

    HRESULT GetBlobSize(REFGUID key, UINT32* byteCount) override {
        Blob blob;
        const HRESULT result = Get(key, &blob);
        if (SUCCEEDED(result)) {
            *byteCount = static_cast<UINT32>(blob.size());
        }
        return result;
    }

    HRESULT GetBlob(REFGUID key, UINT8* buffer, UINT32 capacity, UINT32*) override {
        Blob blob;
        const HRESULT result = Get(key, &blob);
        if (SUCCEEDED(result) && blob.size() > capacity) {
            return MF_E_BUFFERTOOSMALL;
        }
        std::copy(blob.begin(), blob.end(), buffer);
        return result;
    }

    HRESULT GetUnknown(REFGUID key, REFIID iid, void** object) override {
        com::ComPtr<IUnknown> value;
        const HRESULT result = Get(key, &value);
        return FAILED(result) || !value ? MF_E_ATTRIBUTENOTFOUND
                                        : value->QueryInterface(iid, object);
    }

    HRESULT SetUINT32(REFGUID key, UINT32 value) override { return Set(key, value); }

    HRESULT SetUINT64(REFGUID key, UINT64 value) override { return Set(key, value); }

    HRESULT SetGUID(REFGUID key, REFGUID value) override { return Set(key, value); }

    HRESULT SetBlob(REFGUID key, const UINT8* bytes, UINT32 byteCount) override {
        return Set(key, Blob(bytes, bytes + byteCount));
    }

    HRESULT SetUnknown(REFGUID key, IUnknown* object) override {
        return Set(key, com::ComPtr<IUnknown>(object));
    }

    // What `destination` has beside is left there.
    HRESULT CopyAllItems(IMFAttributes* destination) override {
        for (const auto& [key, value] : m_values) {
            std::visit([&, at = key](const auto& held) { Copy(destination, at, held); }, value);
        }
        return S_OK;
    }

    bool Has(REFGUID key) const { return m_values.count(key) != 0; }

private:
    using Blob = std::vector<UINT8>;
    using Value = std::variant<UINT32, UINT64, GUID, Blob, com::ComPtr<IUnknown>>;

    struct Less {
        bool operator()(const GUID& a, const GUID& b) const {
            return std::memcmp(&a, &b, sizeof(GUID)) < 0;
        }
    };

    static void Copy(IMFAttributes* to, REFGUID key, UINT32 value) { to->SetUINT32(key, value); }

    static void Copy(IMFAttributes* to, REFGUID key, UINT64 value) { to->SetUINT64(key, value); }

    static void Copy(IMFAttributes* to, REFGUID key, const GUID& value) { to->SetGUID(key, value); }

    static void Copy(IMFAttributes* to, REFGUID key, const Blob& value) {
        to->SetBlob(key, value.data(), static_cast<UINT32>(value.size()));
    }

    static void Copy(IMFAttributes* to, REFGUID key, const com::ComPtr<IUnknown>& value) {
        to->SetUnknown(key, value.Get());
    }

    template <typename T>
    HRESULT Get(REFGUID key, T* value) const {
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
    }

    template <typename T>
    HRESULT Set(REFGUID key, T value) {
        keysSet.push_back(key);
        if (setsToFail > 0) {
            --setsToFail;
            return E_OUTOFMEMORY;
        }
        m_values.insert_or_assign(key, std::move(value));
        return S_OK;
    }

    std::map<GUID, Value, Less> m_values;
};
