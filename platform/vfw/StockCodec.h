// FFmpeg's decoders as a codec of Video for Windows.
#pragma once

#include "platform/vfw/Vfw.h"

namespace vfw {

// Opens for each code that FFmpeg decodes, and for those that uncompressed and run-length coded
// streams go by: 0 or "DIB ", and 1, "MRLE" or "RLE ".
//
// Thread-safety: as Vfw.h says of codecs.
LRESULT StockCodec(DWORD_PTR id, HDRVR driver, UINT message, LPARAM lParam1, LPARAM lParam2);

} // namespace vfw
