#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

// The path of a file that tests/media/make-media made. Throws when it is missing.
std::string MadeMedia(std::string_view name);

// The files of one folder of the real media beside the checkout ("mp3", "mp4", ...), sorted; empty
// when the collection is not there, in which case the caller says so and passes.
std::vector<std::filesystem::path> RealMedia(std::string_view folder);
