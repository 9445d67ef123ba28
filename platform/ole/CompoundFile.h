// Opens compound files with libgsf.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "platform/com/Result.h"
#include "platform/ole/Gsf.h"
#include "platform/win32/Types.h"

namespace ole {

struct Unreference {
    void operator()(void* object) const { g_object_unref(object); }
};

using InputPtr = std::unique_ptr<GsfInput, Unreference>;
using InfilePtr = std::unique_ptr<GsfInfile, Unreference>;

// Whether the file begins as compound files do; STG_E_FILENOTFOUND where there is none.
HRESULT LooksLikeCompoundFile(LPCWSTR path);

// The child at this place, counted from 0; null where its chain of sectors is broken.
InputPtr ChildOf(GsfInfile& infile, int index);

// The root storage in `root`. Failures as StgOpenStorage says.
// Thread-safety: safe from any thread. A root and all its children serve one thread at a time.
HRESULT OpenCompoundFile(LPCWSTR path, InfilePtr& root);

} // namespace ole
