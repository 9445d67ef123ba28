// Events: flags that one thread sets and others wait for. Stands for synchapi.h.
//
//     HANDLE ready = CreateEventW(nullptr, TRUE, FALSE, nullptr);
//     ... SetEvent(ready) ... WaitForSingleObject(ready, INFINITE) ... CloseHandle(ready)
#pragma once

#include "platform/win32/Handle.h"

struct SECURITY_ATTRIBUTES;

// An event of this process, the caller's to close. `manualReset`: it stays set until ResetEvent;
// otherwise the wait that it ends resets it. Null for an event with a name, which other processes
// could open and of which there are none here. `security` plays no part.
//
// Thread-safety: safe from any thread, as are the two below.
HANDLE CreateEventW(SECURITY_ATTRIBUTES* security, BOOL manualReset, BOOL initiallySet,
                    LPCWSTR name);

// FALSE for a handle that is no event.
BOOL SetEvent(HANDLE event);
BOOL ResetEvent(HANDLE event);
