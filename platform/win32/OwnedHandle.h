// A HANDLE that is closed when its owner goes.
//
//     const win32::OwnedHandle file = win32::OpenToRead(path.c_str());
//     if (file != nullptr) ... ReadFile(file.get(), ...) ...
#pragma once

#include <memory>

#include "platform/win32/File.h"
#include "platform/win32/Handle.h"

namespace win32 {

struct HandleCloser {
    void operator()(HANDLE handle) const { CloseHandle(handle); }
};

// Never INVALID_HANDLE_VALUE: where there is no object it is null.
using OwnedHandle = std::unique_ptr<void, HandleCloser>;

// The regular file at `path`, as CreateFileW opens it, positioned at its start. Null when there is
// none or it cannot be read. `flags` are CreateFileW's.
//
// Thread-safety: safe from any thread.
inline OwnedHandle OpenToRead(LPCWSTR path, DWORD flags = FILE_ATTRIBUTE_NORMAL) {
    const HANDLE file =
        CreateFileW(path, GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, flags, nullptr);
    return OwnedHandle(file != INVALID_HANDLE_VALUE ? file : nullptr);
}

} // namespace win32
