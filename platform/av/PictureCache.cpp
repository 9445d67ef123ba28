#include "platform/av/PictureCache.h"

#include <atomic>
#include <utility>

namespace av {

namespace {

constexpr std::size_t kDefaultBudget = std::size_t{512} << 20;

} // namespace

void SetPictureCacheBudget(std::size_t bytes) {
    PictureCache::Shared().SetBudget(bytes);
}

PictureCache& PictureCache::Shared() {
    // Never destroyed: a host's streams may outlive the library's statics.
    static auto& shared = *new PictureCache(kDefaultBudget);
    return shared;
}

PictureCache::Owner PictureCache::NewOwner() {
    static std::atomic<Owner> last{0};
    return ++last;
}

PicturePtr PictureCache::Find(Owner owner, std::int64_t time) {
    const std::scoped_lock lock(m_mutex);
    auto after = m_byStart.upper_bound({owner, time});
    if (after == m_byStart.begin()) {
        return nullptr;
    }
    const auto entry = std::prev(after)->second;
    if (entry->key.owner != owner || entry->picture->End() <= time) {
        return nullptr;
    }
    m_entries.splice(m_entries.begin(), m_entries, entry);
    return entry->picture;
}

void PictureCache::Keep(Owner owner, PicturePtr picture) {
    const Key key{owner, picture->Start()};
    const std::size_t bytes = SizeInMemory(*picture);
    const std::scoped_lock lock(m_mutex);
    if (const auto old = m_byStart.find(key); old != m_byStart.end()) {
        Erase(old->second);
    }
    m_entries.push_front({key, std::move(picture), bytes});
    m_byStart.emplace(key, m_entries.begin());
    m_bytes += bytes;
    Shrink();
}

void PictureCache::Drop(Owner owner, std::int64_t start) {
    const std::scoped_lock lock(m_mutex);
    if (const auto found = m_byStart.find({owner, start}); found != m_byStart.end()) {
        Erase(found->second);
    }
}

void PictureCache::Forget(Owner owner) {
    const std::scoped_lock lock(m_mutex);
    auto entry = m_byStart.lower_bound({owner, INT64_MIN});
    while (entry != m_byStart.end() && entry->first.owner == owner) {
        Erase((entry++)->second);
    }
}

void PictureCache::SetBudget(std::size_t bytes) {
    const std::scoped_lock lock(m_mutex);
    m_budget = bytes;
    Shrink();
}

std::size_t PictureCache::Budget() const {
    const std::scoped_lock lock(m_mutex);
    return m_budget;
}

void PictureCache::Erase(Entries::iterator entry) {
    m_bytes -= entry->bytes;
    m_byStart.erase(entry->key);
    m_entries.erase(entry);
}

void PictureCache::Shrink() {
    while (m_bytes > m_budget && !m_entries.empty()) {
        Erase(std::prev(m_entries.end()));
    }
}

std::size_t SizeInMemory(const Picture& picture) {
    std::size_t bytes = 0;
    for (const AVBufferRef* buffer : picture.Frame().buf) {
        bytes += buffer == nullptr ? 0 : buffer->size;
    }
    return bytes;
}

} // namespace av
