#include "tools/zanthe/MembersReport.h"

#include <algorithm>
#include <string_view>
#include <vector>

#include "tools/zanthe/CommandError.h"
#include "zanthe/containers/StorageMembers.h"

namespace Program {

namespace {

using Zanthe::StorageMember;

std::vector<StorageMember> SortedMembers(const std::string& path) {
    std::vector<StorageMember> members = Zanthe::ListStorageMembers(path);
    std::sort(members.begin(), members.end(),
              [](const auto& a, const auto& b) { return a.name < b.name; });
    return members;
}

} // namespace

void PrintMembers(const std::string& path, std::ostream& out) {
    constexpr std::string_view name = "  member          ";
    for (const StorageMember& member : SortedMembers(path)) {
        const std::string size =
            member.isStorage ? "a storage" : std::to_string(member.size) + " bytes";
        out << name << OneLine(member.name + " (" + size + ')') << '\n';
    }
}

Json MembersJson(const std::string& path) {
    Json members = Json::array();
    for (const StorageMember& member : SortedMembers(path)) {
        members.push_back(
            {{"name", member.name}, {"storage", member.isStorage}, {"size", member.size}});
    }
    return members;
}

} // namespace Program
