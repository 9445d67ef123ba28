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

// What is not as the suite says; empty when all is.
std::string DifferenceOf(const Expected& expected, const fs::path& gif, const fs::path& folder) {
    WICAnimatedGIFReader reader(win32::Utf8ToWide(gif.string()));
    reader.Open();
    if (reader.Frames().size() != expected.frames.size()) {
        return std::to_string(reader.Frames().size()) + " frames, not " +
               std::to_string(expected.frames.size());
    }
    WICAnimatedGIFLoader loader(win32::Utf8ToWide(gif.string()));
    double start = 0;
    for (std::size_t i = 0; i < expected.frames.size(); ++i) {
        const int delay = expected.frames[i].delayInHundredths;
        const auto ours = static_cast<int>(reader.Frames()[i]->delay);
        if (delay >= 2 && ours != delay * 10) {
            return "delay of " + std::to_string(ours) + " ms in frame " + std::to_string(i);
        }
        BgraPicture shown{loader.GetWidth(), loader.GetHeight(), {}};
        shown.bits.resize(static_cast<std::size_t>(shown.width) *
                          static_cast<std::size_t>(shown.height) * 4);
        try {
            loader.GetFrameAtTimeIntoBuffer(start + ours / 2000.0, shown.bits.data());
        } catch (const std::runtime_error& failure) {
            return failure.what();
        }
        start += ours / 1000.0;
        const BgraPicture theirs =
            ReadPixels(folder / expected.frames[i].pixels, expected.width, expected.height);
        if (LargestDifference(shown, Premultiplied(theirs)) != 0) {
            return "other pixels in frame " + std::to_string(i);
        }
    }
    return {};
}

// Test of the suite, and how we differ.
const std::map<std::string, std::string>& OnPurpose() {
    static const std::map<std::string, std::string> differences = {};
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
        for (const char* suite : {"image-gif__", "image__"}) {
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
        }
    }
    EXPECT_GT(compared, 3);
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
