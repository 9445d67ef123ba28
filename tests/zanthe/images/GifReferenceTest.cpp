// Animations of a public test suite, against the pictures that it says they show. Where our settled
// rules say otherwise, it is listed here, and in docs/pictures.md.
#include <algorithm>
#include <fstream>
#include <map>
#include <sstream>
#include <stdexcept>

#include <gtest/gtest.h>

#include "platform/win32/Text.h"
#include "tests/support/PngPicture.h"
#include "tests/support/StillPictures.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestMedia.h"
#include "zanthe/images/WICAnimatedGIFLoader.h"
#include "zanthe/images/WICAnimatedGIFReader.h"

namespace Zanthe {
namespace {

namespace fs = std::filesystem;

struct ExpectedFrame {
    std::string pixels;         // the file that holds them
    int delayInHundredths = -1; // -1: the suite does not say
};

struct Expected {
    std::string input;
    int width = 0;
    int height = 0;
    std::vector<ExpectedFrame> frames;
};

Expected ReadExpected(const fs::path& path) {
    std::map<std::string, std::map<std::string, std::string>> sections;
    std::string section;
    std::ifstream file(path);
    for (std::string line; std::getline(file, line);) {
        const std::size_t equals = line.find(" = ");
        if (!line.empty() && line.front() == '[') {
            section = line.substr(1, line.size() - 2);
        } else if (equals != std::string::npos) {
            sections[section][line.substr(0, equals)] = line.substr(equals + 3);
        }
    }
    auto& config = sections["config"];
    Expected expected{config["input"],
                      std::atoi(config["width"].c_str()),
                      std::atoi(config["height"].c_str()),
                      {}};
    std::istringstream names(config["frames"]);
    for (std::string name; std::getline(names, name, ',');) {
        auto& frame = sections[name];
        expected.frames.push_back(
            {frame.count("pixels") != 0 ? frame["pixels"] : frame["image"],
             frame.count("delay") != 0 ? std::atoi(frame["delay"].c_str()) : -1});
    }
    return expected;
}

BgraPicture ReadPixels(const fs::path& path, int width, int height) {
    if (path.extension() == ".png") {
        const PngPicture png = ReadPng(path.string());
        return {png.width, png.height, png.bits};
    }
    const std::string rgba = ReadWholeFile(path);
    BgraPicture picture{width, height, {rgba.begin(), rgba.end()}};
    for (std::size_t i = 0; i + 3 < picture.bits.size(); i += 4) {
        std::swap(picture.bits[i], picture.bits[i + 2]);
    }
    return picture;
}

// All the pictures that a file shows here, one after the other, up to one that fails.
struct Shown {
    std::vector<BgraPicture> pictures;
    std::vector<int> delays; // milliseconds
    std::string failure;
};

Shown ShowAll(const fs::path& gif, std::size_t most = 1000) {
    WICAnimatedGIFReader reader(win32::Utf8ToWide(gif.string()));
    reader.Open();
    WICAnimatedGIFLoader loader(win32::Utf8ToWide(gif.string()));
    Shown shown;
    double start = 0;
    for (const auto& frame : reader.Frames()) {
        if (shown.pictures.size() == most) {
            break;
        }
        BgraPicture picture{loader.GetWidth(), loader.GetHeight(), {}};
        picture.bits.resize(static_cast<std::size_t>(picture.width) *
                            static_cast<std::size_t>(picture.height) * 4);
        try {
            loader.GetFrameAtTimeIntoBuffer(start + frame->delay / 2000.0, picture.bits.data());
        } catch (const std::runtime_error& failure) {
            shown.failure = failure.what();
            break;
        }
        shown.pictures.push_back(picture);
        shown.delays.push_back(static_cast<int>(frame->delay));
        start += frame->delay / 1000.0;
    }
    return shown;
}

// Whether the pictures of the suite are all among ours, in the same order.
bool AreAmong(const std::vector<BgraPicture>& theirs, const std::vector<BgraPicture>& ours) {
    std::size_t found = 0;
    for (const BgraPicture& picture : ours) {
        found += found < theirs.size() && LargestDifference(picture, theirs[found]) == 0;
    }
    return found == theirs.size();
}

// What is not as the suite says; empty when all is.
std::string DifferenceOf(const Expected& expected, const fs::path& gif, const fs::path& folder) {
    const Shown ours = ShowAll(gif);
    if (!ours.failure.empty()) {
        return ours.failure;
    }
    std::vector<BgraPicture> theirs;
    for (const ExpectedFrame& frame : expected.frames) {
        theirs.push_back(
            Premultiplied(ReadPixels(folder / frame.pixels, expected.width, expected.height)));
    }
    if (ours.pictures.size() != theirs.size()) {
        return std::to_string(ours.pictures.size()) + " frames, not " +
               std::to_string(theirs.size()) +
               (AreAmong(theirs, ours.pictures) ? "" : ", and others");
    }
    for (std::size_t i = 0; i < theirs.size(); ++i) {
        const int delay = expected.frames[i].delayInHundredths;
        if (delay >= 2 && ours.delays[i] != delay * 10) {
            return "delay of " + std::to_string(ours.delays[i]) + " ms in frame " +
                   std::to_string(i);
        }
        if (LargestDifference(ours.pictures[i], theirs[i]) != 0) {
            return "other pixels in frame " + std::to_string(i);
        }
    }
    return {};
}

// Test of the suite, and how we differ.
const std::map<std::string, std::string>& OnPurpose() {
    static const std::map<std::string, std::string> differences = {
        // Every image of a file is a frame and lasts a tenth of a second when it names no time: it
        // is not put together with the next one.
        {"animation-multi-image", "7 frames, not 4"},
        {"animation-multi-image-explicit-zero-delay", "7 frames, not 4"},
        {"dispose-restore-previous", "5 frames, not 4"},
        {"high-color", "4 frames, not 1"},
        {"images-combine", "4 frames, not 1"},
        {"images-overlap", "2 frames, not 1"},
        // What is damaged shows what can be read of it. The suite refuses the file.
        {"invalid-code", "1 frames, not 0"},
        {"invalid-colors", "1 frames, not 0"},
        {"plain-text", "1 frames, not 0"},
        // Where nothing can be read there is no frame. The suite shows an empty screen.
        {"image-zero-height", "0 frames, not 1, and others"},
        {"image-zero-size", "0 frames, not 1, and others"},
        {"image-zero-width", "0 frames, not 1, and others"},
        {"no-data", "0 frames, not 1, and others"},
        // Codes that begin with more than 8 bits are no GIF to giflib.
        {"max-codes", "0 frames, not 1, and others"},
        // No surface is more than 32767 pixels wide or high.
        {"max-height", "WICAnimatedGIFLoader: Error compositing frame"},
        {"max-width", "WICAnimatedGIFLoader: Error compositing frame"}};
    return differences;
}

TEST(GifReference, EveryFrameOfTheSuite) {
    const auto gifs = RealMedia("gif");
    const auto references = RealMedia("reference/pygif");
    if (gifs.empty() || references.empty()) {
        GTEST_SKIP() << "no real media here";
    }
    int alike = 0;
    for (const auto& reference : references) {
        if (reference.extension() != ".conf") {
            continue;
        }
        const Expected expected = ReadExpected(reference);
        const fs::path gif = gifs.front().parent_path() / ("pygif__" + expected.input);
        if (!fs::exists(gif)) {
            continue;
        }
        const std::string difference = DifferenceOf(expected, gif, reference.parent_path());
        const auto known = OnPurpose().find(reference.stem().string());
        EXPECT_EQ(difference, known != OnPurpose().end() ? known->second : "") << reference.stem();
        alike += difference.empty();
    }
    EXPECT_GT(alike, 60);
}

// The first frames, put on their screens, of another suite.
TEST(GifReference, FirstFrames) {
    const auto gifs = RealMedia("gif");
    const auto references = RealMedia("reference/image-rs-gif");
    if (gifs.empty() || references.empty()) {
        GTEST_SKIP() << "no real media here";
    }
    int compared = 0;
    for (const auto& reference : references) {
        // Files of one name are in both suites; the pictures belong to those of the first.
        for (const char* suite : {"image__", "image-gif__"}) {
            const fs::path gif = gifs.front().parent_path() / (suite + reference.stem().string());
            if (!fs::exists(gif)) {
                continue;
            }
            WICAnimatedGIFLoader loader(win32::Utf8ToWide(gif.string()));
            const auto bitmap = loader.GetFrameAtTime(0);
            const PngPicture png = ReadPng(reference.string());
            ASSERT_NE(bitmap, nullptr) << gif;
            EXPECT_EQ(LargestDifference(PictureOf(*bitmap),
                                        Premultiplied({png.width, png.height, png.bits})),
                      0)
                << gif;
            ++compared;
            break;
        }
    }
    EXPECT_GT(compared, 3);
}

// How our frames differ from those that ffmpeg shows; empty when none does, and where one of the
// two shows nothing.
std::string DifferenceFromFfmpeg(const fs::path& gif) {
    constexpr std::size_t most = 40;
    const Shown ours = ShowAll(gif, most);
    if (ours.pictures.empty()) {
        return {};
    }
    const int width = ours.pictures.front().width;
    const int height = ours.pictures.front().height;
    const auto theirs = FfmpegPictures(gif.string(), width, height, most);
    for (std::size_t i = 0; i < std::min(ours.pictures.size(), theirs.size()); ++i) {
        if (LargestDifference(ours.pictures[i], Premultiplied(theirs[i])) != 0) {
            return "frame " + std::to_string(i);
        }
    }
    return theirs.empty() || ours.pictures.size() == theirs.size()
               ? std::string()
               : std::to_string(ours.pictures.size()) + " frames, not " +
                     std::to_string(theirs.size());
}

// File, and where ffmpeg begins to show something else.
const std::map<std::string, std::string>& UnlikeFfmpeg() {
    static const std::map<std::string, std::string> differences = {
        // What no frame paints, and a frame that is disposed of, show the background colour there.
        // Here it is transparent.
        {"Pillow__dispose_bgnd", "frame 2"},
        {"Pillow__dispose_bgnd_rgba", "frame 2"},
        {"libgd__dispose_background", "frame 0"},
        {"libgd__dispose_none", "frame 0"},
        {"libgd__dispose_unspecified", "frame 0"},
        {"libgd__small_frame_big_canvas", "frame 0"},
        {"pygif__dispose-restore-background", "frame 0"},
        {"pygif__image-inside-bg", "frame 0"},
        {"pygif__image-overlap-bg", "frame 0"},
        {"pygif__images-combine", "frame 0"},
        {"torchcodec__frame_exceeds_screen", "frame 0"},
        {"wuffs__metadata-empty", "frame 0"},
        {"wuffs__metadata-full", "frame 0"},
        // The same of pixels that the data do not reach.
        {"pygif__invalid-code", "frame 0"},
        {"pygif__missing-pixels", "frame 0"},
        {"wuffs__pixel-data-none", "frame 0"},
        {"wuffs__pixel-data-not-enough", "frame 0"},
        // A frame larger than the screen is cut here; ffmpeg refuses it.
        {"Pillow__decompression_bomb_extents", "2 frames, not 1"},
        // Shades of gray serve where a file has no colours; ffmpeg refuses such frames.
        {"Pillow__no_palette_after_rgb", "3 frames, not 1"},
        // ffmpeg repeats the one frame.
        {"Pillow__test_extents_transparency", "1 frames, not 2"}};
    return differences;
}

TEST(GifReference, EveryFrameAsFfmpegShowsIt) {
    const auto gifs = RealMedia("gif");
    if (gifs.empty()) {
        GTEST_SKIP() << "no real media here";
    }
    std::map<std::string, std::string> differences;
    for (const auto& gif : gifs) {
        std::string difference;
        try {
            difference = DifferenceFromFfmpeg(gif);
        } catch (const std::exception&) {
            // No GIF file.
        }
        if (!difference.empty()) {
            differences[gif.stem().string()] = difference;
        }
    }
    EXPECT_EQ(differences, UnlikeFfmpeg());
}

TEST(GifReference, AnyFileEndsWell) {
    std::vector<fs::path> files = RealMedia("gif");
    for (const auto& file : RealMedia("damaged")) {
        if (file.extension() == ".gif") {
            files.push_back(file);
        }
    }
    if (files.empty()) {
        GTEST_SKIP() << "no real media here";
    }
    for (const auto& file : files) {
        try {
            WICAnimatedGIFLoader loader(win32::Utf8ToWide(file.string()));
            for (const double time : {0.0, 1e9, 0.3, 0.1}) {
                loader.GetFrameAtTime(time);
            }
        } catch (const std::exception& failure) {
            EXPECT_STREQ(failure.what(), "Unable to create decoder") << file;
        }
    }
}

} // namespace
} // namespace Zanthe
