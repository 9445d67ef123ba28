// The pictures of other people, against the ffmpeg program.
#include <algorithm>
#include <array>
#include <set>
#include <stdexcept>

#include <gtest/gtest.h>

#include "platform/win32/Text.h"
#include "tests/support/LibraryPictures.h"
#include "tests/support/PngPicture.h"
#include "tests/support/StillPictures.h"
#include "tests/support/TemporaryFolder.h"
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

// Premultiplied, as all decoders here.
std::optional<BgraPicture> FfmpegShown(const std::string& path) {
    const auto picture = FfmpegPicture(path);
    return picture ? std::optional(Premultiplied(*picture)) : std::nullopt;
}

std::optional<BgraPicture> DeepFfmpegShown(const std::string& path) {
    const auto picture = DeepFfmpegPicture(path);
    return picture ? std::optional(Premultiplied(*picture)) : std::nullopt;
}

std::optional<BgraPicture> LibpngPicture(const std::string& path) {
    try {
        const PngPicture png = ReadPng(path);
        return Premultiplied({png.width, png.height, png.bits});
    } catch (const std::runtime_error&) {
        return std::nullopt;
    }
}

using Decoder = std::optional<BgraPicture> (*)(const std::string& path);

// `decoder`: of the picture that ours must equal but for `difference` in each byte.
void RequireMade(const std::string& name, Decoder decoder, int difference) {
    const std::string path = MadeMedia("images/" + name);
    const auto ours = Shown(path);
    const auto theirs = decoder(path);
    ASSERT_TRUE(ours && theirs) << name;
    EXPECT_LE(LargestDifference(*ours, *theirs), difference) << name;
}

TEST(MadePictures, EqualWhatFfmpegShows) {
    for (const char* name :
         {"gray.png", "gray1.png", "gray2.png", "gray4.png", "ya8.png", "rgb24.png", "rgba.png",
          "pal8.png", "palette1.png", "palette2.png", "palette4.png", "monob.png", "interlaced.png",
          "bgr24.bmp", "pal8.bmp", "lossless.webp", "rgba.tiff", "gray.tiff", "bilevel.tiff"}) {
        RequireMade(name, FfmpegShown, 0);
    }
    for (const char* name :
         {"gray16be.png", "ya16be.png", "rgb48be.png", "rgba64be.png", "rgb48.tiff"}) {
        RequireMade(name, DeepFfmpegShown, 0);
    }
    RequireMade("gray.jpg", FfmpegShown, 1);
    // Chroma without subsampling: what is left is how the two round.
    RequireMade("upright.jpg", FfmpegShown, 4);
    RequireMade("progressive.jpg", FfmpegShown, 4);
}

TEST(MadePictures, EqualWhatTheLibraryOfTheirFormatShows) {
    for (const char* name : {"gray.jpg", "upright.jpg", "odd.jpg", "progressive.jpg", "cmyk.jpg"}) {
        RequireMade(name, LibjpegPicture, 0);
    }
    for (const char* name : {"lossless.webp", "lossy.webp", "alpha.webp"}) {
        RequireMade(name, LibwebpPicture, 0);
    }
    for (const char* name : {"rgb48.tiff", "gray.tiff", "tiled.tiff", "bilevel.tiff"}) {
        RequireMade(name, LibtiffPicture, 0);
    }
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

// ffmpeg is no measure for these: it leaves the lower bits empty, so that its white is no white.
TEST(MadePictures, FiveAndSixBitsAreSpreadOverAllShades) {
    for (const int greenBits : {5, 6}) {
        const std::string path =
            MadeMedia(greenBits == 5 ? "images/rgb555.bmp" : "images/rgb565.bmp");
        const auto ours = Shown(path);
        ASSERT_TRUE(ours) << path;
        const std::string bytes = ReadWholeFile(path);
        const auto byte = [&](std::size_t at) { return static_cast<unsigned char>(bytes.at(at)); };
        const std::size_t pixels = byte(10);
        for (int y = 0; y < 43; ++y) {
            for (int x = 0; x < 61; ++x) {
                const auto at = pixels + static_cast<std::size_t>(42 - y) * 124 +
                                static_cast<std::size_t>(x) * 2;
                const int pixel = byte(at) | byte(at + 1) << 8;
                const int greens = (1 << greenBits) - 1;
                const std::array<int, 3> expected = {
                    ((pixel & 31) * 255 * 2 + 31) / 62,
                    ((pixel >> 5 & greens) * 255 * 2 + greens) / (2 * greens),
                    ((pixel >> (5 + greenBits) & 31) * 255 * 2 + 31) / 62};
                for (std::size_t band = 0; band < 3; ++band) {
                    ASSERT_EQ(ours->bits[static_cast<std::size_t>(y * 61 + x) * 4 + band],
                              expected[band])
                        << path << " at " << x << ", " << y;
                }
            }
        }
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
    int compared = 0;
    std::vector<std::string> odd; // both show a picture, but not the same
};

// How near our picture comes to that of the nearest of the decoders; empty when none shows one of
// that size.
std::optional<int> Distance(const BgraPicture& ours, const fs::path& file,
                            const std::vector<Decoder>& decoders) {
    std::optional<int> nearest;
    for (const Decoder decoder : decoders) {
        const auto theirs = decoder(file.string());
        if (!theirs) {
            continue;
        }
        const BgraPicture expected = Upright(*theirs, OrientationOf(ReadWholeFile(file)));
        if (ours.width == expected.width && ours.height == expected.height) {
            nearest = std::min(nearest.value_or(256), LargestDifference(ours, expected));
        }
    }
    return nearest;
}

// Where none of the decoders is a measure.
bool IsKnownToDiffer(const fs::path& file) {
    static const std::set<std::string> names = {
        // ffmpeg shows its transparent gray, libpng applies the exponent that the file names.
        "pngsuite__tbbn0g04.png",
        // Lab has no white of its own: libtiff takes another than libvips.
        "Pillow__lab.tif", "Pillow__lab-green.tif",
        // CMYK of 16 bits, which libtiff refuses and ffmpeg takes for red, green, blue and alpha.
        "image-tiff__seq-4c-16b-cmyk-c6e52592.tiff"};
    return names.count(NameOf(file)) != 0;
}

Tally Compare(const std::vector<fs::path>& files, const std::vector<Decoder>& decoders,
              int difference) {
    Tally tally;
    for (const auto& file : files) {
        const auto ours = Shown(file);
        tally.shown += ours.has_value();
        const auto distance = ours ? Distance(*ours, file, decoders) : std::nullopt;
        tally.compared += distance.has_value();
        if (distance.value_or(0) > difference && !IsKnownToDiffer(file)) {
            tally.odd.push_back(NameOf(file) + ":" + std::to_string(*distance));
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
    const Tally tally = Compare(files, {FfmpegShown, DeepFfmpegShown, LibpngPicture}, 0);
    EXPECT_GT(tally.shown, 150);
    EXPECT_GT(tally.compared, 150);
    EXPECT_EQ(Joined(tally.odd), "");
}

TEST(RealPictures, Jpeg) {
    const auto files = RealMedia("jpeg");
    if (files.empty()) {
        GTEST_SKIP() << "no real media here";
    }
    const Tally tally = Compare(files, {LibjpegPicture}, 0);
    EXPECT_GT(tally.shown, 110);
    EXPECT_GT(tally.compared, 100);
    EXPECT_EQ(Joined(tally.odd), "");
}

TEST(RealPictures, WebP) {
    const auto files = RealMedia("webp");
    if (files.empty()) {
        GTEST_SKIP() << "no real media here";
    }
    const Tally tally = Compare(files, {LibwebpPicture}, 0);
    EXPECT_GT(tally.shown, 8);
    EXPECT_GT(tally.compared, 5);
    EXPECT_EQ(Joined(tally.odd), "");
}

TEST(RealPictures, Tiff) {
    const auto files = RealMedia("tiff");
    if (files.empty()) {
        GTEST_SKIP() << "no real media here";
    }
    const Tally tally = Compare(files, {LibtiffPicture, FfmpegShown}, 1);
    EXPECT_GT(tally.shown, 80);
    EXPECT_GT(tally.compared, 80);
    EXPECT_EQ(Joined(tally.odd), "");
}

void CopyWhereTransparent(const BgraPicture& from, BgraPicture& to) {
    for (std::size_t i = 0; i < to.bits.size(); i += 4) {
        if (to.bits[i + 3] == 0) {
            std::copy_n(from.bits.begin() + static_cast<std::ptrdiff_t>(i), 4,
                        to.bits.begin() + static_cast<std::ptrdiff_t>(i));
        }
    }
}

// Of a picture with pixels that no run paints, the suite has several: ours is the one that takes
// them for the palette's first colour.
std::string ShownAs(const fs::path& reference) {
    const std::string first = reference.stem().string() + "-0.png";
    return fs::exists(reference.parent_path() / first) ? first : NameOf(reference);
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
        const PngPicture png = ReadPng((reference.parent_path() / ShownAs(reference)).string());
        BgraPicture theirs = Premultiplied({png.width, png.height, png.bits});
        if (ours && stem == "libgd__rgb16faketrns.bmp") {
            // The picture that it comes with has a hole where the page behind it is to be seen; the
            // file has none.
            CopyWhereTransparent(*ours, theirs);
        }
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
