#include <filesystem>
#include <stdexcept>
#include <vector>

#include <gtest/gtest.h>

#include "platform/wic/Gdiplus.h"
#include "tests/support/PngPicture.h"
#include "tests/support/TemporaryFolder.h"
#include "zanthe/core/Bitmap.h"

using Zanthe::Bitmap;

namespace {

// The list of encoders for the length of a scope.
class EncodersAre {
public:
    explicit EncodersAre(std::vector<Gdiplus::ImageCodecInfo> encoders)
        : m_before(Gdiplus::SetImageEncoders(std::move(encoders))) {}

    EncodersAre(const EncodersAre&) = delete;
    EncodersAre& operator=(const EncodersAre&) = delete;

    ~EncodersAre() { Gdiplus::SetImageEncoders(m_before); }

    const std::vector<Gdiplus::ImageCodecInfo>& Before() const { return m_before; }

private:
    std::vector<Gdiplus::ImageCodecInfo> m_before;
};

Gdiplus::ImageCodecInfo Encoder(const wchar_t* mimeType) {
    Gdiplus::ImageCodecInfo codec{};
    codec.Clsid = CLSID{1, 2, 3, {4}};
    codec.MimeType = mimeType;
    return codec;
}

std::string FailureOf(const Bitmap& bitmap, const std::string& path) {
    try {
        bitmap.SavePNG(path);
    } catch (const std::runtime_error& error) {
        return error.what();
    }
    return "no failure";
}

std::string CouldNotSave(const std::string& path) {
    return "Couldn't save PNG to filePath = " + path;
}

std::size_t FilesIn(const TemporaryFolder& folder) {
    const std::filesystem::directory_iterator files(folder.Path());
    return static_cast<std::size_t>(std::distance(begin(files), end(files)));
}

TEST(BitmapSavePng, KeepsEveryPixelWithItsAlpha) {
    const TemporaryFolder folder;
    std::vector<unsigned char> bits;
    for (int i = 0; i < 5 * 3 * 4; ++i) {
        bits.push_back(static_cast<unsigned char>(i * 37));
    }
    const std::string path = folder / "picture.png";
    Bitmap(5, 3, false, bits.data()).SavePNG(path);

    const PngPicture read = ReadPng(path);
    EXPECT_EQ(read.width, 5);
    EXPECT_EQ(read.height, 3);
    EXPECT_EQ(read.bits, bits);
}

TEST(BitmapSavePng, BytesAreBlueGreenRedAlpha) {
    const TemporaryFolder folder;
    unsigned char red[] = {0, 0, 255, 255};
    const std::string path = folder / "red.png";
    Bitmap(1, 1, false, red).SavePNG(path);
    EXPECT_EQ(ReadPng(path).bits, (std::vector<std::uint8_t>{0, 0, 255, 255}));
}

TEST(BitmapSavePng, IsEightBitTrueColourWithAlpha) {
    const TemporaryFolder folder;
    const std::string path = folder / "picture.png";
    Bitmap bitmap(2, 2, false);
    bitmap.ZeroOutBits();
    bitmap.SavePNG(path);
    const std::string bytes = ReadWholeFile(path);
    ASSERT_GT(bytes.size(), 26u);
    EXPECT_EQ(bytes.substr(0, 8), "\x89PNG\r\n\x1a\n");
    EXPECT_EQ(bytes[24], 8); // bits a channel
    EXPECT_EQ(bytes[25], 6); // RGB with alpha
}

TEST(BitmapSavePng, PremultipliedColoursAreDividedByTheirAlpha) {
    const TemporaryFolder folder;
    unsigned char bits[] = {
        10,  20,  30,  255, // opaque: as it is
        64,  32,  128, 128, // 127.5, 63.75, 255
        1,   2,   3,   3,   // 85, 170, 255
        50,  60,  70,  0,   // cannot be seen
        200, 100, 0,   100, // brighter than its alpha
        0,   0,   0,   1,
    };
    const std::string path = folder / "premultiplied.png";
    Bitmap(3, 2, true, bits).SavePNG(path);
    const std::vector<std::uint8_t> straight = {
        10, 20, 30, 255, 128, 64,  255, 128, 85, 170, 255, 3, //
        0,  0,  0,  0,   255, 255, 0,   100, 0,  0,   0,   1,
    };
    EXPECT_EQ(ReadPng(path).bits, straight);
    EXPECT_EQ(bits[4], 64); // the bitmap keeps its own
}

TEST(BitmapSavePng, StraightColoursAreKeptWhereNothingShows) {
    const TemporaryFolder folder;
    unsigned char bits[] = {50, 60, 70, 0};
    const std::string path = folder / "straight.png";
    Bitmap(1, 1, false, bits).SavePNG(path);
    EXPECT_EQ(ReadPng(path).bits, (std::vector<std::uint8_t>{50, 60, 70, 0}));
}

TEST(BitmapSavePng, ReplacesAFile) {
    const TemporaryFolder folder;
    const std::string path = folder.Write("picture.png", std::string(100000, 'x'));
    Bitmap bitmap(1, 1, false);
    bitmap.ZeroOutBits();
    bitmap.SavePNG(path);
    EXPECT_EQ(ReadPng(path).width, 1);
    EXPECT_EQ(FilesIn(folder), 1u);
}

TEST(BitmapSavePng, TakesAnyFileName) {
    const TemporaryFolder folder;
    Bitmap bitmap(1, 1, false);
    bitmap.ZeroOutBits();
    for (const char* name : {"gr\xC3\xBC\xC3\x9F"
                             "e \xF0\x9F\x8E\xAC.png",
                             "latin\xE9.png"}) {
        bitmap.SavePNG(folder / name);
        EXPECT_EQ(ReadPng(folder / name).width, 1);
    }
}

TEST(BitmapSavePng, WithoutAnEncoder) {
    const TemporaryFolder folder;
    const Bitmap bitmap(1, 1, false);
    const EncodersAre none({});
    EXPECT_EQ(FailureOf(bitmap, folder / "picture.png"), "Couldn't find png encoder");
    EXPECT_EQ(FilesIn(folder), 0u);
}

TEST(BitmapSavePng, WithEncodersForOtherTypesOnly) {
    const TemporaryFolder folder;
    const Bitmap bitmap(1, 1, false);
    const EncodersAre others({Encoder(L"image/bmp"), Encoder(nullptr), Encoder(L"image/PNG"),
                              Encoder(L"image/png2"), Encoder(L"image/pn")});
    EXPECT_EQ(FailureOf(bitmap, folder / "picture.png"), "Couldn't find png encoder");
}

TEST(BitmapSavePng, FindsTheEncoderBehindOthers) {
    const TemporaryFolder folder;
    Bitmap bitmap(1, 1, false);
    bitmap.ZeroOutBits();
    const EncodersAre none({});
    const EncodersAre list({Encoder(L"image/bmp"), none.Before().at(0), Encoder(L"image/png")});
    bitmap.SavePNG(folder / "picture.png");
    EXPECT_EQ(ReadPng(folder / "picture.png").width, 1);
}

TEST(BitmapSavePng, TakesTheFirstPngEncoder) {
    const TemporaryFolder folder;
    Bitmap bitmap(1, 1, false);
    const EncodersAre none({});
    const EncodersAre list({Encoder(L"image/png"), none.Before().at(0)});
    const std::string path = folder / "picture.png";
    EXPECT_EQ(FailureOf(bitmap, path), CouldNotSave(path)); // no such class
}

TEST(BitmapSavePng, IntoAFolderThatIsNotThere) {
    const TemporaryFolder folder;
    const std::string path = folder / "none/picture.png";
    EXPECT_EQ(FailureOf(Bitmap(1, 1, false), path), CouldNotSave(path));
}

TEST(BitmapSavePng, OverAFolder) {
    const TemporaryFolder folder;
    const std::string path = folder.Path().string();
    EXPECT_EQ(FailureOf(Bitmap(1, 1, false), path), CouldNotSave(path));
    EXPECT_TRUE(std::filesystem::is_directory(path));
}

TEST(BitmapSavePng, ToNoPath) {
    EXPECT_EQ(FailureOf(Bitmap(1, 1, false), ""), CouldNotSave(""));
}

TEST(BitmapSavePng, ToADeviceThatIsFull) {
    EXPECT_EQ(FailureOf(Bitmap(64, 64, false), "/dev/full"), CouldNotSave("/dev/full"));
}

TEST(BitmapSavePng, WithoutPixelsOrBits) {
    const TemporaryFolder folder;
    const std::string path = folder.Write("picture.png", "as it was");
    Bitmap released(2, 2, false);
    released.ReleaseBits();
    unsigned char bits[16] = {};
    EXPECT_EQ(FailureOf(released, path), CouldNotSave(path));
    EXPECT_EQ(FailureOf(Bitmap(0, 0, false), path), CouldNotSave(path));
    EXPECT_EQ(FailureOf(Bitmap(0, 2, false), path), CouldNotSave(path));
    EXPECT_EQ(FailureOf(Bitmap(2, -2, false, bits), path), CouldNotSave(path));
    EXPECT_EQ(FailureOf(Bitmap(0x7FFFFFFF, 1, false, bits), path), CouldNotSave(path));
    EXPECT_EQ(ReadWholeFile(path), "as it was");
}

// libpng refuses the width only when it writes.
TEST(BitmapSavePng, AFailureOnTheWayLeavesNoFile) {
    const TemporaryFolder folder;
    const std::string fresh = folder / "fresh.png";
    const std::string old = folder.Write("old.png", "as it was");
    for (const bool preMultiplied : {false, true}) {
        Bitmap wide(1000001, 1, preMultiplied);
        wide.ZeroOutBits();
        EXPECT_EQ(FailureOf(wide, fresh), CouldNotSave(fresh));
        EXPECT_EQ(FailureOf(wide, old), CouldNotSave(old));
    }
    EXPECT_EQ(FilesIn(folder), 1u);
    EXPECT_EQ(ReadWholeFile(old), "as it was");
}

} // namespace
