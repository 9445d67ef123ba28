#include "platform/com/ClassRegistry.h"

#include <algorithm>
#include <mutex>
#include <utility>
#include <vector>

#include "platform/com/BuiltInClasses.h"
#include "platform/com/Object.h"

namespace {

// What hosts have registered. They are few: a list serves.
class HostClasses {
public:
    static HostClasses& Shared() {
        static HostClasses classes;
        return classes;
    }

    com::ClassFactory Find(REFCLSID classId) {
        const std::lock_guard lock(m_mutex);
        const auto found = Position(classId);
        return found == m_classes.end() ? com::ClassFactory() : found->second;
    }

    com::ClassFactory Replace(REFCLSID classId, com::ClassFactory factory) {
        const std::lock_guard lock(m_mutex);
        auto found = Position(classId);
        if (found == m_classes.end()) {
            found = m_classes.insert(found, {classId, nullptr});
        }
        std::swap(found->second, factory);
        if (!found->second) {
            m_classes.erase(found);
        }
        return factory;
    }

private:
    using Class = std::pair<CLSID, com::ClassFactory>;

    std::vector<Class>::iterator Position(REFCLSID classId) {
        return std::find_if(m_classes.begin(), m_classes.end(),
                            [&](const Class& entry) { return entry.first == classId; });
    }

    std::mutex m_mutex;
    std::vector<Class> m_classes; // guarded by m_mutex
};

// What this thread has begun.
struct Apartment {
    ULONG depth = 0;
    DWORD mode = 0;
};

thread_local Apartment apartment;

} // namespace

namespace com {

ClassFactory RegisterClass(REFCLSID classId, ClassFactory factory) {
    return HostClasses::Shared().Replace(classId, std::move(factory));
}

} // namespace com

HRESULT CoCreateInstance(REFCLSID classId, IUnknown* outer, DWORD /*context*/, REFIID iid,
                         void** object) {
    if (object == nullptr) {
        return E_POINTER;
    }
    *object = nullptr;
    if (outer != nullptr) {
        return CLASS_E_NOAGGREGATION;
    }
    return com::Wall([&] {
        const com::ClassFactory factory = HostClasses::Shared().Find(classId);
        return factory ? factory(iid, object) : com::CreateBuiltIn(classId, iid, object);
    });
}

HRESULT CoInitializeEx(void* /*reserved*/, DWORD mode) {
    const DWORD wanted = mode & COINIT_APARTMENTTHREADED;
    if (apartment.depth > 0 && apartment.mode != wanted) {
        return RPC_E_CHANGED_MODE;
    }
    apartment.mode = wanted;
    return apartment.depth++ == 0 ? S_OK : S_FALSE;
}

void CoUninitialize() {
    if (apartment.depth > 0) {
        --apartment.depth;
    }
}
