#include <filesystem>
#include <functional>
#include <memory>
#include <stdexcept>
#include <system_error>

#include <boost/make_shared.hpp>
#include <gtest/gtest.h>

#include "platform/win32/Text.h"
#include "tests/support/GifBytes.h"
#include "tests/support/PngBytes.h"
#include "tests/support/StillPictures.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestMedia.h"
#include "tests/support/TiffBytes.h"
#include "zanthe/detection/DSMediaDetException.h"
#include "zanthe/images/WICImageHelper.h"
#include "zanthe/images/WICImageLoader.h"
#include "zanthe/images/WICImageReader.h"

namespace Zanthe {
namespace {

constexpr int Most = WICImageHelper::DEFAULT_MAX_DECODING_DIMENSION;

BgraPicture Loaded(const std::string& path, int maxDimension = Most) {
    WICImageLoader loader(win32::Utf8ToWide(path), maxDimension);
    loader.Load(0.0, 0, 0);
    EXPECT_TRUE(loader.GetBitmap()->GetPreMultipliedAlpha());
    return PictureOf(*loader.GetBitmap());
}

std::string FailureOf(const std::function<void()>& call) {
    try {
        call();
    } catch (const DSMediaDetException& failure) {
        return std::string("detection: ") + failure.what();
    } catch (const std::runtime_error& failure) {
        return failure.what();
    }
    return "none";
}

std::string Image(const std::string& name) {
    return MadeMedia("images/" + name);
}

TEST(WICImageLoader, CapsALargeJpeg) {
    WICImageLoader loader(win32::Utf8ToWide(Image("large.jpg")), Most);
    EXPECT_EQ(loader.GetWidth(), 4096);
    EXPECT_EQ(loader.GetHeight(), 2458); // 3000 * 4096 / 5000, to the nearest
    EXPECT_EQ(loader.GetBitmap(), nullptr);
    loader.Load(7.5, 3, 4);
    ASSERT_NE(loader.GetBitmap(), nullptr);
    EXPECT_EQ(loader.GetBitmap()->GetWidth(), 4096);
    EXPECT_EQ(loader.GetBitmap()->GetHeight(), 2458);
}

TEST(WICImageLoader, CapsTheHeightToo) {
    const BgraPicture picture = Loaded(Image("tall.jpg"));
    EXPECT_EQ(picture.width, 819);
    EXPECT_EQ(picture.height, 4096);
}

// A picture that shrinks a lot is decoded smaller first; what comes out is the same picture.
TEST(WICImageLoader, DecodingSmallerShowsTheSamePicture) {
    const BgraPicture straight = Loaded(Image("huge.jpg"), 9000);
    const BgraPicture small = Loaded(Image("huge.jpg"), 1000);
    EXPECT_EQ(straight.width, 9000);
    EXPECT_EQ(straight.height, 300);
    EXPECT_EQ(small.width, 1000);
    EXPECT_EQ(small.height, 33);
    // The left third is one flat colour in each: compare well within it.
    EXPECT_EQ(PixelText(straight, 20, 5).substr(6), "FF");
    BgraPicture averaged{1000, 33, std::vector<std::uint8_t>(std::size_t{4} * 1000 * 33)};
    for (std::size_t y = 0; y < 33; ++y) {
        for (std::size_t x = 0; x < 1000; ++x) {
            for (std::size_t band = 0; band < 4; ++band) {
                int sum = 0;
                for (std::size_t i = 0; i < 81; ++i) {
                    const std::size_t row = std::min<std::size_t>(299, y * 300 / 33 + i / 9);
                    sum += straight.bits[(row * 9000 + x * 9 + i % 9) * 4 + band];
                }
                averaged.bits[(y * 1000 + x) * 4 + band] = static_cast<std::uint8_t>(sum / 81);
            }
        }
    }
    EXPECT_GT(Psnr(averaged, small), 25);
}

TEST(WICImageLoader, EveryCappedSizeComesOutExactly) {
    for (const int most : {1, 2, 3, 7, 13, 29, 30, 42, 43, 44, 60, 61, 62}) {
        int width = 61;
        int height = 43;
        WICImageHelper::GetCappedImageSize(width, height, most);
        const BgraPicture picture = Loaded(Image("rgba.png"), most);
        EXPECT_EQ(picture.width, width) << most;
        EXPECT_EQ(picture.height, height) << most;
    }
}

// Scaling never leaves a colour that its alpha does not allow.
TEST(WICImageLoader, ScaledPicturesStayPremultiplied) {
    const BgraPicture picture = Loaded(Image("large-alpha.png"));
    EXPECT_EQ(picture.width, 4096);
    for (std::size_t i = 0; i < picture.bits.size(); i += 4) {
        ASSERT_LE(picture.bits[i], picture.bits[i + 3]) << i;
        ASSERT_LE(picture.bits[i + 1], picture.bits[i + 3]) << i;
        ASSERT_LE(picture.bits[i + 2], picture.bits[i + 3]) << i;
    }
}

// What is premultiplied BGRA already is not capped, whatever GetWidth says. Hosts know it so.
TEST(WICImageLoader, APremultipliedPictureIsNotCapped) {
    const TemporaryFolder folder;
    std::string row;
    for (int x = 0; x < 5000; ++x) {
        const int alpha = x % 256;
        row += {static_cast<char>(alpha / 2), static_cast<char>(alpha), '\0',
                static_cast<char>(alpha)};
    }
    const std::string path = folder.Write("p.tiff", TiffOfRows(5000, 3000, row, true));
    WICImageLoader loader(win32::Utf8ToWide(path), Most);
    EXPECT_EQ(loader.GetWidth(), 4096);
    EXPECT_EQ(loader.GetHeight(), 2458);
    loader.Load(0, 0, 0);
    const BgraPicture picture = PictureOf(*loader.GetBitmap());
    EXPECT_EQ(picture.width, 5000);
    EXPECT_EQ(picture.height, 3000);
    EXPECT_EQ(PixelText(picture, 255, 2999), "00FF7FFF");
    EXPECT_EQ(PixelText(picture, 256, 1500), "00000000");
    for (int x = 0; x < 512; ++x) {
        const auto at = static_cast<std::size_t>(x) * 4;
        EXPECT_EQ(picture.bits[at + 2], x % 256 / 2) << x;
        EXPECT_EQ(picture.bits[at + 1], x % 256) << x;
        EXPECT_EQ(picture.bits[at + 3], x % 256) << x;
    }
    const std::string straight = folder.Write("s.tiff", TiffOfRows(5000, 3000, row, false));
    EXPECT_EQ(Loaded(straight).width, 4096);
}

// Every colour under every alpha that allows it.
std::string AllPremultiplied() {
    std::string pixels;
    for (int alpha = 0; alpha < 256; ++alpha) {
        for (int colour = 0; colour <= alpha; ++colour) {
            pixels += {static_cast<char>(colour), static_cast<char>(alpha - colour),
                       static_cast<char>(colour / 2), static_cast<char>(alpha)};
        }
    }
    return pixels;
}

TEST(WICImageLoader, ColoursThatAreMultipliedComeAsTheyAreStored) {
    const TemporaryFolder folder;
    const std::string pixels = AllPremultiplied();
    const int width = static_cast<int>(pixels.size() / 4);
    for (const auto form :
         {TiffBytes::Form::Little, TiffBytes::Form::Big, TiffBytes::Form::BigTiff}) {
        TiffBytes tiff(width, 1, {8, 8, 8, 8}, pixels, form);
        const std::string path =
            folder.Write("p.tiff", tiff.Set(TiffBytes::ExtraSamples, {1}).Bytes());
        const BgraPicture picture = Loaded(path);
        ASSERT_EQ(picture.width, width); // not capped
        for (std::size_t i = 0; i < pixels.size(); i += 4) {
            const auto stored = [&](std::size_t band) {
                return static_cast<std::uint8_t>(pixels[i + band]);
            };
            ASSERT_EQ(picture.bits[i], stored(2)) << i;
            ASSERT_EQ(picture.bits[i + 1], stored(1)) << i;
            ASSERT_EQ(picture.bits[i + 2], stored(0)) << i;
            ASSERT_EQ(picture.bits[i + 3], stored(3)) << i;
        }
    }
}

// 16 bits and gray need a conversion, but none by alpha; and so they are capped.
TEST(WICImageLoader, OtherMultipliedColoursAreNotMultipliedAgain) {
    const TemporaryFolder folder;
    const auto first = [&](TiffBytes tiff) {
        return PixelText(
            Loaded(folder.Write("p.tiff", tiff.Set(TiffBytes::ExtraSamples, {1}).Bytes())), 0, 0);
    };
    EXPECT_EQ(first(TiffBytes(1, 1, {8, 8}, "\x33\x81")), "33333381");
    EXPECT_EQ(first(TiffBytes(1, 1, {16, 16}, "\x33\x33\x81\x81")), "33333381");
    EXPECT_EQ(first(TiffBytes(1, 1, {16, 16, 16, 16}, "\x11\x11\x22\x22\x33\x33\x81\x81")),
              "33221181");
    // A colour above its alpha is none: it is cut.
    EXPECT_EQ(first(TiffBytes(1, 1, {8, 8}, "\x99\x81")), "81818181");
    std::string row;
    for (int x = 0; x < 60; ++x) {
        row += "\x33\x81";
    }
    TiffBytes wide(60, 1, {8, 8}, row);
    const BgraPicture capped =
        Loaded(folder.Write("w.tiff", wide.Set(TiffBytes::ExtraSamples, {1}).Bytes()), 30);
    EXPECT_EQ(capped.width, 30);
    EXPECT_EQ(PixelText(capped, 15, 0), "33333381");
}

// As libtiff, which reads the pixels, takes it.
TEST(WICImageLoader, OfTwoEntriesOfOneTagTheFirstCounts) {
    const TemporaryFolder folder;
    TiffBytes tiff(1, 1, {8, 8, 8, 8}, "\x40\x40\x40\x80");
    const auto pixel = [&](std::uint32_t firstKind, std::uint32_t secondKind) {
        tiff.Set(TiffBytes::ExtraSamples, {firstKind});
        tiff.Repeat(TiffBytes::ExtraSamples, {secondKind});
        return PixelText(Loaded(folder.Write("a.tiff", tiff.Bytes())), 0, 0);
    };
    EXPECT_EQ(pixel(1, 2), "40404080");
    EXPECT_EQ(pixel(2, 1), "20202080");
}

// libvips would show them as if they were red, green and blue.
TEST(WICImageLoader, LumaAndChromaThatStaySoAreRefused) {
    const TemporaryFolder folder;
    for (const auto form :
         {TiffBytes::Form::Little, TiffBytes::Form::Big, TiffBytes::Form::BigTiff}) {
        constexpr std::uint32_t lumaAndChroma = 6;
        TiffBytes tiff(1, 1, {8, 8, 8}, "\x40\x80\x80", form);
        EXPECT_EQ(PixelText(Loaded(folder.Write("a.tiff", tiff.Bytes())), 0, 0), "808040FF");
        const std::string path =
            folder.Write("a.tiff", tiff.Set(TiffBytes::Photometric, {lumaAndChroma}).Bytes());
        EXPECT_EQ(FailureOf([&] { Loaded(path); }), "detection: Unable to create decoder");
    }
}

// Only JPEG has an orientation here.
TEST(WICImageLoader, OtherFormatsAreNotTurned) {
    const TemporaryFolder folder;
    TiffBytes tiff(2, 1, {8, 8, 8}, "\1\2\3\4\5\6");
    const BgraPicture picture =
        Loaded(folder.Write("a.tiff", tiff.Set(TiffBytes::Orientation, {6}).Bytes()));
    EXPECT_EQ(picture.width, 2);
    EXPECT_EQ(picture.height, 1);
    EXPECT_EQ(PixelText(picture, 0, 0), "030201FF");
}

// Not on a screen, and not with a frame behind it.
TEST(WICImageLoader, AGifShowsItsFirstFrameAsItIsStored) {
    const TemporaryFolder folder;
    const std::string path = folder.Write("a.gif", GifBytes(10, 10)
                                                       .Control(10, 1, 7)
                                                       .Frame(3, 2, 2, 3, {1, 7, 2, 2, 3, 4})
                                                       .Frame(0, 0, 10, 10, 5)
                                                       .Bytes());
    const BgraPicture picture = Loaded(path);
    ASSERT_EQ(picture.width, 2);
    ASSERT_EQ(picture.height, 3);
    EXPECT_EQ(PixelText(picture, 0, 0), "0000FFFF");
    EXPECT_EQ(PixelText(picture, 1, 0), "00000000");
    EXPECT_EQ(PixelText(picture, 1, 1), "00FF00FF");
    EXPECT_EQ(PixelText(picture, 0, 2), "FF0000FF");
    EXPECT_EQ(PixelText(picture, 1, 2), "00FFFFFF");
}

TEST(WICImageLoader, AGifIsCapped) {
    const TemporaryFolder folder;
    const std::string path = folder.Write("a.gif", GifBytes(1, 1).Frame(0, 0, 60, 20, 4).Bytes());
    WICImageLoader loader(win32::Utf8ToWide(path), 30);
    EXPECT_EQ(loader.GetWidth(), 30);
    EXPECT_EQ(loader.GetHeight(), 10);
    loader.Load(0, 0, 0);
    const BgraPicture picture = PictureOf(*loader.GetBitmap());
    ASSERT_EQ(picture.width, 30);
    ASSERT_EQ(picture.height, 10);
    EXPECT_EQ(PixelText(picture, 15, 5), "00FFFFFF");
}

TEST(WICImageLoader, AGifWithoutAFrameIsNoBitmap) {
    const TemporaryFolder folder;
    WICImageLoader loader(win32::Utf8ToWide(folder.Write("a.gif", GifBytes(4, 4).Bytes())), Most);
    EXPECT_EQ(loader.GetWidth(), 0);
    EXPECT_EQ(loader.GetHeight(), 0);
    EXPECT_EQ(FailureOf([&] { loader.Load(0, 0, 0); }), "WICImageLoader: Couldn't load a bitmap");
}

// In both codings that HEIF is mostly met with.
TEST(WICImageLoader, HeifIsShown) {
    const BgraPicture original = Loaded(Image("rgb24.png"));
    for (const char* name : {"photo.heic", "photo.avif"}) {
        const BgraPicture picture = Loaded(Image(name));
        ASSERT_EQ(picture.width, 61) << name;
        ASSERT_EQ(picture.height, 43) << name;
        EXPECT_GT(Psnr(picture, original), 24) << name;
        EXPECT_EQ(Loaded(Image(name), 30).width, 30) << name;
    }
}

TEST(WICImageLoader, TurnsByTheOrientationOfTheCamera) {
    const TemporaryFolder folder;
    const std::string jpeg = ReadWholeFile(Image("upright.jpg"));
    const BgraPicture stored = Loaded(Image("upright.jpg"));
    ASSERT_EQ(stored.width, 100);
    ASSERT_EQ(stored.height, 200);
    for (int orientation = 0; orientation <= 9; ++orientation) {
        const std::string path = folder.Write("o.jpg", WithOrientation(jpeg, orientation));
        const BgraPicture expected = Upright(stored, orientation <= 8 ? orientation : 1);
        WICImageLoader loader(win32::Utf8ToWide(path), Most);
        EXPECT_EQ(loader.GetWidth(), expected.width) << orientation;
        EXPECT_EQ(loader.GetHeight(), expected.height) << orientation;
        loader.Load(0, 0, 0);
        EXPECT_EQ(LargestDifference(PictureOf(*loader.GetBitmap()), expected), 0) << orientation;
    }
}

TEST(WICImageLoader, CapsWhatItTurns) {
    const TemporaryFolder folder;
    const std::string path =
        folder.Write("o.jpg", WithOrientation(ReadWholeFile(Image("large.jpg")), 6));
    WICImageLoader loader(win32::Utf8ToWide(path), Most);
    EXPECT_EQ(loader.GetWidth(), 2458);
    EXPECT_EQ(loader.GetHeight(), 4096);
    loader.Load(0, 0, 0);
    const BgraPicture upright = Upright(Loaded(Image("large.jpg")), 6);
    EXPECT_EQ(LargestDifference(PictureOf(*loader.GetBitmap()), upright), 0);
}

TEST(WICImageLoader, ResizeChangesNothing) {
    WICImageLoader loader(win32::Utf8ToWide(Image("rgba.png")), Most);
    EXPECT_FALSE(loader.IsVectorResizable());
    loader.Resize(10, 10);
    EXPECT_EQ(loader.GetBitmap(), nullptr);
    loader.Load(0, 0, 0);
    const auto bitmap = loader.GetBitmap();
    loader.Resize(10, 10);
    EXPECT_EQ(loader.GetBitmap(), bitmap);
    EXPECT_EQ(loader.GetWidth(), 61);
    EXPECT_EQ(loader.GetHeight(), 43);
}

TEST(WICImageLoader, ASecondLoadDecodesAnew) {
    WICImageLoader loader(win32::Utf8ToWide(Image("rgba.png")), Most);
    loader.Load(0, 0, 0);
    const auto first = loader.GetBitmap();
    loader.Load(0, 0, 0);
    EXPECT_NE(loader.GetBitmap(), first);
    EXPECT_EQ(LargestDifference(PictureOf(*loader.GetBitmap()), PictureOf(*first)), 0);
}

// The file stays open: what replaces it in its folder is another file.
TEST(WICImageLoader, TheFileStaysOpen) {
    const TemporaryFolder folder;
    const std::string path = folder.Write("a.png", ReadWholeFile(Image("rgba.png")));
    WICImageLoader loader(win32::Utf8ToWide(path), Most);
    std::filesystem::remove(path);
    loader.Load(0, 0, 0);
    EXPECT_EQ(loader.GetBitmap()->GetWidth(), 61);
}

// How many of this process's open files lie in the folder.
std::size_t OpenIn(const TemporaryFolder& folder) {
    std::size_t count = 0;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
        std::error_code none;
        const std::string target = std::filesystem::read_symlink(entry.path(), none).string();
        count += target.starts_with(folder.Path().string() + '/');
    }
    return count;
}

TEST(WICImageLoader, TheFileIsGivenBackWithTheLoader) {
    const TemporaryFolder folder;
    for (const char* name : {"upright.jpg", "rgba64be.png", "rgba.tiff", "alpha.webp", "cmyk.jpg",
                             "interlaced.png", "bgr24.bmp"}) {
        const std::string path = folder.Write(name, ReadWholeFile(Image(name)));
        for (const int most : {Most, 20}) {
            auto loader = std::make_unique<WICImageLoader>(win32::Utf8ToWide(path), most);
            EXPECT_EQ(OpenIn(folder), 1U) << name;
            loader->Load(0, 0, 0);
            EXPECT_EQ(OpenIn(folder), 1U) << name;
            loader.reset();
            EXPECT_EQ(OpenIn(folder), 0U) << name;
        }
    }
}

TEST(WICImageLoader, WhatIsNoPictureHasNoDecoder) {
    const TemporaryFolder folder;
    const auto open = [](const std::string& path) {
        return FailureOf([&] { WICImageLoader(win32::Utf8ToWide(path), Most); });
    };
    const std::string text = "detection: Unable to create decoder";
    EXPECT_EQ(open(folder / "missing.png"), text);
    EXPECT_EQ(open(folder.Path().string()), text);
    EXPECT_EQ(open(folder.Write("empty.png", "")), text);
    EXPECT_EQ(open(folder.Write("text.png", "no picture at all, only some text")), text);
    EXPECT_EQ(open(folder.Write("cut.png", "\x89PNG\r\n\x1A\n")), text);
    EXPECT_EQ(open(folder.Write("cut.gif", "GIF89a")), text);
    EXPECT_EQ(open(folder.Write("cut.bmp", "BM")), text);
    EXPECT_EQ(open(folder.Write("a.svg", "<svg xmlns='http://www.w3.org/2000/svg' width='9' "
                                         "height='9'><rect width='9' height='9'/></svg>")),
              text);
    EXPECT_EQ(open(folder.Write("a.ppm", "P6 1 1 255\nabc")), text);
}

// Pixels are counted in the header, before anything is decoded.
TEST(WICImageLoader, TooManyPixelsAreRefusedAtOnce) {
    const TemporaryFolder folder;
    const auto open = [](const std::string& path) {
        return FailureOf([&] { WICImageLoader(win32::Utf8ToWide(path), Most); });
    };
    const std::string text = "detection: Unable to create decoder";
    std::string jpeg = ReadWholeFile(Image("gray.jpg"));
    const std::size_t frame = jpeg.find("\xFF\xC0");
    ASSERT_NE(frame, std::string::npos);
    jpeg.replace(frame + 5, 4, "\xFF\xF0\xFF\xF0");
    EXPECT_EQ(open(folder.Write("bomb.jpg", jpeg)), text);
    std::string bmp = ReadWholeFile(Image("bgr24.bmp"));
    bmp.replace(18, 8, std::string("\0\0\1\0\0\0\1\0", 8));
    EXPECT_EQ(open(folder.Write("bomb.bmp", bmp)), text);
    EXPECT_EQ(open(folder.Write("bomb.tiff", TiffOfRows(60000, 60000, "abcd", false))), text);
}

// So are rows of which a few take more memory than other pictures, and planes that are only to be
// put together when all of them are there.
TEST(WICImageLoader, RowsThatAreTooLongAreRefusedAtOnce) {
    const TemporaryFolder folder;
    const auto open = [](const std::string& path) {
        return FailureOf([&] { WICImageLoader(win32::Utf8ToWide(path), Most); });
    };
    const std::string text = "detection: Unable to create decoder";
    const auto png = [&](int width) {
        return open(folder.Write("a.png", PngBytes({width, 1, 6, 16}, "")));
    };
    EXPECT_EQ(png(131072), "none");
    EXPECT_EQ(png(131073), text);
    for (const auto form :
         {TiffBytes::Form::Little, TiffBytes::Form::Big, TiffBytes::Form::BigTiff}) {
        const auto tiff = [&](int height, std::uint32_t planes, std::uint32_t rows) {
            const std::string pixels(1000, 'a');
            TiffBytes bytes(16384, height, {16, 16, 16, 16}, pixels, form);
            bytes.Set(TiffBytes::Planes, {planes}).Set(TiffBytes::Compression, {5});
            return open(folder.Write("a.tiff", bytes.Set(TiffBytes::RowsPerStrip, {rows}).Bytes()));
        };
        EXPECT_EQ(tiff(16384, 1, 16384), "none");
        EXPECT_EQ(tiff(4096, 2, 4096), "none");
        EXPECT_EQ(tiff(4097, 2, 4097), text);
        EXPECT_EQ(tiff(4097, 2, 65535), text);
    }
}

TEST(WICImageLoader, ADamagedPictureIsNoBitmap) {
    const TemporaryFolder folder;
    const std::string png = ReadWholeFile(Image("rgba64be.png"));
    const std::string path = folder.Write("cut.png", png.substr(0, png.size() / 2));
    WICImageLoader loader(win32::Utf8ToWide(path), Most);
    EXPECT_EQ(loader.GetWidth(), 61);
    EXPECT_EQ(FailureOf([&] { loader.Load(0, 0, 0); }), "WICImageLoader: Couldn't load a bitmap");
    EXPECT_EQ(loader.GetBitmap(), nullptr);
}

// As everywhere, what there is of a photo is shown.
TEST(WICImageLoader, AJpegThatWasCutOffShowsItsTop) {
    const TemporaryFolder folder;
    const std::string jpeg = ReadWholeFile(Image("upright.jpg"));
    const BgraPicture whole = Loaded(Image("upright.jpg"));
    const BgraPicture cut = Loaded(folder.Write("cut.jpg", jpeg.substr(0, jpeg.size() / 2)));
    ASSERT_EQ(cut.height, whole.height);
    const std::ptrdiff_t top = std::ptrdiff_t{4} * 40 * 100;
    EXPECT_TRUE(std::equal(cut.bits.begin(), cut.bits.begin() + top, whole.bits.begin()));
    EXPECT_NE(cut.bits, whole.bits);
}

TEST(WICImageLoader, NamesThatAreNotUtf8Open) {
    const TemporaryFolder folder;
    const std::string path = folder.Write("\xFF\x80.png", ReadWholeFile(Image("gray.png")));
    EXPECT_EQ(Loaded(path).width, 61);
}

// A reader that fails without an exception.
class ClosedReader : public WICImageReader {
public:
    ClosedReader()
        : WICImageReader(L"") {}

    void Open() override {}
};

class LoaderOf : public WICImageLoader {
public:
    explicit LoaderOf(const CStringW& path)
        : WICImageLoader(path, Most, WithoutReader()) {}

    using WICImageLoader::OpenReader;
};

TEST(WICImageLoader, AReaderThatIsNotOpen) {
    const auto open = [](const std::string& path, boost::shared_ptr<WICImageReader> reader) {
        return FailureOf([&] { LoaderOf(win32::Utf8ToWide(path)).OpenReader(std::move(reader)); });
    };
    const std::string exists = "Can't create WICImagerReader";
    const std::string missing = "WICImageLoader: Couldn't open filename";
    EXPECT_EQ(open(Image("gray.png"), nullptr), exists);
    EXPECT_EQ(open(Image("gray.png"), boost::make_shared<ClosedReader>()), exists);
    EXPECT_EQ(open("/nowhere/a.png", nullptr), missing);
    EXPECT_EQ(open("/nowhere/a.png", boost::make_shared<ClosedReader>()), missing);
}

TEST(WICImageLoader, WithoutAReader) {
    LoaderOf loader(L"a.png");
    EXPECT_EQ(FailureOf([&] { loader.GetWidth(); }),
              "WICImageLoader: Can't GetWidth if _WICImageReader is nullptr");
    EXPECT_EQ(FailureOf([&] { loader.GetHeight(); }),
              "WICImageLoader: Can't GetHeight if _WICImageReader is nullptr");
    EXPECT_EQ(FailureOf([&] { loader.Load(0, 0, 0); }), "WICImageLoader: Couldn't load a bitmap");
}

TEST(WICImageReader, OpensOnceAndResets) {
    WICImageReader reader(win32::Utf8ToWide(Image("rgb24.png")));
    EXPECT_FALSE(reader.IsOpen());
    reader.Open();
    const IWICBitmapDecoder* decoder = reader.Decoder();
    reader.Open();
    EXPECT_EQ(reader.Decoder(), decoder);
    int width = 0;
    int height = 0;
    reader.GetSize(width, height);
    EXPECT_EQ(width, 61);
    EXPECT_EQ(height, 43);
    EXPECT_EQ(reader.GetBitsPerPixel(), 24U);
    EXPECT_EQ(reader.frameAtTime(100.0), 0);
    reader.Reset();
    EXPECT_FALSE(reader.IsOpen());
    EXPECT_EQ(reader.Decoder(), nullptr);
    EXPECT_EQ(reader.GetBitsPerPixel(), 0U);
    reader.Open();
    EXPECT_TRUE(reader.IsOpen());
}

TEST(WICImageReader, AFailedOpenLeavesItReset) {
    WICImageReader reader(L"/nowhere/a.png");
    EXPECT_THROW(reader.Open(), DSMediaDetException);
    EXPECT_FALSE(reader.IsOpen());
    EXPECT_EQ(reader.Factory(), nullptr);
}

TEST(WICImageReader, BitsOfAPixel) {
    const auto bits = [](const std::string& name) {
        WICImageReader reader(win32::Utf8ToWide(Image(name)));
        reader.Open();
        return reader.GetBitsPerPixel();
    };
    EXPECT_EQ(bits("gray.png"), 8U);
    EXPECT_EQ(bits("rgba.png"), 32U);
    EXPECT_EQ(bits("gray16be.png"), 16U);
    EXPECT_EQ(bits("rgb48be.png"), 48U);
    EXPECT_EQ(bits("rgba64be.png"), 64U);
    EXPECT_EQ(bits("pal8.png"), 8U);
    EXPECT_EQ(bits("upright.jpg"), 24U);
    EXPECT_EQ(bits("rgb555.bmp"), 16U);
    EXPECT_EQ(bits("bgr24.bmp"), 24U);
}

} // namespace
} // namespace Zanthe
