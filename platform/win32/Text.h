// Text between the exported interface, where it is UTF-8, and the platform layer, where it is wide.
// Stands for MultiByteToWideChar and WideCharToMultiByte of stringapiset.h with code page 65001.
//
//     GdipSaveImageToFile(image, win32::Utf8ToWide(path).c_str(), ...);
//
// A wide character here is 32 bits: one element is one code point, and there are no pairs.
//
// File names on this system are any bytes, so bytes that are not UTF-8 must live through the wide
// side: each becomes a lone surrogate U+DC80 .. U+DCFF, which no valid text holds, and becomes that
// byte again on the way back. WideToUtf8(Utf8ToWide(bytes)) == bytes, whatever the bytes.
#pragma once

#include <string>
#include <string_view>

namespace win32 {

// Thread-safety: both are safe from any thread.

// The code points of `utf8`; a byte b that is part of no well-formed sequence (stray, cut off,
// overlong, an encoded surrogate, beyond U+10FFFF) comes out as U+DC00 + b.
std::wstring Utf8ToWide(std::string_view utf8);

// The UTF-8 of `wide`; U+DC80 .. U+DCFF come out as the single byte that they stand for. Any other
// surrogate and what lies beyond U+10FFFF has no UTF-8 and comes out as U+FFFD.
std::string WideToUtf8(std::wstring_view wide);

} // namespace win32
