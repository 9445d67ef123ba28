// Making objects by the name of their class. Stands for combaseapi.h and objbase.h.
//
// The classes are those of this layer and what a host has put there with com::RegisterClass.
#pragma once

#include <functional>

#include "platform/com/Unknown.h"

inline constexpr DWORD CLSCTX_INPROC_SERVER = 1;

inline constexpr DWORD COINIT_MULTITHREADED = 0;
inline constexpr DWORD COINIT_APARTMENTTHREADED = 2;

// *object: a new object of the class, as its interface `iid`, with a reference for the caller; null
// on failure. REGDB_E_CLASSNOTREG where nobody makes the class, CLASS_E_NOAGGREGATION where `outer`
// is not null, else what the class says. `context` plays no part: every object lives in this
// process. It need not be begun with CoInitializeEx.
//
// Thread-safety: safe from any thread.
HRESULT CoCreateInstance(REFCLSID classId, IUnknown* outer, DWORD context, REFIID iid,
                         void** object);

// Begins a thread's use of objects: S_OK the first time, S_FALSE when it had begun, and
// RPC_E_CHANGED_MODE, with nothing begun, where it had begun otherwise. Each that did not fail is
// ended by one CoUninitialize. `reserved` is null. Objects of this layer serve every thread, so the
// mode binds nobody.
HRESULT CoInitializeEx(void* reserved, DWORD mode);
void CoUninitialize();

namespace com {

// Makes an object as `iid`, as CoCreateInstance does.
using ClassFactory = std::function<HRESULT(REFIID iid, void** object)>;

// Has `factory` make the class from now on, in place of whoever made it before, and answers that
// one; an empty factory gives the class back to this layer, or to nobody.
//
// Thread-safety: safe from any thread. A call that is under way keeps the factory it began with.
ClassFactory RegisterClass(REFCLSID classId, ClassFactory factory);

} // namespace com
