#include "platform/win32/Wait.h"

DWORD WaitForSingleObject(HANDLE handle, DWORD milliseconds) {
    auto* object = win32::ObjectOf<win32::WaitableObject>(handle);
    if (object == nullptr) {
        return WAIT_FAILED;
    }
    return object->Wait(milliseconds) ? WAIT_OBJECT_0 : WAIT_TIMEOUT;
}
