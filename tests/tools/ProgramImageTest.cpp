#include <filesystem>
#include <fstream>

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "tests/support/GifBytes.h"
#include "tests/support/PdfBytes.h"
#include "tests/support/PngPicture.h"
#include "tests/support/StillPictures.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestMedia.h"
#include "tests/tools/ProgramRun.h"

using ::testing::HasSubstr;

namespace {

std::string Image(const std::string& name) {
    return MadeMedia("images/" + name);
}

BgraPicture Written(const std::string& path) {
    const PngPicture png = ReadPng(path);
    return {png.width, png.height, png.bits};
}

nlohmann::json Parsed(const ProgramEnd& end) {
    EXPECT_EQ(end.status, 0) << end.err;
    return nlohmann::json::parse(end.out);
}

// Three frames of a tenth of a second: red; a green column over it, which leaves a hole; nothing.
std::string WriteGif(const TemporaryFolder& folder, const std::string& name) {
    return folder.Write(name, GifBytes(8, 6)
                                  .Control(10, 1)
                                  .Frame(0, 0, 8, 6, 1)
                                  .Control(10, 2)
                                  .Frame(2, 0, 1, 6, 2)
                                  .Control(10, 1)
                                  .Frame(7, 5, 1, 1, 3)
                                  .Bytes());
}

} // namespace

TEST(ProgramImage, WritesAStillPicture) {
    TemporaryFolder folder;
    const std::string out = folder / "out.png";
    for (const char* name : {"rgb24.png", "rgba.png", "pal8.bmp", "gray.tiff", "lossless.webp"}) {
        const auto json = Parsed(RunProgram({"image", Image(name), "-o", out, "--json"}));
        EXPECT_EQ(json["command"], "image");
        EXPECT_EQ(json["file"], Image(name));
        EXPECT_EQ(json["kind"], "still");
        EXPECT_EQ(json["width"], 61);
        EXPECT_EQ(json["height"], 43);
        EXPECT_EQ(json["output"], out);
        const auto theirs = FfmpegPicture(Image(name));
        ASSERT_TRUE(theirs);
        // Colours went through their alpha and back.
        EXPECT_EQ(LargestDifference(Premultiplied(Written(out)), Premultiplied(*theirs)), 0)
            << name;
    }
    EXPECT_THAT(RunProgram({"image", Image("rgb24.png"), "-o", out}).out,
                HasSubstr("out.png: 61x43\n"));
}

TEST(ProgramImage, BoundsItsSides) {
    TemporaryFolder folder;
    const std::string out = folder / "out.png";
    EXPECT_EQ(RunProgram({"image", Image("rgba.png"), "--max", "30", "-o", out}).status, 0);
    EXPECT_EQ(Written(out).width, 30);
    EXPECT_EQ(Written(out).height, 21);
    const auto json = Parsed(RunProgram({"image", Image("large.jpg"), "-o", out, "--json"}));
    EXPECT_EQ(json["width"], 4096);
    EXPECT_EQ(json["height"], 2458);
}

TEST(ProgramImage, TurnsAPhotoUpright) {
    TemporaryFolder folder;
    const std::string out = folder / "out.png";
    const std::string jpeg = ReadWholeFile(Image("upright.jpg"));
    const std::string turned = folder.Write("turned.jpg", WithOrientation(jpeg, 6));
    RunProgram({"image", Image("upright.jpg"), "-o", out});
    const BgraPicture stored = Written(out);
    const auto json = Parsed(RunProgram({"image", turned, "-o", out, "--json"}));
    EXPECT_EQ(json["width"], 200);
    EXPECT_EQ(json["height"], 100);
    EXPECT_EQ(LargestDifference(Written(out), Upright(stored, 6)), 0);
}

TEST(ProgramImage, DrawsAPageAtItsSize) {
    TemporaryFolder folder;
    const std::string out = folder / "out.png";
    const std::string pdf = folder.Write("a.pdf", PdfOfOnePage("1 0 0 rg 0 0 100 100 re f /Half gs "
                                                               "0 1 0 rg 100 0 100 50 re f"));
    const auto json = Parsed(RunProgram({"image", pdf, "--size", "40x60", "-o", out, "--json"}));
    EXPECT_EQ(json["kind"], "pdf");
    EXPECT_EQ(json["width"], 40);
    EXPECT_EQ(json["height"], 60);
    const BgraPicture page = Written(out);
    EXPECT_EQ(PixelText(page, 0, 0), "0000FFFF");
    EXPECT_EQ(PixelText(page, 39, 0), "00000000");
    EXPECT_EQ(PixelText(page, 39, 59), "00FF0080");
}

TEST(ProgramImage, ASizeIsForPagesAlone) {
    TemporaryFolder folder;
    const std::string out = folder / "out.png";
    const std::string pdf = folder.Write("a.pdf", PdfOfOnePage(""));
    ProgramEnd end = RunProgram({"image", pdf, "-o", out});
    EXPECT_EQ(end.status, 1);
    EXPECT_THAT(end.err, HasSubstr("give one with --size"));
    end = RunProgram({"image", Image("rgba.png"), "--size", "3x3", "-o", out});
    EXPECT_EQ(end.status, 1);
    EXPECT_THAT(end.err, HasSubstr("use --max"));
    EXPECT_EQ(RunProgram({"image", pdf, "--size", "3x0", "-o", out}).status, 2);
    EXPECT_EQ(RunProgram({"image", Image("rgba.png"), "--max", "0", "-o", out}).status, 2);
    EXPECT_FALSE(std::filesystem::exists(out));
}

TEST(ProgramImage, WhatCannotBeReadLeavesNoFile) {
    TemporaryFolder folder;
    const std::string out = folder / "out.png";
    const std::string png = ReadWholeFile(Image("rgba.png"));
    const auto refusal = [&](const std::string& file) {
        const ProgramEnd end = RunProgram({"image", file, "--max", "10", "-o", out});
        EXPECT_EQ(end.status, 1);
        EXPECT_FALSE(std::filesystem::exists(out));
        return end.err;
    };
    EXPECT_THAT(refusal(folder / "missing.png"), HasSubstr("no such file"));
    EXPECT_THAT(refusal(folder.Write("a.png", "no picture")), HasSubstr("is no picture"));
    EXPECT_THAT(refusal(folder.Write("cut.png", png.substr(0, png.size() / 2))),
                HasSubstr("is damaged"));
    const ProgramEnd page = RunProgram(
        {"image", folder.Write("a.pdf", "%PDF-1.4\nno more"), "--size", "9x9", "-o", out});
    EXPECT_EQ(page.status, 1);
    EXPECT_THAT(page.err, HasSubstr("is no PDF document that can be opened"));
}

TEST(ProgramGif, WritesTheFramesAsked) {
    TemporaryFolder folder;
    const std::string gif = WriteGif(folder, "a.GIF");
    const auto json = Parsed(
        RunProgram({"frame", gif, "--at", "0,0.1,0.2,1000", "-o", folder / "f.png", "--json"}));
    EXPECT_EQ(json["video"]["reader"], "GIF decoder");
    EXPECT_EQ(json["frames"].size(), 4U);
    EXPECT_EQ(PixelText(Written(folder / "f-1.png"), 2, 0), "0000FFFF");
    EXPECT_EQ(PixelText(Written(folder / "f-2.png"), 2, 0), "00FF00FF");
    EXPECT_EQ(PixelText(Written(folder / "f-3.png"), 2, 0), "00000000"); // the hole
    EXPECT_EQ(PixelText(Written(folder / "f-3.png"), 7, 5), "FF0000FF");
    EXPECT_EQ(Written(folder / "f-4.png").bits, Written(folder / "f-3.png").bits);
}

TEST(ProgramGif, MakesAContactSheet) {
    TemporaryFolder folder;
    const ProgramEnd end = RunProgram({"sheet", WriteGif(folder, "a.gif"), "--columns", "3",
                                       "--rows", "1", "-o", folder / "sheet.png"});
    EXPECT_EQ(end.status, 0) << end.err;
    EXPECT_THAT(end.out, HasSubstr("3 pictures"));
    EXPECT_GT(ReadPng(folder / "sheet.png").width, 3 * 8);
}

TEST(ProgramGif, ShowsTheSameInEveryOrder) {
    TemporaryFolder folder;
    const ProgramEnd end = RunProgram({"verify", "--video", WriteGif(folder, "a.gif"), "--json"});
    const auto json = Parsed(end);
    EXPECT_EQ(json["differences"], 0);
    EXPECT_EQ(json["video"]["pictures"], 3) << end.out;
}
