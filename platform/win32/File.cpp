#include "platform/win32/File.h"

#include <cerrno>
#include <memory>
#include <optional>
#include <string>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/win32/Path.h"
#include "platform/win32/Text.h"

static_assert(sizeof(off_t) == 8, "files beyond 2 GiB are everyday");

namespace {

// The position is kept here and not by the system, which refuses one that its file system could
// never hold: moving far past the end has to work, and only the read that follows comes back empty.
class FileObject final : public win32::KernelObject {
public:
    explicit FileObject(int descriptor)
        : m_descriptor(descriptor) {}

    ~FileObject() override { close(m_descriptor); }

    bool IsRegularFile() const {
        struct stat status {};

        return fstat(m_descriptor, &status) == 0 && S_ISREG(status.st_mode);
    }

    std::int64_t Position() const { return m_position; }

    bool MoveTo(std::int64_t base, std::int64_t distance) {
        std::int64_t target = 0;
        if (__builtin_add_overflow(base, distance, &target) || target < 0) {
            return false;
        }
        m_position = target;
        return true;
    }

    std::optional<std::int64_t> Size() const {
        struct stat status {};

        if (fstat(m_descriptor, &status) != 0) {
            return std::nullopt;
        }
        return status.st_size;
    }

    // How many bytes came; fewer than asked for only at the end. Nothing when the system fails.
    std::optional<DWORD> Read(char* buffer, DWORD byteCount) {
        DWORD done = 0;
        while (done < byteCount) {
            const ssize_t got =
                pread(m_descriptor, buffer + done, byteCount - done, m_position + done);
            if (got < 0 && errno == EINTR) {
                continue;
            }
            if (got < 0) {
                return std::nullopt;
            }
            if (got == 0) {
                break;
            }
            done += static_cast<DWORD>(got);
        }
        m_position += done;
        return done;
    }

private:
    int m_descriptor;
    std::int64_t m_position = 0;
};

// The place that a move starts from.
std::optional<std::int64_t> BaseOf(const FileObject& file, DWORD method) {
    switch (method) {
    case FILE_BEGIN:
        return 0;
    case FILE_CURRENT:
        return file.Position();
    case FILE_END:
        return file.Size();
    default:
        return std::nullopt;
    }
}

} // namespace

HANDLE CreateFileW(LPCWSTR path, DWORD access, DWORD, LPSECURITY_ATTRIBUTES, DWORD disposition,
                   DWORD, HANDLE) {
    if (path == nullptr || access != GENERIC_READ || disposition != OPEN_EXISTING) {
        return INVALID_HANDLE_VALUE;
    }
    const std::string found = win32::ExistingPath(win32::WideToUtf8(path));
    // Without O_NONBLOCK a pipe that nobody writes to would be waited on here, before it can be
    // told from a file; on a regular file it means nothing.
    const int descriptor = open(found.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK);
    if (descriptor < 0) {
        return INVALID_HANDLE_VALUE;
    }
    auto file = std::make_unique<FileObject>(descriptor);
    return file->IsRegularFile() ? static_cast<win32::KernelObject*>(file.release())
                                 : INVALID_HANDLE_VALUE;
}

BOOL ReadFile(HANDLE file, void* buffer, DWORD byteCount, LPDWORD bytesRead, LPOVERLAPPED) {
    *bytesRead = 0;
    auto* object = win32::ObjectOf<FileObject>(file);
    if (object == nullptr) {
        return FALSE;
    }
    const std::optional<DWORD> got = object->Read(static_cast<char*>(buffer), byteCount);
    *bytesRead = got.value_or(0);
    return got.has_value() ? TRUE : FALSE;
}

BOOL SetFilePointerEx(HANDLE file, LARGE_INTEGER distance, PLARGE_INTEGER newPosition,
                      DWORD method) {
    auto* object = win32::ObjectOf<FileObject>(file);
    if (object == nullptr) {
        return FALSE;
    }
    const std::optional<std::int64_t> base = BaseOf(*object, method);
    if (!base.has_value() || !object->MoveTo(*base, distance.QuadPart)) {
        return FALSE;
    }
    if (newPosition != nullptr) {
        newPosition->QuadPart = object->Position();
    }
    return TRUE;
}
