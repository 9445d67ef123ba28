// Stands in for libFuzzer's main: runs a fuzz target once over each file of the folders named, and
// over no bytes at all, with which libFuzzer begins too. Fails when a folder holds no file: a test
// that tried nothing must not pass.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

std::vector<std::uint8_t> Bytes(const std::filesystem::path& path) {
    std::ifstream stream(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

std::vector<std::filesystem::path> Files(const std::filesystem::path& folder) {
    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
        if (entry.is_regular_file()) {
            files.push_back(entry.path());
        }
    }
    std::sort(files.begin(), files.end());
    return files;
}

// Answers whether there was anything to replay.
bool Replay(const std::filesystem::path& folder) {
    const auto files = Files(folder);
    for (const auto& file : files) {
        // Before the run, so that a crash is the last file named.
        std::cout << file.filename().string() << std::endl;
        const auto bytes = Bytes(file);
        LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
    }
    std::cout << files.size() << " inputs from " << folder.string() << '\n';
    return !files.empty();
}

} // namespace

int main(int argc, char** argv) try {
    bool anyMissing = argc < 2;
    LLVMFuzzerTestOneInput(nullptr, 0);
    for (int i = 1; i < argc; ++i) {
        anyMissing |= !Replay(argv[i]);
    }
    return anyMissing ? 1 : 0;

} catch (const std::exception& error) {

    std::cerr << "escaped: " << error.what() << '\n';
    return 1;
}
