// A file that appears whole or not at all.
//
//     win32::ReplacingFile file(path);
//     if (file.Stream() == nullptr) ...
//     std::fwrite(..., file.Stream());
//     if (!file.Commit()) ...
#pragma once

#include <cstdio>
#include <memory>
#include <string>

namespace win32 {

// Writes go to a file of a passing name in the folder of `path`; Commit gives it the name `path`,
// over what was there. Without Commit the passing file goes with the object, and what was at `path`
// is as it was. A link at `path` stays, and its target is replaced; the permissions of a replaced
// file are kept. A device or a pipe at `path` is written to directly, as nothing can replace it.
//
// Thread-safety: none; one object serves one thread at a time.
class ReplacingFile {
public:
    // `path` is UTF-8.
    explicit ReplacingFile(const std::string& path);
    ReplacingFile(const ReplacingFile&) = delete;
    ReplacingFile& operator=(const ReplacingFile&) = delete;
    ~ReplacingFile();

    // Where to write, this object's; null when the file cannot be written: no such folder, a folder
    // at `path`, no permission for the file or for its folder. Null after Commit, too.
    std::FILE* Stream() const { return m_stream.get(); }

    // Ends the writing. False when any of it failed, in which case `path` is as it was.
    bool Commit();

private:
    void OpenBeside(const std::string& target);

    struct CloseFile {
        void operator()(std::FILE* stream) const { static_cast<void>(std::fclose(stream)); }
    };

    std::string m_target;      // the file that is replaced, behind any links
    std::string m_passingName; // empty when there is no file of that name
    std::unique_ptr<std::FILE, CloseFile> m_stream;
};

} // namespace win32
