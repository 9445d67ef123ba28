// Starting a thread. Stands for _beginthreadex of process.h.
//
//     const auto thread = _beginthreadex(nullptr, 0, Work, &task, 0, nullptr);
//     ... WaitForSingleObject(HANDLE, INFINITE) ... CloseHandle(HANDLE)
#pragma once

#include <cstdint>

#include "platform/win32/Handle.h"

// Runs start(argument) on a new thread and answers a handle on it, as a number, the caller's to
// close; closing it leaves the thread running. 0 when no thread can be had, and for what is not
// offered: a stack size, flags. The thread's identifier goes to *identifier where that is not null.
// `security` plays no part.
//
// Whatever `start` throws ends the process.
//
// Thread-safety: safe from any thread.
// NOLINTNEXTLINE(bugprone-reserved-identifier): the SDK's own name
std::uintptr_t _beginthreadex(void* security, unsigned int stackSize,
                              unsigned int (*start)(void*), void* argument, unsigned int flags,
                              unsigned int* identifier);
