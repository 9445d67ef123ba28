#include "platform/ole/CompoundFile.h"

#include <array>
#include <cstdio>
#include <cstring>
#include <mutex>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/com/StorageResult.h"
#include "platform/ole/DirectorySize.h"
#include "platform/win32/Path.h"
#include "platform/win32/Text.h"

namespace ole {

namespace {

// libgsf walks the directory by recursion, one call deeper with each entry where a file has them
// in a row; so many fit on any stack. A recording has a dozen.
constexpr std::uint32_t kMostEntries = 2048;

constexpr std::array<unsigned char, 8> kSignature{0xD0, 0xCF, 0x11, 0xE0, 0xA1, 0xB1, 0x1A, 0xE1};

struct CloseFile {
    void operator()(std::FILE* file) const { static_cast<void>(std::fclose(file)); }
};

using FilePtr = std::unique_ptr<std::FILE, CloseFile>;

// The regular file at `path`; null where there is none. Nobody waits on a pipe.
FilePtr OpenFile(const std::string& path) {
    const int descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK);

    struct stat status {};

    if (descriptor < 0 || fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode)) {
        if (descriptor >= 0) {
            close(descriptor);
        }
        return nullptr;
    }
    return FilePtr(fdopen(descriptor, "rb"));
}

bool BeginsAsCompoundFile(std::FILE* file) {
    std::array<unsigned char, kSignature.size()> bytes{};
    return std::fseek(file, 0, SEEK_SET) == 0 &&
           std::fread(bytes.data(), bytes.size(), 1, file) == 1 && bytes == kSignature;
}

void PassOver(const gchar*, GLogLevelFlags, const gchar*, gpointer) {}

// libgsf registers its classes without a lock, so all that are used here are registered at once.
// What it has to say about damaged files goes nowhere: the results here say it.
void StartLibrary() {
    static std::once_flag once;
    std::call_once(once, [] {
        gsf_init();
        static_cast<void>(gsf_input_stdio_get_type());
        static_cast<void>(gsf_infile_msole_get_type());
        for (const char* domain : {"libgsf", "libgsf:msole"}) {
            g_log_set_handler(domain, G_LOG_LEVEL_MASK, PassOver, nullptr);
        }
    });
}

FilePtr OpenFile(LPCWSTR path) {
    return path == nullptr ? nullptr : OpenFile(win32::ExistingPath(win32::WideToUtf8(path)));
}

} // namespace

HRESULT LooksLikeCompoundFile(LPCWSTR path) {
    const FilePtr file = OpenFile(path);
    if (file == nullptr) {
        return STG_E_FILENOTFOUND;
    }
    return BeginsAsCompoundFile(file.get()) ? S_OK : S_FALSE;
}

// Not gsf_infile_child_by_index, which writes a warning where there is no child to be had, and
// writes it as the host.
InputPtr ChildOf(GsfInfile& infile, int index) {
    GError* failure = nullptr;
    InputPtr child(G_TYPE_INSTANCE_GET_CLASS(&infile, GSF_INFILE_TYPE, GsfInfileClass)
                       ->child_by_index(&infile, index, &failure));
    g_clear_error(&failure);
    return child;
}

HRESULT OpenCompoundFile(LPCWSTR path, InfilePtr& root) {
    FilePtr file = OpenFile(path);
    if (file == nullptr) {
        return STG_E_FILENOTFOUND;
    }
    if (!BeginsAsCompoundFile(file.get())) {
        return STG_E_FILEALREADYEXISTS;
    }
    if (!CountDirectoryEntries(file.get(), kMostEntries).has_value()) {
        return STG_E_INVALIDHEADER;
    }
    StartLibrary();
    std::rewind(file.get()); // the input takes it to be at its start
    // The input owns the file from here on. It wants a name in UTF-8, for its own messages only.
    const InputPtr input(gsf_input_stdio_new_FILE("compound file", file.release(), FALSE));
    root.reset(input == nullptr ? nullptr : gsf_infile_msole_new(input.get(), nullptr));
    return root == nullptr ? STG_E_INVALIDHEADER : S_OK;
}

} // namespace ole
