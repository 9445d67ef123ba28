// The temporary file that a sound track is copied to.
#pragma once

#include <memory>
#include <string>

namespace win32 {
class HeldFile;
}

namespace Zanthe {

// It is there as long as the object. Its name has a prefix of its own, by which files are found
// that a run left behind that was killed: they go when the next object comes and when it ends.
// Files of other objects stay, in this process and in others.
//
// Thread-safety: safe from any thread.
class RecontainerFile {
public:
    // Makes an empty file in `folder` (UTF-8).
    explicit RecontainerFile(const std::string& folder);
    RecontainerFile(const RecontainerFile&) = delete;
    RecontainerFile& operator=(const RecontainerFile&) = delete;
    ~RecontainerFile();

    // UTF-8; empty where no file could be made.
    const std::string& Path() const { return m_path; }

    // What the name of each begins with.
    static constexpr const char* Prefix = "recontainer31132011991-";

private:
    std::string m_path;
    std::string m_folder;
    std::unique_ptr<win32::HeldFile> m_file;
};

} // namespace Zanthe
