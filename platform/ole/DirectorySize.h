// How much directory a compound file has, found before anything walks it.
#pragma once

#include <cstdint>
#include <cstdio>
#include <optional>

namespace ole {

// The number of entries in the directory of the compound file, used or not. Nothing where the
// file's header or its allocation table cannot be right, or where there are more than `most`.
std::optional<std::uint32_t> CountDirectoryEntries(std::FILE* file, std::uint32_t most);

} // namespace ole
