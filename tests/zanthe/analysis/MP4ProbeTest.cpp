// What the finders report, held against what the ffprobe program says of the same file.

#include <filesystem>
#include <memory>
#include <numeric>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "platform/win32/Text.h"
#include "tests/support/TestMedia.h"
#include "tests/zanthe/analysis/Ffprobe.h"
#include "tests/zanthe/analysis/Mp4Samples.h"
#include "zanthe/analysis/FileReader.h"
#include "zanthe/analysis/MP4ParseException.h"
#include "zanthe/analysis/MP4Parser.h"
#include "zanthe/analysis/MP4StreamTypes.h"
#include "zanthe/analysis/MediaOrientation.h"

namespace {

// Files that the finders refuse and ffprobe does not.
const std::set<std::string> Refused{
    "mp4-no-ftyp.mov", // its first box is not `ftyp`
    // A few bytes that are no box follow the last one. ffprobe stops there; here the walk ends at
    // the end of the file or not at all.
    "jcodec__cat_avc_clip.mp4",
    "streamio-ffmpeg__ios9.mov",
    // Not in MP4 at all.
    "media__bbb_1ch_8kHz_aac_lc.aac",
    "media__sine.aac",
};

// Files whose transform is no plain turn, and that ffprobe reports an angle for.
const std::set<std::string> OddlyTurned{
    "jcodec__itunes.mov",                   // in units of 1 instead of 65536: here the identity
    "media__sample_rotate_and_reflect.mp4", // mirrored, too
};

std::int32_t TypeOf(const ProbedStream& stream) {
    if (stream.kind == "video") {
        return MP4TrackType::Video;
    }
    return stream.kind == "audio" ? MP4TrackType::Audio : MP4TrackType::Other;
}

// Those streams that are tracks: ffprobe also lists a cover picture out of the file's tags.
std::vector<ProbedStream> TracksOf(const std::vector<ProbedStream>& streams) {
    std::vector<ProbedStream> tracks;
    for (const ProbedStream& stream : streams) {
        if (stream.id != 0) {
            tracks.push_back(stream);
        }
    }
    return tracks;
}

// Of an encrypted track the finders report the format as written, ffprobe the one underneath.
bool IsEncrypted(const std::string& codec) {
    return codec == "encv" || codec == "enca";
}

void CompareStreamTypes(const std::vector<MP4StreamType>& ours,
                        const std::vector<ProbedStream>& probed) {
    ASSERT_EQ(ours.size(), probed.size());
    for (std::size_t i = 0; i < ours.size(); ++i) {
        EXPECT_EQ(ours[i].type, TypeOf(probed[i])) << "track " << i;
        if (!IsEncrypted(ours[i].codec)) {
            EXPECT_EQ(ours[i].codec, probed[i].codec) << "track " << i;
        }
    }
}

std::string InLowestTerms(std::int32_t width, std::int32_t height) {
    const std::int32_t divisor = std::gcd(width, height);
    return std::to_string(width / divisor) + ":" + std::to_string(height / divisor);
}

// Left out: the shown size, of which ffprobe says nothing; and a pixel of 1:1, which ours says also
// of a file without a `pasp` box, where ffprobe takes the shape from the coded pictures.
void CompareAvc1(const MP4TrackInfo& ours, const ProbedStream& probed) {
    EXPECT_EQ(ours.codedWidth, probed.width);
    EXPECT_EQ(ours.codedHeight, probed.height);
    if (ours.parWidth != ours.parHeight) {
        EXPECT_EQ(InLowestTerms(ours.parWidth, ours.parHeight), probed.sampleAspectRatio);
    }
}

void CompareTrack(const MP4TrackInfo& ours, const ProbedStream& probed) {
    const std::string codec = ours.codec.data();
    EXPECT_EQ(ours.trackId, probed.id);
    EXPECT_EQ(ours.type, TypeOf(probed));
    if (IsEncrypted(codec)) {
        return;
    }
    EXPECT_EQ(codec, probed.codec == "text" ? "" : probed.codec); // "text" is passed over
    if (codec == "avc1") {
        CompareAvc1(ours, probed);
    }
}

void CompareTracks(const std::vector<MP4TrackInfo>& ours, const std::vector<ProbedStream>& probed) {
    ASSERT_EQ(ours.size(), probed.size());
    for (std::size_t i = 0; i < ours.size(); ++i) {
        SCOPED_TRACE("track " + std::to_string(i));
        CompareTrack(ours[i], probed[i]);
    }
}

// ffprobe counts against the clock. Files by another name than .mp4 and .mov are not looked at.
void CompareRotation(const std::filesystem::path& path, const std::vector<ProbedStream>& probed) {
    const std::string extension = path.extension().string();
    const bool isRead = extension == ".mp4" || extension == ".mov" || extension == ".MOV";
    int expected = 0;
    for (const ProbedStream& stream : probed) {
        if (isRead && stream.kind == "video") {
            expected = (360 - stream.rotation.value_or(0)) % 360;
        }
    }
    const MediaOrientation ours = ReadMediaOrientation(win32::Utf8ToWide(path.string()));
    EXPECT_EQ(RotationFromOrientation(ours),
              OddlyTurned.contains(path.filename().string()) ? 0 : expected);
}

void ExpectRefusal(const std::wstring& path) {
    DSMediaDetNS::MP4Parser parser(std::make_unique<FileReader>());
    EXPECT_THROW(parser.Parse(path), MP4ParseException);
    EXPECT_TRUE(ReadMP4StreamTypes(path).empty());
    EXPECT_EQ(ReadMediaOrientation(path), MediaOrientation());
}

void Compare(const std::filesystem::path& path, const std::vector<ProbedStream>& probed) {
    const std::wstring wide = win32::Utf8ToWide(path.string());
    if (Refused.contains(path.filename().string())) {
        ExpectRefusal(wide);
        return;
    }
    CompareStreamTypes(ReadMP4StreamTypes(wide), probed);
    DSMediaDetNS::MP4Parser parser(std::make_unique<FileReader>());
    ASSERT_NO_THROW(parser.Parse(wide));
    CompareTracks(parser.Tracks(), probed);
    CompareRotation(path, probed);
}

void CompareRealFiles(const std::string& folder) {
    const std::vector<std::filesystem::path> files = RealMedia(folder);
    if (files.empty()) {
        GTEST_SKIP() << "no real media beside the checkout";
    }
    for (const std::filesystem::path& path : files) {
        SCOPED_TRACE(path.filename().string());
        const auto probed = Probe(path.string());
        if (probed.has_value()) { // else media segments without a header, and a codec it lacks
            Compare(path, TracksOf(*probed));
        }
    }
}

TEST(MP4Probe, MadeFiles) {
    for (const std::string& name : Mp4Samples()) {
        SCOPED_TRACE(name);
        const auto probed = Probe(MadeMedia(name));
        ASSERT_TRUE(probed.has_value());
        Compare(MadeMedia(name), TracksOf(*probed));
    }
}

TEST(MP4Probe, RealFiles) {
    CompareRealFiles("mp4");
}

TEST(MP4Probe, RealSoundFiles) {
    CompareRealFiles("mp4_audio");
}

} // namespace
