// The pictures of other people, against the ffmpeg program.
#include <algorithm>
#include <stdexcept>

#include <gtest/gtest.h>

#include "platform/win32/Text.h"
#include "tests/support/PngPicture.h"
#include "tests/support/StillPictures.h"
#include "tests/support/TestMedia.h"
#include "zanthe/detection/DSMediaDetException.h"
#include "zanthe/images/WICImageHelper.h"
#include "zanthe/images/WICImageLoader.h"

namespace Zanthe {
namespace {

namespace fs = std::filesystem;

// The picture as this library shows it; empty where it refuses, in one of the ways it may.
std::optional<BgraPicture> Shown(const fs::path& path) {
    try {
        WICImageLoader loader(win32::Utf8ToWide(path.string()),
                              WICImageHelper::DEFAULT_MAX_DECODING_DIMENSION);
        loader.Load(0, 0, 0);
        return PictureOf(*loader.GetBitmap());
    } catch (const DSMediaDetException& failure) {
        EXPECT_STREQ(failure.what(), "Unable to create decoder") << path;
    } catch (const std::runtime_error& failure) {
        EXPECT_STREQ(failure.what(), "WICImageLoader: Couldn't load a bitmap") << path;
    }
    return std::nullopt;
}

std::string NameOf(const fs::path& path) {
    return path.filename().string();
}

void RequireMade(const std::string& name, int difference) {
    const std::string path = MadeMedia("images/" + name);
    const auto ours = Shown(path);
    const auto theirs = FfmpegPicture(path);
    ASSERT_TRUE(ours && theirs) << name;
    EXPECT_LE(LargestDifference(*ours, Premultiplied(*theirs)), difference) << name;
}

TEST(MadePictures, EqualWhatFfmpegShows) {
    for (const char* name :
         {"gray.png", "ya8.png", "rgb24.png", "rgba.png", "pal8.png", "monob.png", "bgr24.bmp",
          "pal8.bmp", "lossless.webp", "rgba.tiff", "gray.tiff", "gray.jpg"}) {
        RequireMade(name, name == std::string("gray.jpg") ? 1 : 0);
    }
    for (const char* name : {"gray16be.png", "ya16be.png", "rgb48be.png", "rgba64be.png",
                             "rgb48.tiff", "rgb565.bmp"}) {
        RequireMade(name, 1);
    }
    // ffmpeg spreads five bits by repeating them.
    RequireMade("rgb555.bmp", 2);
    // Chroma without subsampling: what is left is how the two round.
    RequireMade("upright.jpg", 4);
}

// Here the two smooth the chroma differently.
TEST(MadePictures, SubsampledOnesAreAlike) {
    for (const char* name : {"odd.jpg", "lossy.webp"}) {
        const std::string path = MadeMedia(std::string("images/") + name);
        const auto ours = Shown(path);
        const auto theirs = FfmpegPicture(path);
        ASSERT_TRUE(ours && theirs) << name;
        EXPECT_GT(Psnr(*ours, *theirs), 24) << name;
    }
}

// BMP without a mask for it has no alpha; the fourth byte is nothing.
TEST(MadePictures, TheFourthByteOfABmpIsNothingWithoutAMask) {
    const auto ours = Shown(MadeMedia("images/bgra.bmp"));
    const auto theirs = FfmpegPicture(MadeMedia("images/bgr24.bmp"));
    ASSERT_TRUE(ours && theirs);
    EXPECT_EQ(LargestDifference(*ours, *theirs), 0);
}

struct Tally {
    int shown = 0;
    int alike = 0;
    std::vector<std::string> odd; // both show a picture, but not the same
};

Tally Compare(const std::vector<fs::path>& files, double decibels) {
    Tally tally;
    for (const auto& file : files) {
        const auto ours = Shown(file);
        const auto theirs = FfmpegPicture(file.string());
        tally.shown += ours.has_value();
        if (!ours || !theirs || ours->width != theirs->width || ours->height != theirs->height) {
            continue;
        }
        if (Psnr(*ours, Premultiplied(*theirs)) >= decibels) {
            ++tally.alike;
        } else {
            tally.odd.push_back(NameOf(file));
        }
    }
    return tally;
}

std::string Joined(const std::vector<std::string>& names) {
    std::string all;
    for (const std::string& name : names) {
        all += name + ' ';
    }
    return all;
}

TEST(RealPictures, Png) {
    const auto files = RealMedia("png");
    if (files.empty()) {
        GTEST_SKIP() << "no real media here";
    }
    const Tally tally = Compare(files, 48);
    EXPECT_GT(tally.shown, 150);
    EXPECT_EQ(Joined(tally.odd), "");
}

TEST(RealPictures, Jpeg) {
    const auto files = RealMedia("jpeg");
    if (files.empty()) {
        GTEST_SKIP() << "no real media here";
    }
    const Tally tally = Compare(files, 24);
    EXPECT_GT(tally.shown, 150);
    EXPECT_EQ(Joined(tally.odd), "");
}

TEST(RealPictures, WebP) {
    const auto files = RealMedia("webp");
    if (files.empty()) {
        GTEST_SKIP() << "no real media here";
    }
    const Tally tally = Compare(files, 24);
    EXPECT_GT(tally.shown, 8);
    EXPECT_EQ(Joined(tally.odd), "");
}

TEST(RealPictures, Tiff) {
    const auto files = RealMedia("tiff");
    if (files.empty()) {
        GTEST_SKIP() << "no real media here";
    }
    const Tally tally = Compare(files, 24);
    EXPECT_GT(tally.shown, 80);
    EXPECT_EQ(Joined(tally.odd), "");
}

// Against the pictures that the suite of these files comes with.
TEST(RealPictures, Bmp) {
    const auto files = RealMedia("bmp");
    const auto references = RealMedia("reference/bmpsuite");
    if (files.empty() || references.empty()) {
        GTEST_SKIP() << "no real media here";
    }
    int compared = 0;
    std::string odd;
    for (const auto& reference : references) {
        const std::string stem = "libgd__" + reference.stem().string() + ".bmp";
        const auto file = std::find_if(files.begin(), files.end(),
                                       [&](const fs::path& path) { return NameOf(path) == stem; });
        if (reference.extension() != ".png" || file == files.end()) {
            continue;
        }
        const auto ours = Shown(*file);
        const PngPicture png = ReadPng(reference.string());
        const BgraPicture theirs = Premultiplied({png.width, png.height, png.bits});
        ++compared;
        if (!ours || LargestDifference(*ours, theirs) > 1) {
            odd += stem + ' ';
        }
    }
    EXPECT_GT(compared, 10);
    EXPECT_EQ(odd, "");
}

// The eight photos look alike once they are turned.
TEST(RealPictures, Orientations) {
    std::vector<BgraPicture> pictures;
    for (const auto& file : RealMedia("jpeg")) {
        if (NameOf(file).starts_with("exif-orientation-examples__Landscape_")) {
            const auto shown = Shown(file);
            ASSERT_TRUE(shown) << file;
            pictures.push_back(*shown);
        }
    }
    if (pictures.empty()) {
        GTEST_SKIP() << "no real media here";
    }
    for (const BgraPicture& picture : pictures) {
        EXPECT_EQ(picture.width, pictures.front().width);
        EXPECT_EQ(picture.height, pictures.front().height);
        EXPECT_GT(Psnr(picture, pictures.front()), 20);
    }
}

TEST(RealPictures, DamagedOnesEndWell) {
    const auto files = RealMedia("damaged");
    if (files.empty()) {
        GTEST_SKIP() << "no real media here";
    }
    for (const auto& file : files) {
        Shown(file);
    }
}

} // namespace
} // namespace Zanthe
