#include "tools/zanthe/FileContents.h"

#include <algorithm>

#include "zanthe/containers/StorageMembers.h"

namespace Program {

namespace {

constexpr const char* ScreenStream = "Screen_Stream.avi";

} // namespace

std::string ContentsOf(const Zanthe::FileClassification& file) {
    const bool isUnknown = file.contents.empty();
    return isUnknown && !Zanthe::ListStorageMembers(file.parsed.container).empty() ? "compound file"
                                                                                   : file.contents;
}

std::string ScreenStreamIn(const std::string& path) {
    const auto members = Zanthe::ListStorageMembers(path);
    const bool isThere = std::any_of(members.begin(), members.end(), [](const auto& member) {
        return member.name == ScreenStream && !member.isStorage;
    });
    return isThere ? path + '!' + ScreenStream : std::string();
}

} // namespace Program
