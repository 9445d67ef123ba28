// The codecs that hosts have handed in.
#pragma once

#include "platform/vfw/Vfw.h"

namespace vfw {

// Codes are compared without regard to the case of ASCII letters.
//
// Thread-safety: safe from any thread.
DRIVERPROC FindInstalled(DWORD handler); // null where there is none
void Install(DWORD handler, DRIVERPROC codec);
bool Remove(DWORD handler);

} // namespace vfw
