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

std::string MissingBackendText(const Zanthe::FileClassification& file,
                               const Zanthe::ClassifiedRoute& route) {
    if (route.isBuilt) {
        return {};
    }
    const std::string contents = ContentsOf(file);
    std::string text = "; by its name the file goes to " + route.backend +
                       ", which this build does not have; its contents are ";
    text += contents.empty() ? "of no known kind" : contents;
    if (!file.imageRoute.empty()) {
        text += ", which zanthe image reads";
    }
    return text;
}

std::string ScreenStreamIn(const std::string& path) {
    const auto members = Zanthe::ListStorageMembers(path);
    const bool isThere = std::any_of(members.begin(), members.end(), [](const auto& member) {
        return member.name == ScreenStream && !member.isStorage;
    });
    return isThere ? path + '!' + ScreenStream : std::string();
}

} // namespace Program
