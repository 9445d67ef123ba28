// The decoder of GIF files.
#pragma once

#include <memory>

#include "platform/wic/InputFile.h"
#include "platform/wic/WinCodec.h"

namespace wic {

// WINCODEC_ERR_BADIMAGE where the file does not go on as a GIF file does. A frame is the picture
// that the file holds for it, of its own size; nothing is put together here.
HRESULT MakeGifDecoder(std::shared_ptr<InputFile> file, IWICBitmapDecoder** decoder);

} // namespace wic
