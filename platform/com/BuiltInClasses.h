// The classes that this layer makes itself.
#pragma once

#include "platform/com/Unknown.h"

namespace com {

// Makes an object of the class as `iid`; REGDB_E_CLASSNOTREG for one that this layer has not.
HRESULT CreateBuiltIn(REFCLSID classId, REFIID iid, void** object);

} // namespace com
