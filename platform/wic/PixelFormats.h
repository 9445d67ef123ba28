// The kinds of pixels that pictures come in. Stands for the pixel formats of wincodec.h.
#pragma once

#include <cstdint>

#include "platform/com/Guid.h"

using WICPixelFormatGUID = GUID;
using REFWICPixelFormatGUID = const WICPixelFormatGUID&;

namespace wic {

// All of the component's own formats differ in the last byte alone.
constexpr WICPixelFormatGUID PixelFormatOf(std::uint8_t last) {
    return {0x6FDDC324, 0x4E03, 0x4BFE, {0xB1, 0x85, 0x3D, 0x77, 0x76, 0x8D, 0xC9, last}};
}

} // namespace wic

inline constexpr auto GUID_WICPixelFormat1bppIndexed = wic::PixelFormatOf(0x01);
inline constexpr auto GUID_WICPixelFormat2bppIndexed = wic::PixelFormatOf(0x02);
inline constexpr auto GUID_WICPixelFormat4bppIndexed = wic::PixelFormatOf(0x03);
inline constexpr auto GUID_WICPixelFormat8bppIndexed = wic::PixelFormatOf(0x04);
inline constexpr auto GUID_WICPixelFormatBlackWhite = wic::PixelFormatOf(0x05);
inline constexpr auto GUID_WICPixelFormat2bppGray = wic::PixelFormatOf(0x06);
inline constexpr auto GUID_WICPixelFormat4bppGray = wic::PixelFormatOf(0x07);
inline constexpr auto GUID_WICPixelFormat8bppGray = wic::PixelFormatOf(0x08);
inline constexpr auto GUID_WICPixelFormat16bppBGR555 = wic::PixelFormatOf(0x09);
inline constexpr auto GUID_WICPixelFormat16bppGray = wic::PixelFormatOf(0x0B);
inline constexpr auto GUID_WICPixelFormat32bppBGR = wic::PixelFormatOf(0x0E);
inline constexpr auto GUID_WICPixelFormat48bppRGB = wic::PixelFormatOf(0x15);
inline constexpr auto GUID_WICPixelFormat64bppRGBA = wic::PixelFormatOf(0x16);
inline constexpr auto GUID_WICPixelFormat128bppRGBAFloat = wic::PixelFormatOf(0x19);
inline constexpr auto GUID_WICPixelFormat32bppCMYK = wic::PixelFormatOf(0x1C);
inline constexpr auto GUID_WICPixelFormat64bppCMYK = wic::PixelFormatOf(0x1F);

// Rendered: what pixels can be converted to and copied in. A pixel's bytes in memory are blue,
// green, red and, where it has one, alpha; P says that the colours are multiplied by it.
inline constexpr auto GUID_WICPixelFormat24bppBGR = wic::PixelFormatOf(0x0C);
inline constexpr auto GUID_WICPixelFormat32bppBGRA = wic::PixelFormatOf(0x0F);
inline constexpr auto GUID_WICPixelFormat32bppPBGRA = wic::PixelFormatOf(0x10);

namespace wic {

// Bits of a pixel; 0 for a format that is none of those above.
unsigned int BitsPerPixel(REFWICPixelFormatGUID format);

bool IsRendered(REFWICPixelFormatGUID format);

} // namespace wic
