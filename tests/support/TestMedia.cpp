#include "tests/support/TestMedia.h"

#include <algorithm>
#include <stdexcept>

std::string MadeMedia(std::string_view name) {
    const auto path = std::filesystem::path(ZANTHE_MADE_MEDIA_FOLDER) / name;
    if (!std::filesystem::exists(path)) {
        throw std::runtime_error("not made: " + path.string() + " (run tests/media/make-media)");
    }
    return path.string();
}

std::vector<std::filesystem::path> RealMedia(std::string_view folder) {
    const auto root =
        std::filesystem::path(ZANTHE_SOURCE_FOLDER) / ".." / "shared" / "media" / folder;
    std::vector<std::filesystem::path> files;
    std::error_code missing;
    for (const auto& entry : std::filesystem::directory_iterator(root, missing)) {
        if (entry.is_regular_file()) {
            files.push_back(entry.path());
        }
    }
    std::sort(files.begin(), files.end());
    return files;
}
