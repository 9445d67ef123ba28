#include "zanthe/audio/mf/RecontainerFile.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <list>
#include <mutex>
#include <random>
#include <system_error>

#include "platform/win32/HeldFile.h"

namespace Zanthe {

namespace {

namespace fs = std::filesystem;

constexpr int MostNames = 100; // that are tried

// "recontainer31132011991-" and eight digits of chance.
std::string RandomName() {
    constexpr std::array digits = {'0', '1', '2', '3', '4', '5', '6', '7',
                                   '8', '9', 'a', 'b', 'c', 'd', 'e', 'f'};
    constexpr int digitCount = 8;
    std::random_device random;
    std::string name = RecontainerFile::Prefix;
    for (int i = 0; i < digitCount; ++i) {
        name.push_back(digits.at(random() % digits.size()));
    }
    return name + ".m4a";
}

// The files of all objects of this process. The lock is held over a whole sweep, so that no file is
// made behind its back.
class FilesInUse {
public:
    static FilesInUse& Shared() {
        static FilesInUse files;
        return files;
    }

    // Empty where `folder` takes no file.
    std::unique_ptr<win32::HeldFile> Make(const std::string& folder, std::string& path) {
        const std::lock_guard lock(m_mutex);
        Sweep(folder);
        for (int i = 0; i < MostNames && !folder.empty(); ++i) {
            const std::string candidate = (fs::path(folder) / RandomName()).string();
            if (auto file = win32::HeldFile::Create(candidate)) {
                m_paths.push_back(candidate);
                path = candidate;
                return file;
            }
        }
        return nullptr;
    }

    // The file at `path` goes, and what runs before this one have left.
    void End(const std::string& folder, const std::string& path) {
        const std::lock_guard lock(m_mutex);
        m_paths.remove(path);
        static_cast<void>(win32::RemoveUnlessHeld(path)); // also where the folder cannot be listed
        Sweep(folder);
    }

private:
    // What cannot be removed is another process's, or another user's, and stays.
    void Sweep(const std::string& folder) const {
        std::error_code failure;
        fs::directory_iterator entry(folder, failure);
        for (; !failure && entry != fs::directory_iterator(); entry.increment(failure)) {
            const std::string path = entry->path().string();
            const std::string name = entry->path().filename().string();
            const bool isOurs = name.find(RecontainerFile::Prefix) != std::string::npos;
            if (isOurs && std::find(m_paths.begin(), m_paths.end(), path) == m_paths.end()) {
                static_cast<void>(win32::RemoveUnlessHeld(path));
            }
        }
    }

    std::mutex m_mutex;
    std::list<std::string> m_paths; // guarded by m_mutex
};

} // namespace

RecontainerFile::RecontainerFile(const std::string& folder)
    : m_folder(folder)
    , m_file(FilesInUse::Shared().Make(folder, m_path)) {}

RecontainerFile::~RecontainerFile() {
    m_file.reset(); // or the sweep would leave it alone
    if (!m_path.empty()) {
        FilesInUse::Shared().End(m_folder, m_path);
    }
}

} // namespace Zanthe
