// What stands at the root of a compound file, a legacy recording above all.
//
//     for (const Zanthe::StorageMember& member : Zanthe::ListStorageMembers("a.orirec")) ...
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "zanthe/core/Export.h"

namespace Zanthe {

struct StorageMember {
    std::string name;       // UTF-8
    bool isStorage = false; // it holds members of its own
    std::uint64_t size = 0; // of a stream, in bytes

    friend bool operator==(const StorageMember&, const StorageMember&) = default;
};

// The members of the compound file at `path` (UTF-8), in no promised order; none where it is no
// compound file.
//
// Thread-safety: safe from any thread.
ZANTHE_API std::vector<StorageMember> ListStorageMembers(const std::string& path);

} // namespace Zanthe
