// BMP files of every kind that is known, by the component that decodes them.
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "platform/com/ClassRegistry.h"
#include "platform/com/ComPtr.h"
#include "platform/wic/WinCodec.h"
#include "platform/win32/File.h"
#include "platform/win32/Text.h"
#include "tests/support/TemporaryFolder.h"

namespace {

std::string Little(std::uint32_t value, int bytes) {
    std::string text;
    for (int i = 0; i < bytes; ++i) {
        text += static_cast<char>(value >> 8 * i);
    }
    return text;
}

struct BmpShape {
    int width = 0;
    int height = 0; // negative: the top row first
    int bits = 24;
    std::uint32_t compression = 0;
    std::uint32_t headerBytes = 40;
};

// `behind` stands between the header and the pixels: palette or masks.
std::string Bmp(const BmpShape& shape, const std::string& behind, const std::string& pixels) {
    std::string header = Little(shape.headerBytes, 4);
    if (shape.headerBytes == 12) {
        header += Little(static_cast<std::uint32_t>(shape.width), 2) +
                  Little(static_cast<std::uint32_t>(shape.height), 2) + Little(1, 2) +
                  Little(static_cast<std::uint32_t>(shape.bits), 2);
    } else {
        header += Little(static_cast<std::uint32_t>(shape.width), 4) +
                  Little(static_cast<std::uint32_t>(shape.height), 4) + Little(1, 2) +
                  Little(static_cast<std::uint32_t>(shape.bits), 2) + Little(shape.compression, 4) +
                  std::string(20, '\0');
    }
    const std::string info = header + behind;
    return "BM" + std::string(8, '\0') + Little(static_cast<std::uint32_t>(14 + info.size()), 4) +
           info + pixels;
}

const std::string FourColours("\0\0\0\0\0\0\xFF\0\0\xFF\0\0\xFF\0\0\0",
                              16); // black, red, green, blue

// Letters of the colours above, rows apart; "?" for any other, and what failed where it did.
class BmpFile : public testing::Test {
protected:
    std::string Shown(const std::string& bytes) {
        std::vector<std::uint8_t> pixels;
        UINT width = 0;
        if (FAILED(Decode(bytes, pixels, width))) {
            return "failed";
        }
        std::string letters;
        for (std::size_t i = 0; i < pixels.size(); i += 4) {
            letters += i > 0 && i % (std::size_t{width} * 4) == 0 ? "/" : "";
            letters += LetterOf(pixels.data() + i);
        }
        return letters;
    }

    std::string FirstPixel(const std::string& bytes) {
        std::vector<std::uint8_t> pixels;
        UINT width = 0;
        if (FAILED(Decode(bytes, pixels, width))) {
            return "failed";
        }
        char text[9];
        std::snprintf(text, sizeof(text), "%02X%02X%02X%02X", pixels[0], pixels[1], pixels[2],
                      pixels[3]);
        return text;
    }

private:
    static char LetterOf(const std::uint8_t* pixel) {
        const int colour = pixel[0] << 16 | pixel[1] << 8 | pixel[2];
        return pixel[3] != 255      ? '?'
               : colour == 0        ? 'k'
               : colour == 0x0000FF ? 'r'
               : colour == 0x00FF00 ? 'g'
               : colour == 0xFF0000 ? 'b'
                                    : '?';
    }

    HRESULT Decode(const std::string& bytes, std::vector<std::uint8_t>& pixels, UINT& width) {
        com::ComPtr<IWICImagingFactory> factory;
        com::ComPtr<IWICBitmapDecoder> decoder;
        com::ComPtr<IWICBitmapFrameDecode> frame;
        com::ComPtr<IWICFormatConverter> converter;
        EXPECT_EQ(CoCreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_INPROC_SERVER,
                                   IID_IWICImagingFactory, factory.PutVoid()),
                  S_OK);
        EXPECT_EQ(factory->CreateFormatConverter(converter.Put()), S_OK);
        const auto path = win32::Utf8ToWide(m_folder.Write("a.bmp", bytes));
        HRESULT result = factory->CreateDecoderFromFilename(
            path.c_str(), nullptr, GENERIC_READ, WICDecodeMetadataCacheOnDemand, decoder.Put());
        if (FAILED(result)) {
            return result;
        }
        EXPECT_EQ(decoder->GetFrame(0, frame.Put()), S_OK);
        EXPECT_EQ(converter->Initialize(frame.Get(), GUID_WICPixelFormat32bppPBGRA,
                                        WICBitmapDitherTypeNone, nullptr, 0.0,
                                        WICBitmapPaletteTypeCustom),
                  S_OK);
        UINT height = 0;
        EXPECT_EQ(converter->GetSize(&width, &height), S_OK);
        pixels.resize(std::size_t{width} * height * 4);
        return converter->CopyPixels(nullptr, width * 4, width * height * 4, pixels.data());
    }

    TemporaryFolder m_folder;
};

TEST_F(BmpFile, RowsComeFromTheBottomUnlessTheHeightIsNegative) {
    const std::string rows("\0\0\xFF\0\0\xFF\0\0"  // red, red
                           "\0\xFF\0\0\xFF\0\0\0", // green, green
                           16);
    EXPECT_EQ(Shown(Bmp({2, 2}, "", rows)), "gg/rr");
    EXPECT_EQ(Shown(Bmp({2, -2}, "", rows)), "rr/gg");
}

TEST_F(BmpFile, IndicesOfEveryDepth) {
    EXPECT_EQ(Shown(Bmp({3, 1, 8}, FourColours, std::string("\1\2\3\0", 4))), "rgb");
    EXPECT_EQ(Shown(Bmp({3, 1, 4}, FourColours, std::string("\x12\x30\0\0", 4))), "rgb");
    EXPECT_EQ(Shown(Bmp({5, 1, 2}, FourColours, std::string("\x1B\x80\0\0", 4))), "krgbg");
    EXPECT_EQ(Shown(Bmp({9, 1, 1}, FourColours.substr(0, 8), std::string("\xA5\x80\0\0", 4))),
              "rkrkkrkrr");
    // What the palette does not reach is black.
    EXPECT_EQ(Shown(Bmp({3, 1, 8}, FourColours, std::string("\1\4\xFF\0", 4))), "rkk");
}

TEST_F(BmpFile, TheHeaderOfTwelveBytesHasColoursOfThree) {
    const std::string palette("\0\0\0\0\0\xFF\0\xFF\0\xFF\0\0", 12);
    EXPECT_EQ(Shown(Bmp({3, 1, 8, 0, 12}, palette, std::string("\1\2\3\0", 4))), "rgb");
    EXPECT_EQ(Shown(Bmp({1, 1, 24, 0, 12}, "", std::string("\0\0\xFF\0", 4))), "r");
    EXPECT_EQ(Shown(Bmp({1, 1, 32, 0, 12}, "", std::string("\0\0\xFF\0", 4))), "failed");
}

TEST_F(BmpFile, RunsOfEightBits) {
    const auto runs = [&](const std::string& codes, int width = 4) {
        return Shown(Bmp({width, 2, 8, 1}, FourColours, codes));
    };
    EXPECT_EQ(runs(std::string("\4\1\0\0\2\2\2\3\0\1", 10)), "ggbb/rrrr");
    // Three pixels as they are, filled up to two bytes.
    EXPECT_EQ(runs(std::string("\0\3\1\2\3\0\1\1\0\0\4\2\0\1", 14)), "gggg/rgbr");
    // A step of two to the right and one on; what it passes over is the first colour.
    EXPECT_EQ(runs(std::string("\1\1\0\2\2\1\1\2\0\1", 10)), "kkkg/rkkk");
    // Runs that leave the row, steps that leave the picture, data that end.
    EXPECT_EQ(runs(std::string("\xFF\1\0\0\xFF\2", 6)), "gggg/rrrr");
    EXPECT_EQ(runs(std::string("\0\2\xFF\xFF\4\1", 6)), "kkkk/kkkk");
    EXPECT_EQ(runs(std::string("\2\1", 2)), "kkkk/rrkk");
    EXPECT_EQ(runs(std::string("\0\x40\1\2", 4)), "kkkk/kkkk");
}

TEST_F(BmpFile, RunsOfFourBits) {
    const auto runs = [&](const std::string& codes) {
        return Shown(Bmp({5, 1, 4, 2}, FourColours, codes));
    };
    EXPECT_EQ(runs(std::string("\5\x12\0\1", 4)), "rgrgr");
    EXPECT_EQ(runs(std::string("\0\5\x12\x31\x20\0\0\1", 8)), "rgbrg");
    EXPECT_EQ(Shown(Bmp({5, 1, 8, 2}, FourColours, "")), "failed"); // of eight bits it is none
}

TEST_F(BmpFile, MasksTellTheChannels) {
    const std::string masks = Little(0xFF, 4) + Little(0xFF00, 4) + Little(0xFF0000, 4);
    EXPECT_EQ(FirstPixel(Bmp({1, 1, 32, 3}, masks, "\x10\x20\x30\x40")), "302010FF");
    // Alpha has a mask in longer headers alone, and multiplies.
    const std::string withAlpha = masks + Little(0xFF000000, 4);
    EXPECT_EQ(FirstPixel(Bmp({1, 1, 32, 3, 56}, withAlpha, "\x10\x20\x30\x80")), "18100880");
    EXPECT_EQ(FirstPixel(Bmp({1, 1, 32, 6}, withAlpha, "\x10\x20\x30\x80")), "18100880");
    const std::string fiveSixFive = Little(0xF800, 4) + Little(0x07E0, 4) + Little(0x001F, 4);
    EXPECT_EQ(FirstPixel(Bmp({1, 1, 16, 3}, fiveSixFive, Little(0xFFE0, 4))), "00FFFFFF");
    EXPECT_EQ(FirstPixel(Bmp({1, 1, 16}, "", Little(0x7C00, 4))), "0000FFFF");
    const std::string apart = Little(0xF0F, 4) + Little(0xF000, 4) + Little(0xF0000, 4);
    EXPECT_EQ(FirstPixel(Bmp({1, 1, 32, 3}, apart, "abcd")), "failed");
}

TEST_F(BmpFile, RowsThatAreMissingFail) {
    const std::string row("\0\0\xFF\0\0\xFF\0\0", 8);
    EXPECT_EQ(Shown(Bmp({2, 2}, "", row)), "failed");
    EXPECT_EQ(Shown(Bmp({2, 2}, "", row + row.substr(0, 5))), "failed");
    EXPECT_EQ(Shown(Bmp({2, 2}, "", row + row.substr(0, 6))), "rr/rr"); // but for what fills it up
}

TEST_F(BmpFile, HeadersThatMakeNoSenseFail) {
    const std::string pixels(64, '\0');
    EXPECT_EQ(Shown(Bmp({0, 1}, "", pixels)), "failed");
    EXPECT_EQ(Shown(Bmp({1, 0}, "", pixels)), "failed");
    EXPECT_EQ(Shown(Bmp({-1, 1}, "", pixels)), "failed");
    EXPECT_EQ(Shown(Bmp({1, INT32_MIN}, "", pixels)), "failed");
    EXPECT_EQ(Shown(Bmp({1, 1, 3}, "", pixels)), "failed");
    EXPECT_EQ(Shown(Bmp({1, 1, 24, 4}, "", pixels)), "failed"); // JPEG inside
    EXPECT_EQ(Shown(Bmp({1, 1, 24, 0, 41}, "", "")), "failed"); // ends within its header
    EXPECT_EQ(Shown(Bmp({1, 1, 24, 0, 16}, "", pixels)), "failed");
    EXPECT_EQ(Shown(Bmp({65537, 1}, "", pixels)), "failed");
    EXPECT_EQ(Shown(Bmp({65536, 2049}, "", pixels)), "failed");
}

} // namespace
