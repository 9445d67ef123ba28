#include <memory>
#include <vector>

#include <gtest/gtest.h>

#include "platform/com/ClassRegistry.h"
#include "platform/com/ComPtr.h"
#include "platform/wic/GdiplusBitmap.h"
#include "platform/wic/WinCodec.h"
#include "platform/win32/File.h"
#include "platform/win32/Text.h"
#include "tests/support/StillPictures.h"
#include "tests/support/TestMedia.h"
#include "zanthe/images/WICImageHelper.h"

namespace Zanthe {
namespace {

com::ComPtr<IWICImagingFactory> Factory() {
    com::ComPtr<IWICImagingFactory> factory;
    EXPECT_GE(CoCreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_INPROC_SERVER,
                               IID_IWICImagingFactory, factory.PutVoid()),
              0);
    return factory;
}

com::ComPtr<IWICBitmapFrameDecode> FrameOf(const std::string& path) {
    com::ComPtr<IWICBitmapDecoder> decoder;
    com::ComPtr<IWICBitmapFrameDecode> frame;
    EXPECT_GE(Factory()->CreateDecoderFromFilename(win32::Utf8ToWide(path).c_str(), nullptr,
                                                   GENERIC_READ, WICDecodeMetadataCacheOnDemand,
                                                   decoder.Put()),
              0);
    EXPECT_GE(decoder->GetFrame(0, frame.Put()), 0);
    return frame;
}

TEST(WICImageHelper, OnlyWhatIsLargerIsCapped) {
    int width = 4096;
    int height = 4096;
    WICImageHelper::GetCappedImageSize(width, height, 4096);
    EXPECT_EQ(width, 4096);
    EXPECT_EQ(height, 4096);
    width = 4097;
    height = 10;
    WICImageHelper::GetCappedImageSize(width, height, 4096);
    EXPECT_EQ(width, 4096);
    EXPECT_EQ(height, 10);
    width = 1;
    height = 100000;
    WICImageHelper::GetCappedImageSize(width, height, 4096);
    EXPECT_EQ(width, 1);
    EXPECT_EQ(height, 4096);
}

TEST(WICImageHelper, ABitmapForGdiPlus) {
    const std::string path = MadeMedia("images/rgb24.png");
    const auto picture = FfmpegPicture(path);
    ASSERT_TRUE(picture);
    Gdiplus::Bitmap* made = nullptr;
    unsigned char* memory = nullptr;
    ASSERT_EQ(WICImageHelper::BitmapSourceToGdiPlusBitmap(FrameOf(path).Get(), &made, &memory),
              S_OK);
    const std::unique_ptr<unsigned char[]> keptLonger(memory);
    const std::unique_ptr<Gdiplus::Bitmap> bitmap(made);
    EXPECT_EQ(bitmap->GetLastStatus(), Gdiplus::Ok);
    EXPECT_EQ(bitmap->GetWidth(), 61U);
    EXPECT_EQ(bitmap->GetHeight(), 43U);
    EXPECT_EQ(bitmap->GetPixelFormat(), 0x21808);
    for (int y = 0; y < 43; ++y) {
        for (int x = 0; x < 61; ++x) {
            Gdiplus::Color colour;
            ASSERT_EQ(bitmap->GetPixel(x, y, &colour), Gdiplus::Ok);
            const auto at = static_cast<std::size_t>(y * 61 + x) * 4;
            ASSERT_EQ(colour.GetBlue(), picture->bits[at]);
            ASSERT_EQ(colour.GetGreen(), picture->bits[at + 1]);
            ASSERT_EQ(colour.GetRed(), picture->bits[at + 2]);
            // 61 pixels are 183 bytes, and a row of 184.
            const auto byte = static_cast<std::size_t>(y) * 184 + static_cast<std::size_t>(x) * 3;
            ASSERT_EQ(memory[byte], colour.GetBlue());
        }
    }
}

// Nobody else keeps it then.
TEST(WICImageHelper, TheBitmapKeepsMemoryThatNobodyTakes) {
    const auto frame = FrameOf(MadeMedia("images/gray.jpg"));
    Gdiplus::Bitmap* made = nullptr;
    ASSERT_EQ(WICImageHelper::BitmapSourceToGdiPlusBitmap(frame.Get(), &made, nullptr), S_OK);
    const std::unique_ptr<Gdiplus::Bitmap> bitmap(made);
    Gdiplus::Color colour;
    EXPECT_EQ(bitmap->GetPixel(60, 42, &colour), Gdiplus::Ok);
    EXPECT_EQ(colour.GetRed(), colour.GetBlue());
    EXPECT_EQ(bitmap->GetPixel(61, 0, &colour), Gdiplus::InvalidParameter);
}

TEST(WICImageHelper, WhatIsMissingIsRefused) {
    Gdiplus::Bitmap* bitmap = nullptr;
    const auto frame = FrameOf(MadeMedia("images/gray.jpg"));
    EXPECT_EQ(WICImageHelper::BitmapSourceToGdiPlusBitmap(nullptr, &bitmap, nullptr), E_INVALIDARG);
    EXPECT_EQ(WICImageHelper::BitmapSourceToGdiPlusBitmap(frame.Get(), nullptr, nullptr),
              E_INVALIDARG);
    EXPECT_EQ(WICImageHelper::CreateBitmapFromWICBitmapSource(nullptr), nullptr);
    unsigned char byte = 0;
    EXPECT_EQ(WICImageHelper::CopyWICBitmapSourceToBuffer(nullptr, &byte), E_INVALIDARG);
    EXPECT_EQ(WICImageHelper::CopyWICBitmapSourceToBuffer(frame.Get(), nullptr), E_INVALIDARG);
}

TEST(WICImageHelper, WhatNobodyHasConvertedIsRefused) {
    for (const char* name : {"images/gray.jpg", "images/upright.jpg", "images/pal8.png"}) {
        const auto frame = FrameOf(MadeMedia(name));
        EXPECT_EQ(WICImageHelper::CreateBitmapFromWICBitmapSource(frame.Get()), nullptr) << name;
        std::vector<unsigned char> pixels(100 * 200 * 4, 7);
        EXPECT_LT(WICImageHelper::CopyWICBitmapSourceToBuffer(frame.Get(), pixels.data()), 0);
        EXPECT_EQ(pixels, std::vector<unsigned char>(pixels.size(), 7)) << name;
    }
}

} // namespace
} // namespace Zanthe
