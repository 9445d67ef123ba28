#pragma once

#include <filesystem>
#include <string>
#include <string_view>

// A fresh folder that goes with its object, and all that is in it.
class TemporaryFolder {
public:
    TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder();

    const std::filesystem::path& Path() const { return m_path; }

    // The path of `name` in this folder, as the library takes it.
    std::string operator/(std::string_view name) const { return (m_path / name).string(); }

    // Writes a file of these bytes and answers its path.
    std::string Write(std::string_view name, std::string_view bytes) const;

private:
    std::filesystem::path m_path;
};

// All bytes of a file; empty when there is none.
std::string ReadWholeFile(const std::filesystem::path& path);
