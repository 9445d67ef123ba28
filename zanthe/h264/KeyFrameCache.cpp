#include "zanthe/h264/KeyFrameCache.h"

namespace Zanthe {

// Never destroyed: a reader that lives until the process ends may still finish a collection.
KeyFrameCache& KeyFrameCache::OfProcess() {
    static auto& cache = *new KeyFrameCache;
    return cache;
}

std::optional<KeyFrameCacheEntry> KeyFrameCache::FindOrBegin(const std::string& path,
                                                             bool collectable) {
    const std::lock_guard lock(m_mutex);
    if (const auto found = m_entries.find(path); found != m_entries.end()) {
        return found->second;
    }
    if (!collectable) {
        return m_entries[path];
    }
    m_inCollection.insert(path);
    return std::nullopt;
}

void KeyFrameCache::Finish(const std::string& path, const KeyFrameCacheEntry& entry) {
    const std::lock_guard lock(m_mutex);
    m_entries.emplace(path, entry);
    m_inCollection.erase(path);
}

void KeyFrameCache::GiveUp(const std::string& path) {
    const std::lock_guard lock(m_mutex);
    m_inCollection.erase(path);
}

bool KeyFrameCache::IsInCollection(const std::string& path) const {
    const std::lock_guard lock(m_mutex);
    return m_inCollection.count(path) != 0;
}

} // namespace Zanthe
