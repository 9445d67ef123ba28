#include "tools/zanthe/VideoEnd.h"

#include <sstream>

#include <gmock/gmock.h>

#include "tests/tools/ScriptedVideo.h"
#include "tools/zanthe/VideoVerifyReport.h"

using Program::DescribeEnd;
using Program::Disagreement;
using ::testing::EndsWith;
using ::testing::HasSubstr;

namespace {

ScriptedVideo Video(std::optional<std::int64_t> told, bool tellsTimes = true) {
    ScriptedVideo video({0, 10'000'000}, 20'000'000, tellsTimes);
    video.facts.duration = told;
    return video;
}

std::string EndOf(ScriptedVideo video) {
    return DescribeEnd(video);
}

} // namespace

TEST(Disagreement, IsNoneWhereHeaderAndPicturesAgree) {
    EXPECT_EQ(Disagreement({}), "");
    EXPECT_EQ(Disagreement({.told = 20'000'000}), "");
    EXPECT_EQ(Disagreement({.pictures = 20'000'000}), "");
    EXPECT_EQ(Disagreement({.told = 20'000'000, .pictures = 20'000'000}), "");
    EXPECT_EQ(Disagreement({.told = 20'000'000, .pictures = 20'009'999}), "") << "is rounding";
    EXPECT_EQ(Disagreement({.told = 20'999'999, .pictures = 20'000'000}), "");
}

TEST(Disagreement, NamesAHeaderThatEndsTooEarly) {
    EXPECT_EQ(Disagreement({.told = 10'800'000, .pictures = 11'199'999}),
              "the header's duration ends the stream at 0:00:01.080, 40 ms before its last "
              "picture's end: nothing is shown behind that");
}

TEST(Disagreement, NamesAHeaderThatPromisesMore) {
    EXPECT_EQ(Disagreement({.told = 30'000'000, .pictures = 19'600'000}),
              "the header promises 0:00:03.000, but the last picture ends at 0:00:01.960: the file "
              "may be cut short");
}

TEST(DescribeEnd, ReadsTheLastPicture) {
    EXPECT_EQ(EndOf(Video(std::nullopt, false)), "its last picture ends at 0:00:02.000");
    EXPECT_EQ(EndOf(Video(15'000'000)),
              "the header's duration ends the stream at 0:00:01.500, 500 ms before its last "
              "picture's end: nothing is shown behind that");
}

TEST(DescribeEnd, OfAReaderThatGivesItsLastPictureUpToTheEndThatItTells) {
    ScriptedVideo video = Video(30'000'000);
    video.script = [&](std::size_t, const auto& time) {
        auto picture = video.Honest(time);
        return picture ? std::move(picture) : std::optional(video.PictureOf(1));
    };
    EXPECT_THAT(DescribeEnd(video), HasSubstr("promises 0:00:03.000, but the last picture ends"));
}

TEST(DescribeEnd, WithoutALastPictureIsTheHeaders) {
    EXPECT_EQ(EndOf(Video(30'000'000)), "its header ends it at 0:00:03.000");
    ScriptedVideo empty({}, 0, false);
    EXPECT_EQ(DescribeEnd(empty), "");
}

TEST(VideoVerifyReport, SaysWhereTheHeaderEndsTheStream) {
    Program::VideoVerifyReport report{.file = "clip.mp4", .seed = 1, .facts = {}, .video = {}};
    report.facts.duration = 10'800'000;
    report.facts.remarks = {"is odd"};
    report.video.duration = 11'199'999;
    std::ostringstream out;
    PrintLines(report, out);
    const std::string remark = Disagreement({.told = 10'800'000, .pictures = 11'199'999});
    EXPECT_THAT(out.str(), EndsWith("\n  is odd\n  " + remark + '\n'));
    const Program::Json json = JsonOf(report);
    EXPECT_EQ(json["remarks"][1], remark);
    EXPECT_EQ(json["duration_100ns"], 10'800'000);
    EXPECT_EQ(json["last_picture_end_100ns"], 11'199'999);
}
