// A compound file opened for a look inside.
//
//     Sorbutl::StructuredStorage storage;
//     std::vector<std::wstring> names;
//     if (storage.Open(L"a.orirec") && storage.EnumElementNames(names)) ...
#pragma once

#include <string>
#include <vector>

#include "platform/com/ComPtr.h"
#include "platform/ole/Storage.h"

namespace Sorbutl {

// Thread-safety: none; one thread at a time.
class StructuredStorage {
public:
    StructuredStorage() = default;
    StructuredStorage(const StructuredStorage&) = delete;
    StructuredStorage& operator=(const StructuredStorage&) = delete;
    virtual ~StructuredStorage();

    // Opens the file's root storage; it is the top one then. False where it is no compound file.
    bool Open(const std::wstring& path);

    // *stream: the stream of this name in the top storage, with a reference for the caller; null
    // and false where there is none.
    bool OpenStream(const std::wstring& name, ::IStream** stream);

    // Appends the names of what stands in the top storage. False where that cannot be told.
    bool EnumElementNames(std::vector<std::wstring>& names);

    // Gives everything back, as before the first Open.
    void Close();

    // Of the last operation; S_OK before the first one.
    HRESULT LastResult() const { return m_result; }

private:
    std::wstring m_path;
    std::vector<com::ComPtr<IStorage>> m_storages; // the top one is the last
    HRESULT m_result = S_OK;
};

} // namespace Sorbutl
