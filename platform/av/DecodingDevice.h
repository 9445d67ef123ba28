// Hardware devices that pictures are decoded on.
#pragma once

#include "platform/av/Handles.h"

namespace av {

enum class DeviceKind { VaApi, Cuda };

// The system's first device of the kind; null where there is none that works.
// Thread-safety: safe from any thread.
BufferPtr OpenDecodingDevice(DeviceKind kind);

} // namespace av
