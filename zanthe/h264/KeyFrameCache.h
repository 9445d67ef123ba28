// The key frames of all files that were looked at in this process.
#pragma once

#include <cstdint>
#include <map>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace Zanthe {

// Times in units of 100 ns.
struct KeyFrameCacheEntry {
    std::vector<std::int64_t> keyFrameTimes; // ascending
    std::int64_t duration = 0;
    std::int64_t averageInterval = 0; // from one key frame to the next; 0: there are not two
};

// It never shrinks, and an entry never changes: a file is looked at once a process at most, but
// where several begin at the same time, or an entry finds no memory.
//
// Thread-safety: safe from any thread. The lock is held for look-ups alone, never for a collection.
class KeyFrameCache {
public:
    // The one of this process.
    static KeyFrameCache& OfProcess();

    // The entry of `path`. Without one, and with `collectable`, nothing: the caller then collects,
    // and ends that with Finish or GiveUp. Without one, and not collectable, an empty entry, which
    // is kept.
    std::optional<KeyFrameCacheEntry> FindOrBegin(const std::string& path, bool collectable);

    // Keeps what was collected, unless somebody else was there first.
    // Throws std::bad_alloc, and the collection is then still to be ended.
    void Finish(const std::string& path, const KeyFrameCacheEntry& entry);

    // Keeps nothing: the next one who asks collects.
    void GiveUp(const std::string& path);

    // Whether somebody collects for `path`. For diagnosis: nothing is decided by it.
    bool IsInCollection(const std::string& path) const;

private:
    mutable std::mutex m_mutex;
    std::map<std::string, KeyFrameCacheEntry> m_entries; // guarded by m_mutex
    std::set<std::string> m_inCollection;                // guarded by m_mutex
};

} // namespace Zanthe
