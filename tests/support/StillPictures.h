// Pictures to compare with, and the ways to look at one.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/BgraPicture.h"
#include "zanthe/core/Bitmap.h"

// The first picture of the file as the ffmpeg program shows it, not turned, not premultiplied;
// empty where it shows none. Throws std::runtime_error when the program cannot be run.
std::optional<BgraPicture> FfmpegPicture(const std::string& path);

// The same of a picture with 16 bits a value, which the program itself does not round when it makes
// bytes of them.
std::optional<BgraPicture> DeepFfmpegPicture(const std::string& path);

// The first pictures of the film in the file as the ffmpeg program shows them, up to `most`; it is
// of this size. Not premultiplied.
std::vector<BgraPicture> FfmpegPictures(const std::string& path, int width, int height, int most);

BgraPicture PictureOf(const Zanthe::Bitmap& bitmap);

// The pixel at x, y as "BBGGRRAA", in hexadecimal.
std::string PixelText(const BgraPicture& picture, int x, int y);

// Colours multiplied by alpha, to the nearest.
BgraPicture Premultiplied(const BgraPicture& picture);

// The most by which any byte differs; 256 for pictures of different sizes.
int LargestDifference(const BgraPicture& a, const BgraPicture& b);

// The JPEG file `bytes` with an EXIF block behind its first marker that tells this orientation.
std::string WithOrientation(std::string_view bytes, int orientation);

// What a camera's picture of this EXIF orientation looks like the right way up.
BgraPicture Upright(const BgraPicture& picture, int orientation);

// A TIFF file of width by height pixels of red, green, blue, alpha, all rows alike: the bytes of
// one row. `premultiplied` says in the file that the colours are.
std::string TiffOfRows(int width, int height, std::string_view row, bool premultiplied);
