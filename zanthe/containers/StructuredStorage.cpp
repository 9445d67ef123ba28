#include "zanthe/containers/StructuredStorage.h"

#include <utility>

#include "platform/com/StorageResult.h"
#include "platform/com/TaskMemory.h"

namespace Sorbutl {

StructuredStorage::~StructuredStorage() {
    Close();
}

bool StructuredStorage::Open(const std::wstring& path) {
    com::ComPtr<IStorage> storage;
    m_result = StgOpenStorageEx(path.c_str(), STGM_TRANSACTED | STGM_NOSNAPSHOT, STGFMT_ANY, 0,
                                nullptr, nullptr, IID_IStorage, storage.PutVoid());
    if (FAILED(m_result)) {
        return false;
    }
    m_path = path;
    m_storages.push_back(std::move(storage));
    return true;
}

bool StructuredStorage::OpenStream(const std::wstring& name, ::IStream** stream) {
    *stream = nullptr;
    m_result = m_storages.empty() ? STG_E_INVALIDFUNCTION
                                  : m_storages.back()->OpenStream(name.c_str(), nullptr,
                                                                  STGM_SHARE_EXCLUSIVE, 0, stream);
    return SUCCEEDED(m_result);
}

bool StructuredStorage::EnumElementNames(std::vector<std::wstring>& names) {
    com::ComPtr<IEnumSTATSTG> elements;
    m_result = m_storages.empty() ? STG_E_INVALIDFUNCTION
                                  : m_storages.back()->EnumElements(0, nullptr, 0, elements.Put());
    if (FAILED(m_result)) {
        return false;
    }
    STATSTG element{};
    while ((m_result = elements->Next(1, &element, nullptr)) == S_OK) {
        const com::TaskText name(element.pwcsName);
        names.emplace_back(name.get());
    }
    return SUCCEEDED(m_result);
}

void StructuredStorage::Close() {
    while (!m_storages.empty()) {
        m_storages.pop_back();
    }
    m_path.clear();
    m_result = S_OK;
}

} // namespace Sorbutl
