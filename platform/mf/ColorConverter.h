// The colour converter, CLSID_CColorConvertDMO.
#pragma once

#include "platform/com/Unknown.h"

namespace mf {

// *object: a new one as its interface `iid`, with a reference for the caller.
HRESULT CreateColorConverter(REFIID iid, void** object);

} // namespace mf
