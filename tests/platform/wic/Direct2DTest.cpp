#include "platform/wic/Direct2D.h"

#include <array>
#include <string>

#include <gtest/gtest.h>

#include "platform/com/ComPtr.h"
#include "platform/wic/Stages.h"

namespace {

constexpr D2D1_PIXEL_FORMAT Format = {DXGI_FORMAT_B8G8R8A8_UNORM, D2D1_ALPHA_MODE_PREMULTIPLIED};
constexpr D2D1_BITMAP_PROPERTIES Properties = {Format, 96.0F, 96.0F};
constexpr D2D1_COLOR_F Red = {1.0F, 0.0F, 0.0F, 1.0F};
constexpr D2D1_COLOR_F HalfGreen = {0.0F, 1.0F, 0.0F, 0.5F};

// A target over the rows of a bitmap of four by two pixels.
class Direct2D : public testing::Test {
protected:
    Direct2D() {
        EXPECT_EQ(wic::MakeBitmap(4, 2, GUID_WICPixelFormat32bppPBGRA, m_rows.Put()), S_OK);
        EXPECT_EQ(D2D1CreateFactory(D2D1_FACTORY_TYPE_SINGLE_THREADED, m_factory.Put()), S_OK);
        const D2D1_RENDER_TARGET_PROPERTIES properties = {
            D2D1_RENDER_TARGET_TYPE_DEFAULT, Format, 0.0F, 0.0F, D2D1_RENDER_TARGET_USAGE_NONE,
            D2D1_FEATURE_LEVEL_DEFAULT};
        EXPECT_EQ(m_factory->CreateWicBitmapRenderTarget(m_rows.Get(), &properties, m_target.Put()),
                  S_OK);
    }

    // One letter a pixel: red, green (half of it), nothing; "?" for any other.
    std::string Rows() {
        std::array<BYTE, 32> pixels{};
        EXPECT_EQ(m_rows->CopyPixels(nullptr, 16, 32, pixels.data()), S_OK);
        std::string letters;
        for (std::size_t i = 0; i < pixels.size(); i += 4) {
            const bool isRed = pixels[i + 2] == 255 && pixels[i + 3] == 255;
            const bool isGreen = pixels[i + 1] == 128 && pixels[i + 3] == 128;
            letters += i == 16 ? "/" : "";
            letters += isRed ? 'r' : isGreen ? 'g' : pixels[i + 3] == 0 ? '.' : '?';
        }
        return letters;
    }

    com::ComPtr<ID2D1Bitmap> BitmapOf(UINT32 width, UINT32 height) {
        com::ComPtr<ID2D1Bitmap> bitmap;
        EXPECT_EQ(m_target->CreateBitmap({width, height}, nullptr, 0, &Properties, bitmap.Put()),
                  S_OK);
        return bitmap;
    }

    com::ComPtr<IWICBitmap> m_rows;
    com::ComPtr<ID2D1Factory> m_factory;
    com::ComPtr<ID2D1RenderTarget> m_target;
};

TEST_F(Direct2D, ClearsWithinTheClips) {
    const D2D1_RECT_F right = {2.0F, 0.0F, 4.0F, 2.0F};
    const D2D1_RECT_F bottom = {0.0F, 1.0F, 4.0F, 2.0F};
    m_target->BeginDraw();
    m_target->Clear(&Red);
    m_target->PushAxisAlignedClip(&right, D2D1_ANTIALIAS_MODE_ALIASED);
    m_target->Clear(&HalfGreen); // takes the place of what is there
    m_target->PushAxisAlignedClip(&bottom, D2D1_ANTIALIAS_MODE_ALIASED);
    m_target->Clear(nullptr);
    m_target->PopAxisAlignedClip();
    m_target->PopAxisAlignedClip();
    EXPECT_EQ(m_target->EndDraw(), S_OK);
    EXPECT_EQ(Rows(), "rrgg/rr..");
}

TEST_F(Direct2D, ClipsComeInPairs) {
    const D2D1_RECT_F left = {0.0F, 0.0F, 1.0F, 2.0F};
    m_target->BeginDraw();
    m_target->PushAxisAlignedClip(&left, D2D1_ANTIALIAS_MODE_ALIASED);
    EXPECT_EQ(m_target->EndDraw(), D2DERR_PUSH_POP_UNBALANCED);
    m_target->BeginDraw();
    m_target->PopAxisAlignedClip();
    EXPECT_EQ(m_target->EndDraw(), D2DERR_PUSH_POP_UNBALANCED);
    m_target->BeginDraw(); // neither reaches the next drawing
    m_target->Clear(&Red);
    EXPECT_EQ(m_target->EndDraw(), S_OK);
    EXPECT_EQ(Rows(), "rrrr/rrrr");
}

TEST_F(Direct2D, DrawsOnlyBetweenBeginAndEnd) {
    m_target->Clear(&Red);
    EXPECT_EQ(m_target->EndDraw(), D2DERR_WRONG_STATE);
    EXPECT_EQ(Rows(), "..../....");
    m_target->BeginDraw();
    m_target->DrawBitmap(nullptr, nullptr, 1.0F, D2D1_BITMAP_INTERPOLATION_MODE_LINEAR, nullptr);
    EXPECT_EQ(m_target->EndDraw(), E_INVALIDARG);
}

TEST_F(Direct2D, DrawsABitmapOntoARectangle) {
    const std::array<BYTE, 8> pixels = {0, 0, 255, 255, 0, 0, 0, 0}; // red, nothing
    com::ComPtr<ID2D1Bitmap> bitmap;
    ASSERT_EQ(m_target->CreateBitmap({2, 1}, pixels.data(), 8, &Properties, bitmap.Put()), S_OK);
    const D2D1_RECT_F onto = {1.0F, 1.0F, 3.0F, 2.0F};
    const D2D1_RECT_F nothing = {1.0F, 0.0F, 1.0F, 1.0F};
    m_target->BeginDraw();
    m_target->Clear(&HalfGreen);
    m_target->DrawBitmap(bitmap.Get(), &onto, 1.0F, D2D1_BITMAP_INTERPOLATION_MODE_LINEAR, nullptr);
    m_target->DrawBitmap(bitmap.Get(), &nothing, 1.0F, D2D1_BITMAP_INTERPOLATION_MODE_LINEAR,
                         nullptr);
    EXPECT_EQ(m_target->EndDraw(), S_OK);
    EXPECT_EQ(Rows(), "gggg/grgg");
}

TEST_F(Direct2D, ACompatibleTargetIsEmptyAndItsBitmapIsItsOwn) {
    const D2D1_SIZE_F size = {4.0F, 2.0F};
    com::ComPtr<ID2D1BitmapRenderTarget> other;
    ASSERT_EQ(m_target->CreateCompatibleRenderTarget(
                  &size, nullptr, nullptr, D2D1_COMPATIBLE_RENDER_TARGET_OPTIONS_NONE, other.Put()),
              S_OK);
    com::ComPtr<ID2D1Bitmap> pixels;
    ASSERT_EQ(other->GetBitmap(pixels.Put()), S_OK);
    const D2D1_RECT_F whole = {0.0F, 0.0F, 4.0F, 2.0F};
    const D2D1_RECT_F left = {0.0F, 0.0F, 1.0F, 2.0F};
    other->BeginDraw();
    other->PushAxisAlignedClip(&left, D2D1_ANTIALIAS_MODE_ALIASED);
    other->Clear(&Red);
    other->PopAxisAlignedClip();
    ASSERT_EQ(other->EndDraw(), S_OK);
    m_target->BeginDraw();
    m_target->DrawBitmap(pixels.Get(), &whole, 1.0F, D2D1_BITMAP_INTERPOLATION_MODE_LINEAR,
                         nullptr);
    ASSERT_EQ(m_target->EndDraw(), S_OK);
    EXPECT_EQ(Rows(), "r.../r...");
}

TEST_F(Direct2D, CopiesTakeAllPixelsOfOneSize) {
    const auto kept = BitmapOf(4, 2);
    const auto smaller = BitmapOf(4, 1);
    m_target->BeginDraw();
    m_target->Clear(&Red);
    ASSERT_EQ(m_target->EndDraw(), S_OK);
    EXPECT_EQ(kept->CopyFromRenderTarget(nullptr, m_target.Get(), nullptr), S_OK);
    EXPECT_EQ(smaller->CopyFromRenderTarget(nullptr, m_target.Get(), nullptr), E_INVALIDARG);
    EXPECT_EQ(smaller->CopyFromBitmap(nullptr, kept.Get(), nullptr), E_INVALIDARG);
    const D2D1_POINT_2U place = {0, 0};
    EXPECT_EQ(kept->CopyFromRenderTarget(&place, m_target.Get(), nullptr), E_INVALIDARG);
    const auto again = BitmapOf(4, 2);
    EXPECT_EQ(again->CopyFromBitmap(nullptr, kept.Get(), nullptr), S_OK);
    const D2D1_RECT_F whole = {0.0F, 0.0F, 4.0F, 2.0F};
    m_target->BeginDraw();
    m_target->Clear(nullptr);
    m_target->DrawBitmap(again.Get(), &whole, 1.0F, D2D1_BITMAP_INTERPOLATION_MODE_LINEAR, nullptr);
    ASSERT_EQ(m_target->EndDraw(), S_OK);
    EXPECT_EQ(Rows(), "rrrr/rrrr");
}

TEST_F(Direct2D, SurfacesAreBounded) {
    com::ComPtr<ID2D1Bitmap> bitmap;
    EXPECT_EQ(m_target->CreateBitmap({8192, 4097}, nullptr, 0, &Properties, bitmap.Put()),
              D2DERR_MAX_TEXTURE_SIZE_EXCEEDED);
    EXPECT_EQ(m_target->CreateBitmap({32768, 1}, nullptr, 0, &Properties, bitmap.Put()),
              D2DERR_MAX_TEXTURE_SIZE_EXCEEDED);
    EXPECT_EQ(m_target->CreateBitmap({0, 1}, nullptr, 0, &Properties, bitmap.Put()), E_INVALIDARG);
    const D2D1_BITMAP_PROPERTIES unknown = {{DXGI_FORMAT_UNKNOWN, D2D1_ALPHA_MODE_UNKNOWN}, 0, 0};
    EXPECT_EQ(m_target->CreateBitmap({1, 1}, nullptr, 0, &unknown, bitmap.Put()),
              D2DERR_UNSUPPORTED_PIXEL_FORMAT);
}

} // namespace
