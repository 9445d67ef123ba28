#include "platform/win32/Handle.h"

#include <memory>

BOOL CloseHandle(HANDLE handle) {
    const std::unique_ptr<win32::KernelObject> object(win32::ObjectOf<win32::KernelObject>(handle));
    return object != nullptr ? TRUE : FALSE;
}
