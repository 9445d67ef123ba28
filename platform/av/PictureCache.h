// Decoded pictures that may be asked for again, of all streams of the process.
//
// One budget in bytes is shared by all; what was used longest ago goes first.
#pragma once

#include <cstddef>
#include <cstdint>
#include <list>
#include <map>
#include <mutex>

#include "platform/av/Picture.h"

namespace av {

// How many bytes of decoded pictures the process keeps; 512 MiB unless set. What is over the new
// budget is given back at once. Pictures that a caller still holds do not count.
// Thread-safety: safe from any thread.
void SetPictureCacheBudget(std::size_t bytes);

// Thread-safety: safe from any thread.
class PictureCache {
public:
    // Names a stream object; never given twice.
    using Owner = std::uint64_t;

    static PictureCache& Shared();
    static Owner NewOwner();

    explicit PictureCache(std::size_t budget)
        : m_budget(budget) {}

    // The owner's picture with Start() <= time < End(), or null. It counts as used.
    PicturePtr Find(Owner owner, std::int64_t time);

    // Keeps the picture unless it alone is over the budget; one that starts at the same time goes.
    void Keep(Owner owner, PicturePtr picture);

    // Lets go of the picture that starts then, if it is kept, or of all that the owner has.
    void Drop(Owner owner, std::int64_t start);
    void Forget(Owner owner);
    void SetBudget(std::size_t bytes);
    std::size_t Budget() const;

private:
    struct Key {
        Owner owner;
        std::int64_t start;

        bool operator<(const Key& other) const {
            return owner != other.owner ? owner < other.owner : start < other.start;
        }
    };

    struct Entry {
        Key key;
        PicturePtr picture;
        std::size_t bytes;
    };

    using Entries = std::list<Entry>; // the one used last in front

    void Erase(Entries::iterator entry);
    void Shrink();

    mutable std::mutex m_mutex; // guards all below
    Entries m_entries;
    std::map<Key, Entries::iterator> m_byStart;
    std::size_t m_bytes = 0;
    std::size_t m_budget;
};

// The memory that the picture's pixels take.
std::size_t SizeInMemory(const Picture& picture);

} // namespace av
