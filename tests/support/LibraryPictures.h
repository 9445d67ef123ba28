// Pictures as the formats' own libraries show them, to compare with: nothing lies between the file
// and the library here. All are premultiplied, to the nearest, and none is turned.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "tests/support/BgraPicture.h"

// As libjpeg shows it with the settings that it starts with; CMYK as (255 - ink) * (255 - black) /
// 255 to the nearest. Empty where libjpeg gives up.
std::optional<BgraPicture> LibjpegPicture(const std::string& path);

// As TIFFReadRGBAImage shows it. Empty where libtiff refuses.
std::optional<BgraPicture> LibtiffPicture(const std::string& path);

// As WebPDecodeBGRA shows it. Empty where libwebp refuses.
std::optional<BgraPicture> LibwebpPicture(const std::string& path);

// The orientation in the EXIF block of the JPEG file `bytes`, 1 where there is none that makes
// sense.
int OrientationOf(std::string_view bytes);
