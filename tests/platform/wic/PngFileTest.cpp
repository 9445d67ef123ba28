#include "platform/wic/PngFile.h"

#include <memory>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/PngPicture.h"
#include "tests/support/TemporaryFolder.h"

using wic::BgraPicture;

namespace {

struct CloseFile {
    void operator()(std::FILE* stream) const { std::fclose(stream); }
};

using FilePtr = std::unique_ptr<std::FILE, CloseFile>;
using Write = bool (*)(const BgraPicture&, std::FILE*);

std::vector<std::uint8_t> Written(Write write, const BgraPicture& picture) {
    const TemporaryFolder folder;
    const std::string path = folder / "picture.png";
    EXPECT_TRUE(write(picture, FilePtr(std::fopen(path.c_str(), "wb")).get()));
    return ReadPng(path).bits;
}

TEST(PngFile, SkipsWhatStandsBehindARow) {
    const std::vector<std::uint8_t> bits = {1, 2, 3, 255, 99, 99, 99, 99, 4, 5, 6, 255};
    const std::vector<std::uint8_t> rows = {1, 2, 3, 255, 4, 5, 6, 255};
    EXPECT_EQ(Written(wic::WritePng, {1, 2, 8, bits.data()}), rows);
    EXPECT_EQ(Written(wic::WritePremultipliedPng, {1, 2, 8, bits.data()}), rows);
}

TEST(PngFile, EveryProductOfColourAndAlphaComesBackWithinItsStep) {
    std::vector<std::uint8_t> bits;
    for (int alpha = 1; alpha < 256; ++alpha) {
        for (int colour = 0; colour <= alpha; ++colour) {
            const auto byte = static_cast<std::uint8_t>(colour);
            bits.insert(bits.end(), {byte, byte, byte, static_cast<std::uint8_t>(alpha)});
        }
    }
    const int pixels = static_cast<int>(bits.size() / 4);
    const auto straight = Written(wic::WritePremultipliedPng, {pixels, 1, pixels * 4, bits.data()});
    for (std::size_t i = 0; i < bits.size(); i += 4) {
        const int again = (straight[i] * bits[i + 3] + 127) / 255;
        ASSERT_EQ(again, bits[i]) << "alpha " << int{bits[i + 3]};
    }
}

TEST(PngFile, AFullStreamFails) {
    const std::vector<std::uint8_t> bits(std::size_t{512} * 512 * 4, 77);
    const FilePtr full(std::fopen("/dev/full", "wb"));
    std::setvbuf(full.get(), nullptr, _IONBF, 0);
    EXPECT_FALSE(wic::WritePng({512, 512, 2048, bits.data()}, full.get()));
    EXPECT_FALSE(wic::WritePremultipliedPng({512, 512, 2048, bits.data()}, full.get()));
}

} // namespace
