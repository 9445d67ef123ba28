#include "platform/wic/GdiplusStreamBitmap.h"

#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "platform/com/ComPtr.h"
#include "platform/com/MemoryStream.h"
#include "platform/wic/GdiplusBitmap.h"
#include "tests/support/PngBytes.h"

using namespace Gdiplus;
using namespace Gdiplus::DllExports;

namespace {

struct DisposeImage {
    void operator()(GpBitmap* image) const { EXPECT_EQ(GdipDisposeImage(image), Ok); }
};

using BitmapPtr = std::unique_ptr<GpBitmap, DisposeImage>;

BitmapPtr Open(const std::string& bytes, GpStatus expected = Ok) {
    const auto stream = com::ComPtr<IStream>::Attach(SHCreateMemStream(
        reinterpret_cast<const BYTE*>(bytes.data()), static_cast<UINT>(bytes.size())));
    GpBitmap* bitmap = nullptr;
    EXPECT_EQ(GdipCreateBitmapFromStream(stream.Get(), &bitmap), expected);
    return BitmapPtr(bitmap);
}

PixelFormat FormatOf(const BitmapPtr& bitmap) {
    PixelFormat format = 0;
    EXPECT_EQ(GdipGetImagePixelFormat(bitmap.get(), &format), Ok);
    return format;
}

GpStatus Lock(const BitmapPtr& bitmap, BitmapData& data, const GpRect* rect = nullptr) {
    return GdipBitmapLockBits(bitmap.get(), rect, ImageLockModeRead, PixelFormat32bppARGB, &data);
}

// The locked pixels, without padding.
std::string PixelsOf(const BitmapData& data) {
    std::string pixels;
    const auto* row = static_cast<const char*>(data.Scan0);
    for (unsigned int y = 0; y < data.Height; ++y, row += data.Stride) {
        pixels.append(row, std::size_t{data.Width} * 4);
    }
    return pixels;
}

const std::string Rgba = "\1\2\3\4"
                         "\5\6\7\x08"
                         "\x11\x12\x13\x14"
                         "\x15\x16\x17\x18"; // 2 x 2

TEST(GdiplusStreamBitmap, HasThePublicValues) {
    EXPECT_EQ(ImageLockModeRead, 1U);
    EXPECT_EQ(PixelFormat8bppIndexed, 198659);
    EXPECT_EQ(PixelFormat24bppRGB, 137224);
}

TEST(GdiplusStreamBitmap, PixelsAreBlueGreenRedAlpha) {
    const BitmapPtr bitmap = Open(PngBytes({.width = 2, .height = 2}, Rgba));
    EXPECT_EQ(bitmap->Width(), 2);
    EXPECT_EQ(bitmap->Height(), 2);
    EXPECT_EQ(FormatOf(bitmap), PixelFormat32bppARGB);
    BitmapData data{};
    ASSERT_EQ(Lock(bitmap, data), Ok);
    EXPECT_EQ(data.Width, 2U);
    EXPECT_EQ(data.Height, 2U);
    EXPECT_EQ(data.PixelFormat, PixelFormat32bppARGB);
    EXPECT_EQ(PixelsOf(data), "\3\2\1\4"
                              "\7\6\5\x08"
                              "\x13\x12\x11\x14"
                              "\x17\x16\x15\x18");
    EXPECT_EQ(GdipBitmapUnlockBits(bitmap.get(), &data), Ok);
}

TEST(GdiplusStreamBitmap, APartOfThePicture) {
    const BitmapPtr bitmap = Open(PngBytes({.width = 2, .height = 2}, Rgba));
    BitmapData data{};
    const GpRect corner{1, 1, 1, 1};
    ASSERT_EQ(Lock(bitmap, data, &corner), Ok);
    EXPECT_EQ(PixelsOf(data), "\x17\x16\x15\x18");
    EXPECT_EQ(GdipBitmapUnlockBits(bitmap.get(), &data), Ok);
    const GpRect top{0, 0, 2, 1};
    ASSERT_EQ(Lock(bitmap, data, &top), Ok);
    EXPECT_EQ(PixelsOf(data).size(), 8U);
    for (const GpRect& wrong :
         {GpRect{0, 0, 3, 2}, GpRect{0, 0, 2, 3}, GpRect{-1, 0, 1, 1}, GpRect{0, -1, 1, 1},
          GpRect{0, 0, 0, 1}, GpRect{0, 0, 1, 0}, GpRect{2147483647, 0, 2147483647, 1}}) {
        EXPECT_EQ(Lock(bitmap, data, &wrong), InvalidParameter);
    }
}

TEST(GdiplusStreamBitmap, IsLockedOnceAtATime) {
    const BitmapPtr bitmap = Open(PngBytes({.width = 2, .height = 2}, Rgba));
    BitmapData data{};
    EXPECT_EQ(GdipBitmapUnlockBits(bitmap.get(), &data), GenericError);
    ASSERT_EQ(Lock(bitmap, data), Ok);
    BitmapData second{};
    EXPECT_EQ(Lock(bitmap, second), GenericError);
    EXPECT_EQ(GdipBitmapUnlockBits(bitmap.get(), &data), Ok);
    EXPECT_EQ(Lock(bitmap, data), Ok);
}

TEST(GdiplusStreamBitmap, FormatsFollowTheTransparency) {
    const auto formatOf = [](int colourType, int depth, const std::string& chunks = "") {
        const PngShape shape{.width = 1, .height = 1, .colourType = colourType, .depth = depth};
        return FormatOf(Open(PngBytes(shape, std::string(8, '\0'), chunks)));
    };
    const std::string palette = PngChunk("PLTE", "abc");
    EXPECT_EQ(formatOf(6, 8), PixelFormat32bppARGB);
    EXPECT_EQ(formatOf(6, 16), PixelFormat32bppARGB);
    EXPECT_EQ(formatOf(4, 8), PixelFormat32bppARGB);
    EXPECT_EQ(formatOf(2, 8), PixelFormat24bppRGB);
    EXPECT_EQ(formatOf(2, 16), PixelFormat24bppRGB);
    EXPECT_EQ(formatOf(0, 8), PixelFormat24bppRGB);
    EXPECT_EQ(formatOf(0, 1), PixelFormat24bppRGB);
    EXPECT_EQ(formatOf(3, 8, palette), PixelFormat8bppIndexed);
    EXPECT_EQ(formatOf(3, 1, palette), PixelFormat8bppIndexed);
    EXPECT_EQ(formatOf(3, 8, palette + PngChunk("tRNS", "x")), PixelFormat8bppIndexed);
    EXPECT_EQ(formatOf(2, 8, PngChunk("tRNS", std::string(6, '\0'))), PixelFormat32bppARGB);
}

TEST(GdiplusStreamBitmap, EveryKindWithTransparencyIsConverted) {
    const auto pixelOf = [](int colourType, int depth, const std::string& row,
                            const std::string& chunks = "") {
        const PngShape shape{.width = 1, .height = 1, .colourType = colourType, .depth = depth};
        const BitmapPtr bitmap = Open(PngBytes(shape, row, chunks));
        BitmapData data{};
        EXPECT_EQ(Lock(bitmap, data), Ok);
        return PixelsOf(data);
    };
    EXPECT_EQ(pixelOf(4, 8, "\x40\x70"), "\x40\x40\x40\x70");
    EXPECT_EQ(pixelOf(6, 16, "\x10\x10\x20\x20\x30\x30\x40\x40"), "\x30\x20\x10\x40");
    const std::string zeros(6, '\0');
    EXPECT_EQ(pixelOf(2, 8, std::string(3, '\0'), PngChunk("tRNS", zeros)), std::string(4, '\0'));
    EXPECT_EQ(pixelOf(2, 8, "\1\2\3", PngChunk("tRNS", zeros)), "\3\2\1\xFF");
}

TEST(GdiplusStreamBitmap, ValuesAreThoseStoredWhateverTheGamma) {
    const std::string gamma = PngChunk("gAMA", std::string("\0\1\x86\xA0", 4)); // 1.0
    const BitmapPtr bitmap = Open(PngBytes({.width = 2, .height = 2}, Rgba, gamma));
    BitmapData data{};
    ASSERT_EQ(Lock(bitmap, data), Ok);
    EXPECT_EQ(PixelsOf(data).substr(0, 4), "\3\2\1\4");
}

TEST(GdiplusStreamBitmap, WhatFollowsThePictureIsNotLookedAt) {
    const BitmapPtr bitmap =
        Open(PngBytes({.width = 2, .height = 2}, Rgba) + std::string(1000, 'x'));
    BitmapData data{};
    EXPECT_EQ(Lock(bitmap, data), Ok);
}

TEST(GdiplusStreamBitmap, ThePictureBeginsWhereTheStreamStands) {
    const std::string bytes = "before" + PngBytes({.width = 2, .height = 2}, Rgba);
    const auto stream = com::ComPtr<IStream>::Attach(SHCreateMemStream(
        reinterpret_cast<const BYTE*>(bytes.data()), static_cast<UINT>(bytes.size())));
    LARGE_INTEGER six{};
    six.QuadPart = 6;
    ASSERT_EQ(stream->Seek(six, STREAM_SEEK_SET, nullptr), S_OK);
    GpBitmap* opened = nullptr;
    ASSERT_EQ(GdipCreateBitmapFromStream(stream.Get(), &opened), Ok);
    const BitmapPtr bitmap(opened);
    BitmapData data{};
    EXPECT_EQ(Lock(bitmap, data), Ok);
}

TEST(GdiplusStreamBitmap, EveryCutIsRefusedOrDecodes) {
    const std::string whole = PngBytes({.width = 2, .height = 2}, Rgba);
    std::size_t locked = 0;
    for (std::size_t size = 0; size < whole.size(); ++size) {
        const auto stream = com::ComPtr<IStream>::Attach(SHCreateMemStream(
            reinterpret_cast<const BYTE*>(whole.data()), static_cast<UINT>(size)));
        GpBitmap* opened = nullptr;
        if (GdipCreateBitmapFromStream(stream.Get(), &opened) == Ok) {
            const BitmapPtr bitmap(opened);
            BitmapData data{};
            locked += Lock(bitmap, data) == Ok ? 1 : 0;
        }
    }
    EXPECT_LE(locked, 16U); // what is missing at most is the end of the last two chunks
}

TEST(GdiplusStreamBitmap, DamageIsRefused) {
    std::string bytes = PngBytes({.width = 2, .height = 2}, Rgba);
    bytes[bytes.find("IDAT") + 8] ^= 0x55;
    const BitmapPtr bitmap = Open(bytes);
    BitmapData data{};
    EXPECT_EQ(Lock(bitmap, data), GenericError);
    EXPECT_EQ(Lock(bitmap, data), GenericError);
    EXPECT_EQ(GdipBitmapUnlockBits(bitmap.get(), &data), GenericError);
}

TEST(GdiplusStreamBitmap, SizesThatNoPictureHasAreRefused) {
    EXPECT_EQ(Open(PngBytes({.width = 1 << 20, .height = 1 << 20}, ""), GenericError), nullptr);
    EXPECT_EQ(Open(PngBytes({.width = 0, .height = 1}, ""), GenericError), nullptr);
    // A header alone takes no memory.
    const BitmapPtr large = Open(PngBytes({.width = 1 << 14, .height = 1 << 13}, ""));
    BitmapData data{};
    EXPECT_EQ(Lock(large, data), GenericError);
}

TEST(GdiplusStreamBitmap, WhatIsNoPngIsRefused) {
    for (const std::string& bytes : {std::string(), std::string("text"), std::string(100, '\0')}) {
        EXPECT_EQ(Open(bytes, GenericError), nullptr);
    }
    GpBitmap* bitmap = nullptr;
    EXPECT_EQ(GdipCreateBitmapFromStream(nullptr, &bitmap), InvalidParameter);
    PixelFormat format = 0;
    EXPECT_EQ(GdipGetImagePixelFormat(nullptr, &format), InvalidParameter);
    BitmapData data{};
    EXPECT_EQ(GdipBitmapLockBits(nullptr, nullptr, ImageLockModeRead, PixelFormat32bppARGB, &data),
              InvalidParameter);
    EXPECT_EQ(GdipBitmapUnlockBits(nullptr, &data), InvalidParameter);
}

TEST(GdiplusStreamBitmap, OtherLocksAreNotOffered) {
    const BitmapPtr bitmap = Open(PngBytes({.width = 2, .height = 2}, Rgba));
    BitmapData data{};
    EXPECT_EQ(GdipBitmapLockBits(bitmap.get(), nullptr, 2, PixelFormat32bppARGB, &data),
              InvalidParameter);
    EXPECT_EQ(
        GdipBitmapLockBits(bitmap.get(), nullptr, ImageLockModeRead, PixelFormat24bppRGB, &data),
        InvalidParameter);
    const BitmapPtr opaque = Open(
        PngBytes({.width = 1, .height = 1, .colourType = 2, .depth = 8}, std::string(3, '\0')));
    EXPECT_EQ(Lock(opaque, data), InvalidParameter);
    std::uint8_t pixel[4] = {};
    GpBitmap* opened = nullptr;
    ASSERT_EQ(GdipCreateBitmapFromScan0(1, 1, 4, PixelFormat32bppARGB, pixel, &opened), Ok);
    const BitmapPtr memory(opened);
    EXPECT_EQ(FormatOf(memory), PixelFormat32bppARGB);
    EXPECT_EQ(Lock(memory, data), InvalidParameter);
}

} // namespace
