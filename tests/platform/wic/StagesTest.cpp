// Converter, scaler, rotator, palette and bitmap, asked out of order and for what they do not have.
#include <algorithm>
#include <vector>

#include <gtest/gtest.h>

#include "platform/com/ComPtr.h"
#include "platform/wic/Stages.h"

namespace wic {
namespace {

template <typename Interface>
com::ComPtr<Interface> Made(HRESULT (*make)(Interface**)) {
    com::ComPtr<Interface> object;
    EXPECT_EQ(make(object.Put()), S_OK);
    return object;
}

// Two by one: red, half green.
com::ComPtr<IWICBitmap> TwoPixels() {
    com::ComPtr<IWICBitmap> bitmap;
    EXPECT_EQ(MakeBitmap(2, 1, GUID_WICPixelFormat32bppPBGRA, bitmap.Put()), S_OK);
    const std::vector<BYTE> pixels = {0, 0, 255, 255, 0, 128, 0, 128};
    std::copy(pixels.begin(), pixels.end(), BitsOf(bitmap.Get()));
    return bitmap;
}

HRESULT Convert(IWICFormatConverter& converter, IWICBitmapSource* source,
                REFWICPixelFormatGUID format) {
    return converter.Initialize(source, format, WICBitmapDitherTypeNone, nullptr, 0.0,
                                WICBitmapPaletteTypeCustom);
}

TEST(Stages, WithoutASourceThereIsNothing) {
    const auto converter = Made<IWICFormatConverter>(MakeFormatConverter);
    UINT width = 7;
    UINT height = 7;
    EXPECT_EQ(converter->GetSize(&width, &height), WINCODEC_ERR_NOTINITIALIZED);
    EXPECT_EQ(width, 7U);
    BYTE pixels[8];
    EXPECT_EQ(converter->CopyPixels(nullptr, 8, 8, pixels), WINCODEC_ERR_NOTINITIALIZED);
    EXPECT_EQ(Convert(*converter, nullptr, GUID_WICPixelFormat32bppPBGRA), E_INVALIDARG);
}

TEST(Stages, ASourceIsGivenOnce) {
    const auto bitmap = TwoPixels();
    const auto rotator = Made<IWICBitmapFlipRotator>(MakeFlipRotator);
    EXPECT_EQ(rotator->Initialize(bitmap.Get(), WICBitmapTransformRotate0), S_OK);
    EXPECT_EQ(rotator->Initialize(bitmap.Get(), WICBitmapTransformRotate0),
              WINCODEC_ERR_WRONGSTATE);
}

TEST(Stages, OnlyRenderedFormatsAreConvertedTo) {
    const auto bitmap = TwoPixels();
    const auto refused = Made<IWICFormatConverter>(MakeFormatConverter);
    EXPECT_EQ(Convert(*refused, bitmap.Get(), GUID_WICPixelFormat8bppGray),
              WINCODEC_ERR_UNSUPPORTEDPIXELFORMAT);
    const auto straight = Made<IWICFormatConverter>(MakeFormatConverter);
    ASSERT_EQ(Convert(*straight, bitmap.Get(), GUID_WICPixelFormat32bppBGRA), S_OK);
    std::vector<BYTE> pixels(8);
    ASSERT_EQ(straight->CopyPixels(nullptr, 8, 8, pixels.data()), S_OK);
    EXPECT_EQ(pixels, (std::vector<BYTE>{0, 0, 255, 255, 0, 255, 0, 128}));
    const auto packed = Made<IWICFormatConverter>(MakeFormatConverter);
    ASSERT_EQ(Convert(*packed, bitmap.Get(), GUID_WICPixelFormat24bppBGR), S_OK);
    pixels.assign(6, 9);
    ASSERT_EQ(packed->CopyPixels(nullptr, 6, 6, pixels.data()), S_OK);
    EXPECT_EQ(pixels, (std::vector<BYTE>{0, 0, 255, 0, 255, 0}));
}

TEST(Stages, AllPixelsAreCopiedIntoRoomEnoughForThem) {
    const auto bitmap = TwoPixels();
    std::vector<BYTE> pixels(8);
    EXPECT_EQ(bitmap->CopyPixels(nullptr, 8, 8, nullptr), E_INVALIDARG);
    EXPECT_EQ(bitmap->CopyPixels(nullptr, 7, 8, pixels.data()), WINCODEC_ERR_INSUFFICIENTBUFFER);
    EXPECT_EQ(bitmap->CopyPixels(nullptr, 8, 7, pixels.data()), WINCODEC_ERR_INSUFFICIENTBUFFER);
    const WICRect part = {1, 0, 1, 1};
    EXPECT_EQ(bitmap->CopyPixels(&part, 8, 8, pixels.data()), WINCODEC_ERR_UNSUPPORTEDOPERATION);
    const WICRect whole = {0, 0, 2, 1};
    EXPECT_EQ(bitmap->CopyPixels(&whole, 8, 8, pixels.data()), S_OK);
    EXPECT_EQ(pixels, (std::vector<BYTE>{0, 0, 255, 255, 0, 128, 0, 128}));
}

TEST(Stages, TurnsFollowEachOther) {
    const auto bitmap = TwoPixels();
    const auto quarter = Made<IWICBitmapFlipRotator>(MakeFlipRotator);
    const auto mirror = Made<IWICBitmapFlipRotator>(MakeFlipRotator);
    ASSERT_EQ(quarter->Initialize(bitmap.Get(), WICBitmapTransformRotate90), S_OK);
    ASSERT_EQ(mirror->Initialize(quarter.Get(), WICBitmapTransformFlipVertical), S_OK);
    UINT width = 0;
    UINT height = 0;
    ASSERT_EQ(mirror->GetSize(&width, &height), S_OK);
    EXPECT_EQ(width, 1U);
    EXPECT_EQ(height, 2U);
    std::vector<BYTE> pixels(8);
    ASSERT_EQ(mirror->CopyPixels(nullptr, 4, 8, pixels.data()), S_OK);
    EXPECT_EQ(pixels, (std::vector<BYTE>{0, 128, 0, 128, 0, 0, 255, 255}));
}

TEST(Stages, AScalerHasASizeAndOneWay) {
    const auto bitmap = TwoPixels();
    const auto scaler = Made<IWICBitmapScaler>(MakeScaler);
    EXPECT_EQ(scaler->Initialize(bitmap.Get(), 0, 1, WICBitmapInterpolationModeCubic),
              E_INVALIDARG);
    EXPECT_EQ(scaler->Initialize(bitmap.Get(), 1, 0, WICBitmapInterpolationModeCubic),
              E_INVALIDARG);
    ASSERT_EQ(scaler->Initialize(bitmap.Get(), 1, 1, WICBitmapInterpolationModeCubic), S_OK);
    std::vector<BYTE> pixels(4);
    ASSERT_EQ(scaler->CopyPixels(nullptr, 4, 4, pixels.data()), S_OK);
    EXPECT_NEAR(pixels[1], 64, 2); // between the two, alpha too
    EXPECT_NEAR(pixels[2], 128, 2);
    EXPECT_NEAR(pixels[3], 192, 2);
}

TEST(Stages, APaletteHoldsWhatItWasGiven) {
    const auto palette = Made<IWICPalette>(MakePalette);
    std::vector<WICColor> colours(256, 5);
    UINT count = 0;
    EXPECT_EQ(palette->GetColors(256, colours.data(), &count), WINCODEC_ERR_NOTINITIALIZED);
    EXPECT_EQ(palette->InitializeCustom(colours.data(), 257), E_INVALIDARG);
    std::vector<WICColor> three = {1, 2, 3};
    ASSERT_EQ(palette->InitializeCustom(three.data(), 3), S_OK);
    ASSERT_EQ(palette->GetColors(2, colours.data(), &count), S_OK);
    EXPECT_EQ(count, 2U);
    ASSERT_EQ(palette->GetColors(256, colours.data(), &count), S_OK);
    EXPECT_EQ(count, 3U);
    EXPECT_EQ(colours[2], 3U);
    EXPECT_EQ(colours[3], 5U);
}

TEST(Stages, BitmapsAreBoundedAndOfOneFormat) {
    com::ComPtr<IWICBitmap> bitmap;
    EXPECT_EQ(MakeBitmap(0, 1, GUID_WICPixelFormat32bppPBGRA, bitmap.Put()), E_INVALIDARG);
    EXPECT_EQ(MakeBitmap(1, 1, GUID_WICPixelFormat32bppBGRA, bitmap.Put()),
              WINCODEC_ERR_UNSUPPORTEDPIXELFORMAT);
    EXPECT_EQ(MakeBitmap(8192, 4097, GUID_WICPixelFormat32bppPBGRA, bitmap.Put()),
              WINCODEC_ERR_IMAGESIZEOUTOFRANGE);
    EXPECT_EQ(bitmap.Get(), nullptr);
}

} // namespace
} // namespace wic
