#include "tools/zanthe/PictureFile.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <stdexcept>

#include "tools/zanthe/CommandError.h"

namespace Program {

namespace {

[[noreturn]] void Refuse(const std::string& name) {
    throw CommandError(name, "could not be written whole");
}

} // namespace

void SavePng(const Zanthe::Bitmap& bitmap, const std::string& path, const std::string& name) {
    try {
        bitmap.SavePNG(path);
    } catch (const std::runtime_error&) {
        // Its text names the passing file, which means nothing to whoever asked for another.
        Refuse(name);
    }
}

void RemarkName(const std::string& name) {
    std::string ending = std::filesystem::path(name).extension().string();
    std::transform(ending.begin(), ending.end(), ending.begin(),
                   [](unsigned char each) { return static_cast<char>(std::tolower(each)); });
    if (!ending.empty() && ending != ".png") {
        std::cerr << "zanthe: " << OneLine(name) << ": holds PNG all the same\n";
    }
}

void SaveRaw(const Zanthe::Bitmap& bitmap, const std::string& path, const std::string& name) {
    std::ofstream stream(path, std::ios::binary);
    stream.write(reinterpret_cast<const char*>(bitmap.GetBits()),
                 std::streamsize{bitmap.GetStride()} * bitmap.GetHeight());
    stream.close();
    if (!stream) {
        Refuse(name);
    }
}

} // namespace Program
