#include "zanthe/containers/StorageMembers.h"

#include "platform/com/ComPtr.h"
#include "platform/com/TaskMemory.h"
#include "platform/ole/Storage.h"
#include "platform/win32/Text.h"

namespace Zanthe {

std::vector<StorageMember> ListStorageMembers(const std::string& path) {
    std::vector<StorageMember> members;
    com::ComPtr<IStorage> storage;
    com::ComPtr<IEnumSTATSTG> elements;
    if (FAILED(StgOpenStorage(win32::Utf8ToWide(path).c_str(), nullptr, STGM_SHARE_DENY_WRITE,
                              nullptr, 0, storage.Put())) ||
        FAILED(storage->EnumElements(0, nullptr, 0, elements.Put()))) {
        return members;
    }
    STATSTG element{};
    while (elements->Next(1, &element, nullptr) == S_OK) {
        const com::TaskText name(element.pwcsName);
        members.push_back({win32::WideToUtf8(name.get()), element.type == STGTY_STORAGE,
                           element.cbSize.QuadPart});
    }
    return members;
}

} // namespace Zanthe
