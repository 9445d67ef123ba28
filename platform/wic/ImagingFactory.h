// The class behind CLSID_WICImagingFactory.
#pragma once

#include "platform/wic/WinCodec.h"

namespace wic {

HRESULT CreateImagingFactory(REFIID iid, void** object);

} // namespace wic
