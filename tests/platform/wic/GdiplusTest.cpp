#include "platform/wic/Gdiplus.h"

#include <cwchar>
#include <filesystem>

#include <gtest/gtest.h>

#include "platform/win32/Text.h"
#include "tests/support/PngPicture.h"
#include "tests/support/TemporaryFolder.h"

using namespace Gdiplus;
using namespace Gdiplus::DllExports;

namespace {

constexpr CLSID PngClass = {
    0x557CF406, 0x1A04, 0x11D3, {0x9A, 0x73, 0x00, 0x00, 0xF8, 0x1E, 0xF3, 0x2E}};

// An image over one opaque pixel.
class OnePixel : public testing::Test {
public:
    OnePixel() {
        EXPECT_EQ(GdipCreateBitmapFromScan0(1, 1, 4, PixelFormat32bppARGB, m_pixel, &m_image), Ok);
    }

    ~OnePixel() override { EXPECT_EQ(GdipDisposeImage(m_image), Ok); }

protected:
    GpStatus Save(const std::string& path) {
        return GdipSaveImageToFile(m_image, win32::Utf8ToWide(path).c_str(), &PngClass, nullptr);
    }

    std::uint8_t m_pixel[4] = {1, 2, 3, 255};
    GpBitmap* m_image = nullptr;
};

TEST(Gdiplus, HasThePublicValues) {
    EXPECT_EQ(PixelFormat32bppARGB, 2498570);
    EXPECT_EQ(PixelFormat32bppPARGB, 925707);
    EXPECT_EQ(Ok, 0);
    EXPECT_EQ(InvalidParameter, 2);
    EXPECT_EQ(UnknownImageFormat, 13);
}

TEST(Gdiplus, ListsThePngEncoder) {
    unsigned int count = 0;
    unsigned int bytes = 0;
    ASSERT_EQ(GdipGetImageEncodersSize(&count, &bytes), Ok);
    ASSERT_EQ(count, 1u);
    ASSERT_EQ(bytes, sizeof(ImageCodecInfo));
    ImageCodecInfo codec{};
    ASSERT_EQ(GdipGetImageEncoders(count, bytes, &codec), Ok);
    EXPECT_EQ(codec.Clsid, PngClass);
    EXPECT_STREQ(codec.MimeType, L"image/png");
}

TEST(Gdiplus, TheEncoderListRefusesTooLittleRoom) {
    ImageCodecInfo codec{};
    EXPECT_EQ(GdipGetImageEncoders(0, sizeof(codec), &codec), InsufficientBuffer);
    EXPECT_EQ(GdipGetImageEncoders(1, sizeof(codec) - 1, &codec), InsufficientBuffer);
    EXPECT_EQ(codec.MimeType, nullptr);
    EXPECT_EQ(GdipGetImageEncoders(1, sizeof(codec), nullptr), InvalidParameter);
    unsigned int number = 0;
    EXPECT_EQ(GdipGetImageEncodersSize(nullptr, &number), InvalidParameter);
    EXPECT_EQ(GdipGetImageEncodersSize(&number, nullptr), InvalidParameter);
}

TEST(Gdiplus, AListThatWasSetCanBeEmpty) {
    const auto before = SetImageEncoders({});
    unsigned int count = 9;
    unsigned int bytes = 9;
    EXPECT_EQ(GdipGetImageEncodersSize(&count, &bytes), Ok);
    EXPECT_EQ(count, 0u);
    EXPECT_EQ(bytes, 0u);
    EXPECT_TRUE(SetImageEncoders(before).empty());
}

TEST(Gdiplus, NoImageOverWhatIsNone) {
    std::uint8_t bits[64] = {};
    constexpr int format = PixelFormat32bppARGB;

    const struct {
        int width, height, stride;
        PixelFormat pixelFormat;
        std::uint8_t* scan0;
    } cases[] = {
        {0, 1, 4, format, bits},    {1, 0, 4, format, bits},          {-1, 1, 4, format, bits},
        {1, -1, 4, format, bits},   {2, 1, 4, format, bits},          {1, 1, 6, format, bits},
        {1, 1, 0, format, bits},    {1, 1, -4, format, bits},         {1, 1, 4, 0x21808, bits},
        {1, 1, 4, format, nullptr}, {0x40000001, 1, 4, format, bits},
    };

    for (const auto& each : cases) {
        std::uint8_t pixel[4] = {};
        GpMemoryBitmap stale(1, 1, 4, format, pixel);
        GpBitmap* image = &stale;
        EXPECT_EQ(GdipCreateBitmapFromScan0(each.width, each.height, each.stride, each.pixelFormat,
                                            each.scan0, &image),
                  InvalidParameter);
        EXPECT_EQ(image, nullptr);
    }
    EXPECT_EQ(GdipCreateBitmapFromScan0(1, 1, 4, format, bits, nullptr), InvalidParameter);
}

TEST(Gdiplus, DisposesOfNothing) {
    EXPECT_EQ(GdipDisposeImage(nullptr), InvalidParameter);
}

TEST_F(OnePixel, IsSaved) {
    const TemporaryFolder folder;
    EXPECT_EQ(Save(folder / "picture.png"), Ok);
    EXPECT_EQ(ReadPng(folder / "picture.png").bits, (std::vector<std::uint8_t>{1, 2, 3, 255}));
}

TEST_F(OnePixel, IsSavedOverAFileNamedWithBackslashes) {
    const TemporaryFolder folder;
    std::filesystem::create_directory(folder.Path() / "sub");
    const std::string path = folder.Write("sub/picture.png", "old");
    EXPECT_EQ(Save(folder / "sub\\picture.png"), Ok);
    EXPECT_EQ(ReadPng(path).width, 1);
}

TEST_F(OnePixel, IsNotSavedWithoutArguments) {
    const TemporaryFolder folder;
    const std::wstring path = win32::Utf8ToWide(folder / "picture.png");
    const auto* const parameters = reinterpret_cast<const EncoderParameters*>(m_pixel);
    EXPECT_EQ(GdipSaveImageToFile(nullptr, path.c_str(), &PngClass, nullptr), InvalidParameter);
    EXPECT_EQ(GdipSaveImageToFile(m_image, nullptr, &PngClass, nullptr), InvalidParameter);
    EXPECT_EQ(GdipSaveImageToFile(m_image, path.c_str(), nullptr, nullptr), InvalidParameter);
    EXPECT_EQ(GdipSaveImageToFile(m_image, path.c_str(), &PngClass, parameters), InvalidParameter);
    EXPECT_FALSE(std::filesystem::exists(folder / "picture.png"));
}

TEST_F(OnePixel, IsNotSavedByAnotherEncoder) {
    const TemporaryFolder folder;
    CLSID other = PngClass;
    other.Data1 ^= 1;
    const std::wstring path = win32::Utf8ToWide(folder / "picture.png");
    EXPECT_EQ(GdipSaveImageToFile(m_image, path.c_str(), &other, nullptr), UnknownImageFormat);
    EXPECT_FALSE(std::filesystem::exists(folder / "picture.png"));
}

TEST_F(OnePixel, IsNotSavedWhereNoFileCanBe) {
    const TemporaryFolder folder;
    EXPECT_EQ(Save(folder / "none/picture.png"), Win32Error);
    EXPECT_EQ(Save(folder.Path().string()), Win32Error);
    EXPECT_EQ(Save(""), Win32Error);
}

} // namespace
