// Decoders of the kinds of files that the layer knows.
#pragma once

#include <memory>

#include "platform/wic/InputFile.h"
#include "platform/wic/WinCodec.h"

namespace wic {

// The decoder that the file's first bytes call for. Failures as those of
// IWICImagingFactory::CreateDecoderFromFilename.
HRESULT MakeDecoder(std::shared_ptr<InputFile> file, IWICBitmapDecoder** decoder);

} // namespace wic
