#pragma once

#include <string>
#include <utility>
#include <vector>

// Writes a compound file of these members (name and bytes) at its root, as libgsf writes them; a
// name "folder/name" stands in a storage of its own.
void WriteCompoundFile(const std::string& path,
                       const std::vector<std::pair<std::string, std::string>>& members);
