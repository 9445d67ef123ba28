#include "platform/wic/PixelFormats.h"

#include <algorithm>
#include <array>

namespace wic {

namespace {

struct FormatBits {
    WICPixelFormatGUID format;
    unsigned int bits;
};

constexpr std::array Known = {
    FormatBits{GUID_WICPixelFormat1bppIndexed, 1},
    FormatBits{GUID_WICPixelFormat2bppIndexed, 2},
    FormatBits{GUID_WICPixelFormat4bppIndexed, 4},
    FormatBits{GUID_WICPixelFormat8bppIndexed, 8},
    FormatBits{GUID_WICPixelFormatBlackWhite, 1},
    FormatBits{GUID_WICPixelFormat2bppGray, 2},
    FormatBits{GUID_WICPixelFormat4bppGray, 4},
    FormatBits{GUID_WICPixelFormat8bppGray, 8},
    FormatBits{GUID_WICPixelFormat16bppBGR555, 16},
    FormatBits{GUID_WICPixelFormat16bppGray, 16},
    FormatBits{GUID_WICPixelFormat24bppBGR, 24},
    FormatBits{GUID_WICPixelFormat32bppBGR, 32},
    FormatBits{GUID_WICPixelFormat32bppBGRA, 32},
    FormatBits{GUID_WICPixelFormat32bppPBGRA, 32},
    FormatBits{GUID_WICPixelFormat32bppCMYK, 32},
    FormatBits{GUID_WICPixelFormat48bppRGB, 48},
    FormatBits{GUID_WICPixelFormat64bppRGBA, 64},
    FormatBits{GUID_WICPixelFormat64bppCMYK, 64},
    FormatBits{GUID_WICPixelFormat128bppRGBAFloat, 128},
};

} // namespace

unsigned int BitsPerPixel(REFWICPixelFormatGUID format) {
    const auto* const known =
        std::find_if(Known.begin(), Known.end(),
                     [&](const FormatBits& entry) { return entry.format == format; });
    return known != Known.end() ? known->bits : 0;
}

bool IsRendered(REFWICPixelFormatGUID format) {
    return format == GUID_WICPixelFormat24bppBGR || format == GUID_WICPixelFormat32bppBGRA ||
           format == GUID_WICPixelFormat32bppPBGRA;
}

} // namespace wic
