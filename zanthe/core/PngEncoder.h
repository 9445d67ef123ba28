// How a bitmap gets through GDI+ into a file. Not exported.
#pragma once

#include <optional>
#include <string>

#include "platform/com/Guid.h"

namespace Zanthe {

class Bitmap;

// The class of the first encoder for "image/png"; none when GDI+ lists no such encoder.
std::optional<CLSID> FindPngEncoder();

// Writes the bitmap to the file at `filePath` (UTF-8); false when that fails.
bool SaveWithEncoder(const Bitmap& bitmap, const CLSID& encoder, const std::string& filePath);

} // namespace Zanthe
