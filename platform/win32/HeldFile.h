// Files that nobody takes away while they are in use, as this system by itself would.
//
//     const auto file = win32::HeldFile::Create(path);
//     ... others write and read `path` ... win32::RemoveUnlessHeld(path) answers false ...
//
// Thread-safety: safe from any thread; one object serves one thread at a time.
#pragma once

#include <memory>
#include <string>

namespace win32 {

// A hold on a file, of this process, that ends with the object or with the process. The file stays.
class HeldFile {
public:
    // Makes an empty file at `path` (UTF-8), readable by its owner alone, and holds it. Null where
    // something is there already, and where it cannot be made.
    static std::unique_ptr<HeldFile> Create(const std::string& path);

    HeldFile(const HeldFile&) = delete;
    HeldFile& operator=(const HeldFile&) = delete;
    ~HeldFile();

private:
    explicit HeldFile(int descriptor)
        : m_descriptor(descriptor) {}

    int m_descriptor;
};

// Removes what is at `path`, an empty folder too; a link goes, and not its target. False where it
// cannot be removed, and where any process holds it.
bool RemoveUnlessHeld(const std::string& path);

} // namespace win32
