#include <functional>
#include <stdexcept>

#include <gtest/gtest.h>

#include "tests/support/PdfBytes.h"
#include "tests/support/StillPictures.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestMedia.h"
#include "zanthe/images/PdfImageLoader.h"

namespace Zanthe {
namespace {

// The left half red, a band of half green at the bottom, the rest unpainted.
const char* const Artwork = "1 0 0 rg 0 0 100 100 re f /Half gs 0 1 0 rg 100 0 100 50 re f";

std::string FailureOf(const std::function<void()>& call) {
    try {
        call();
    } catch (const std::runtime_error& failure) {
        return failure.what();
    }
    return "none";
}

class PdfLoader : public testing::Test {
protected:
    std::string Write(const std::string& bytes) { return m_folder.Write("a.pdf", bytes); }

    TemporaryFolder m_folder;
};

TEST_F(PdfLoader, DrawsThePageAtExactlyTheSize) {
    PdfImageLoader loader(Write(PdfOfOnePage(Artwork)), 7);
    EXPECT_TRUE(loader.IsVectorResizable());
    EXPECT_EQ(loader.GetBitmap(), nullptr);
    loader.Load(3.0, 40, 60); // stretched: the page is twice as wide as high
    EXPECT_EQ(loader.GetWidth(), 40);
    EXPECT_EQ(loader.GetHeight(), 60);
    EXPECT_TRUE(loader.GetBitmap()->GetPreMultipliedAlpha());
    const BgraPicture picture = PictureOf(*loader.GetBitmap());
    EXPECT_EQ(PixelText(picture, 0, 0), "0000FFFF");
    EXPECT_EQ(PixelText(picture, 19, 59), "0000FFFF");
    EXPECT_EQ(PixelText(picture, 20, 29), "00000000"); // unpainted
    EXPECT_EQ(PixelText(picture, 39, 59), "00800080"); // half green, premultiplied
}

TEST_F(PdfLoader, TheSameSizeIsDrawnOnce) {
    PdfImageLoader loader(Write(PdfOfOnePage(Artwork)), 0);
    loader.Load(0, 20, 10);
    const auto first = loader.GetBitmap();
    loader.Load(5, 20, 10);
    EXPECT_EQ(loader.GetBitmap(), first);
    loader.Resize(20, 10);
    EXPECT_EQ(loader.GetBitmap(), first);
    loader.Load(0, 10, 20);
    EXPECT_NE(loader.GetBitmap(), first);
    EXPECT_EQ(first->GetWidth(), 20);
    EXPECT_EQ(loader.GetWidth(), 10);
}

TEST_F(PdfLoader, ResizeWorksBeforeAnyLoad) {
    PdfImageLoader loader(Write(PdfOfOnePage(Artwork)), 0);
    loader.Resize(200, 100);
    EXPECT_EQ(loader.GetWidth(), 200);
    EXPECT_EQ(PixelText(PictureOf(*loader.GetBitmap()), 99, 99), "0000FFFF");
}

TEST_F(PdfLoader, HasNoSizeBeforeALoad) {
    PdfImageLoader loader(Write(PdfOfOnePage(Artwork)), 0);
    EXPECT_EQ(FailureOf([&] { loader.GetWidth(); }),
              "PdfImageLoader: Can't GetWidth if _Bitmap is nullptr");
    EXPECT_EQ(FailureOf([&] { loader.GetHeight(); }),
              "PdfImageLoader: Can't GetHeight if _Bitmap is nullptr");
}

TEST_F(PdfLoader, ASizeBelowOneLeavesThePicture) {
    PdfImageLoader loader(Write(PdfOfOnePage(Artwork)), 0);
    loader.Load(0, 20, 10);
    const auto before = loader.GetBitmap();
    const std::string text = "PdfImageLoader: width and height must be > 0";
    EXPECT_EQ(FailureOf([&] { loader.Load(0, 20, 0); }), text);
    EXPECT_EQ(FailureOf([&] { loader.Load(0, -1, 10); }), text);
    EXPECT_EQ(FailureOf([&] { loader.Resize(0, 0); }), text);
    EXPECT_EQ(loader.GetBitmap(), before);
}

// The bitmap has that size all the same; what it shows is undefined.
TEST_F(PdfLoader, WhatCannotBeDrawnFails) {
    PdfImageLoader loader(Write(PdfOfOnePage(Artwork)), 0);
    EXPECT_EQ(FailureOf([&] { loader.Load(0, 40000, 1); }),
              "PdfImageLoader: Couldn't load a bitmap");
    EXPECT_EQ(loader.GetWidth(), 40000);
    // It stands, and so is not drawn again.
    const auto undefined = loader.GetBitmap();
    loader.Load(0, 40000, 1);
    EXPECT_EQ(loader.GetBitmap(), undefined);
    loader.Load(0, 20, 10);
    EXPECT_EQ(loader.GetWidth(), 20);
}

TEST_F(PdfLoader, ADocumentWithoutAPageOpensAndShowsNothing) {
    PdfImageLoader loader(Write(PdfOfNoPage()), 0);
    EXPECT_EQ(FailureOf([&] { loader.Load(0, 20, 10); }), "PdfImageLoader: Couldn't load a bitmap");
    EXPECT_EQ(loader.GetWidth(), 20);
}

// What the page shows is stretched to the size, and turned as the page says.
TEST_F(PdfLoader, ThePageIsCutAndTurnedAsItSays) {
    const auto corner = [&](const std::string& pageEntries) {
        PdfImageLoader loader(Write(PdfOfOnePage(Artwork, pageEntries)), 0);
        loader.Load(0, 20, 20);
        const BgraPicture picture = PictureOf(*loader.GetBitmap());
        return PixelText(picture, 1, 1) + " " + PixelText(picture, 18, 1) + " " +
               PixelText(picture, 1, 18) + " " + PixelText(picture, 18, 18);
    };
    const std::string red = "0000FFFF";
    const std::string green = "00800080";
    const std::string none = "00000000";
    EXPECT_EQ(corner(""), red + " " + none + " " + red + " " + green);
    EXPECT_EQ(corner("/Rotate 90"), red + " " + red + " " + green + " " + none);
    EXPECT_EQ(corner("/Rotate 180"), green + " " + red + " " + none + " " + red);
    EXPECT_EQ(corner("/CropBox [100 0 200 100]"), none + " " + none + " " + green + " " + green);
    EXPECT_EQ(corner("/CropBox [100 0 200 50]"), green + " " + green + " " + green + " " + green);
}

TEST_F(PdfLoader, WhatIsNoDocumentIsRefused) {
    const std::string text = "PdfImageLoader: Couldn't open filename";
    const auto open = [](const std::string& path) {
        return FailureOf([&] { PdfImageLoader(path, 0); });
    };
    EXPECT_EQ(open(m_folder / "missing.pdf"), text);
    EXPECT_EQ(open(m_folder.Path().string()), text);
    EXPECT_EQ(open(Write("")), text);
    EXPECT_EQ(open(Write("no document at all")), text);
    EXPECT_EQ(open(Write(std::string("%PDF-1.4\n\0\1\2", 12))), text);
    const std::string key(64, '1');
    EXPECT_EQ(open(Write(PdfOfOnePage(Artwork, "",
                                      "/ID [<31> <31>] /Encrypt << /Filter /Standard /V 1 /R 2 "
                                      "/P -4 /O <" +
                                          key + "> /U <" + key + "> >>"))),
              text); // it asks for a password
}

// None of them may crash or leave what is no premultiplied pixel.
TEST_F(PdfLoader, RealDocuments) {
    const auto files = RealMedia("pdf");
    if (files.empty()) {
        GTEST_SKIP() << "no real media here";
    }
    int drawn = 0;
    for (const auto& file : files) {
        try {
            PdfImageLoader loader(file.string(), 0);
            loader.Load(0, 160, 200);
            ++drawn;
            const BgraPicture picture = PictureOf(*loader.GetBitmap());
            for (std::size_t i = 0; i < picture.bits.size(); i += 4) {
                for (std::size_t band = 0; band < 3; ++band) {
                    ASSERT_LE(picture.bits[i + band], picture.bits[i + 3]) << file;
                }
            }
        } catch (const std::runtime_error& failure) {
            EXPECT_TRUE(std::string(failure.what()).starts_with("PdfImageLoader: Couldn't"))
                << file << ": " << failure.what();
        }
    }
    EXPECT_GT(drawn, static_cast<int>(files.size()) * 9 / 10);
}

} // namespace
} // namespace Zanthe
