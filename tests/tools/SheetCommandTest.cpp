#include "tools/zanthe/SheetCommand.h"

#include <algorithm>
#include <sstream>
#include <utility>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "tests/support/PngPicture.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/tools/ScriptedSound.h"
#include "tests/tools/ScriptedVideo.h"
#include "tools/zanthe/CommandError.h"
#include "tools/zanthe/SheetLayout.h"

using Program::SheetLayout;
using Program::SheetRequest;
using Program::WriteSheet;

namespace {

SheetRequest Request(const TemporaryFolder& folder) {
    SheetRequest request;
    request.file = "clip \xFF.mp4";
    request.columns = 2;
    request.rows = 2;
    request.output = folder / "sheet.png";
    return request;
}

int BlueAt(const PngPicture& picture, int x, int y) {
    return picture.bits[static_cast<std::size_t>(y * picture.width + x) * 4];
}

// Whether anything in the area differs from the pixel at its top left.
bool ShowsSomething(const PngPicture& picture, const Program::Rect& area) {
    for (int y = area.y; y < area.y + area.height; ++y) {
        for (int x = area.x; x < area.x + area.width; ++x) {
            if (BlueAt(picture, x, y) != BlueAt(picture, area.x, area.y)) {
                return true;
            }
        }
    }
    return false;
}

} // namespace

TEST(WriteSheet, EveryCellHasItsPictureAndItsTime) {
    TemporaryFolder folder;
    std::vector<std::int64_t> starts(200);
    std::generate(starts.begin(), starts.end(), [next = std::int64_t{0}]() mutable {
        return std::exchange(next, next + 100'000);
    });
    ScriptedVideo video(starts, 20'000'000);
    video.facts.duration = 20'000'000;
    const SheetRequest request = Request(folder);
    std::ostringstream out;
    WriteSheet(video, nullptr, request, out);
    const PngPicture sheet = ReadPng(request.output);
    const SheetLayout layout = Program::LayOutSheet({16, 8}, 2, 2);
    EXPECT_EQ(sheet.width, layout.sheet.width);
    EXPECT_EQ(sheet.height, layout.sheet.height);
    for (std::size_t i = 0; i < 4; ++i) {
        const auto& cell = layout.cells[i];
        // The middles of four shares of 200 pictures; each picture's colour is its number and one.
        EXPECT_EQ(BlueAt(sheet, cell.picture.x + 8, cell.picture.y + 4),
                  25 + 50 * static_cast<int>(i) + 1);
        EXPECT_TRUE(ShowsSomething(sheet, cell.caption)) << i;
    }
    EXPECT_TRUE(ShowsSomething(sheet, layout.title));
    EXPECT_EQ(out.str().substr(request.output.size()),
              ": 216 x 116, 4 pictures from 0:00:00.250 to 0:00:01.750\n");
}

TEST(WriteSheet, TheCellsHaveTheShapeThatIsShown) {
    TemporaryFolder folder;
    ScriptedVideo video({0}, 10'000'000);
    video.facts.rotation = 90;
    video.facts.aspectNumerator = 10;
    const SheetRequest request = Request(folder);
    std::ostringstream out;
    WriteSheet(video, nullptr, request, out);
    EXPECT_EQ(ReadPng(request.output).height, Program::LayOutSheet({8, 160}, 2, 2).sheet.height);
}

TEST(WriteSheet, AVideoWithoutADurationIsMeasured) {
    TemporaryFolder folder;
    ScriptedVideo video({0, 5'000'000}, 10'000'000, false);
    SheetRequest request = Request(folder);
    request.columns = request.rows = 1;
    request.json = true;
    std::ostringstream out;
    WriteSheet(video, nullptr, request, out);
    const auto json = nlohmann::json::parse(out.str());
    ASSERT_EQ(json["pictures"].size(), 1U);
    EXPECT_EQ(json["pictures"][0]["asked_100ns"], 5'000'000);
    EXPECT_EQ(json["pictures"][0]["time_100ns"], 5'000'000);
    EXPECT_EQ(json["pictures"][0]["shown"], true);
}

TEST(Suited, AVideoOfOnePictureGetsOneCell) {
    TemporaryFolder folder;
    for (const std::int64_t told : {5'000'000, 10'000'000}) {
        ScriptedVideo one({0}, 10'000'000);
        one.facts.duration = told;
        EXPECT_EQ(Program::Suited(one, Request(folder)).columns, 1) << told;
        EXPECT_EQ(Program::Suited(one, Request(folder)).rows, 1);
        ScriptedVideo two({0, 4'000'000}, 10'000'000);
        two.facts.duration = told;
        EXPECT_EQ(Program::Suited(two, Request(folder)).columns, 2);
    }
    ScriptedVideo unknown({0}, 10'000'000, false);
    EXPECT_EQ(Program::Suited(unknown, Request(folder)).columns, 1);
}

TEST(Suited, AVideoOfFewPicturesGetsOneCellForEach) {
    TemporaryFolder folder;
    for (const bool tellsTimes : {false, true}) {
        ScriptedVideo three({0, 1'234'567, 3'000'000}, 4'000'000, tellsTimes);
        SheetRequest request = Request(folder);
        request.rows = 5;
        EXPECT_EQ(Program::Suited(three, request).columns, 2);
        EXPECT_EQ(Program::Suited(three, request).rows, 2);
        request.json = true;
        std::ostringstream out;
        WriteSheet(three, nullptr, request, out);
        const auto pictures = nlohmann::json::parse(out.str())["pictures"];
        ASSERT_EQ(pictures.size(), 3U);
        EXPECT_EQ(pictures[1]["time_100ns"], 1'234'567) << tellsTimes;
    }
}

TEST(WriteSheet, SaysHowManyCellsShowAPictureAndTheTimesOfTheirCaptions) {
    TemporaryFolder folder;
    ScriptedVideo video({0, 2'000'000, 3'000'000, 6'000'000, 7'000'000}, 10'000'000);
    video.facts.duration = 20'000'000;
    const SheetRequest request = Request(folder);
    std::ostringstream out;
    WriteSheet(video, nullptr, request, out);
    EXPECT_EQ(out.str().substr(request.output.size()),
              ": 216 x 116, 2 of 4 pictures from 0:00:00.200 to 0:00:00.700\n");
}

TEST(WriteSheet, AVideoWithoutPicturesIsRefused) {
    TemporaryFolder folder;
    ScriptedVideo video({}, 0);
    std::ostringstream out;
    EXPECT_THROW(WriteSheet(video, nullptr, Request(folder), out), Program::CommandError);
    EXPECT_TRUE(std::filesystem::is_empty(folder.Path()));
}

TEST(WriteSheet, SoundIsAStripBelowThePictures) {
    TemporaryFolder folder;
    ScriptedVideo video({0}, 20'000'000);
    video.facts.duration = 20'000'000;
    ScriptedSound sound(std::int64_t{2} * Program::SheetSoundRate);
    for (std::size_t i = 0; i < sound.planes[0].size(); ++i) { // silent, and then as loud as can be
        const bool loud = i > sound.planes[0].size() / 2;
        sound.planes[0][i] = loud ? (i % 2 == 0 ? 1.0F : -1.0F) : 0.0F;
        sound.planes[1][i] = 0.0F;
    }
    SheetRequest request = Request(folder);
    std::ostringstream out;
    WriteSheet(video, &sound, request, out);
    const PngPicture sheet = ReadPng(request.output);
    const SheetLayout layout = Program::LayOutSheet({16, 8}, 2, 2, 64);
    EXPECT_EQ(sheet.height, layout.sheet.height);
    const Program::Rect& strip = layout.strip;
    const int top = strip.y + 2;
    const int middle = strip.y + strip.height / 2;
    const int early = strip.x + strip.width / 4;
    const int late = strip.x + strip.width * 3 / 4;
    EXPECT_EQ(BlueAt(sheet, early, top), BlueAt(sheet, strip.x, strip.y));
    EXPECT_NE(BlueAt(sheet, early, middle), BlueAt(sheet, early, top));
    EXPECT_EQ(BlueAt(sheet, late, top), BlueAt(sheet, late, middle));
    EXPECT_NE(BlueAt(sheet, late, top), BlueAt(sheet, early, top));
    EXPECT_NE(out.str().find(", with sound\n"), std::string::npos);
}

TEST(WriteSheet, AnEmptySoundHasNoStrip) {
    TemporaryFolder folder;
    ScriptedVideo video({0}, 20'000'000);
    ScriptedSound sound(0);
    SheetRequest request = Request(folder);
    request.json = true;
    std::ostringstream out;
    WriteSheet(video, &sound, request, out);
    EXPECT_EQ(ReadPng(request.output).height, Program::LayOutSheet({16, 8}, 2, 2).sheet.height);
    EXPECT_EQ(nlohmann::json::parse(out.str())["sound"], false);
}
