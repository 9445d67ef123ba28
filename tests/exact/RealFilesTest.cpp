// The pictures of real files, asked for in shuffled order.
#include <algorithm>
#include <cctype>
#include <map>

#include <gtest/gtest.h>

#include "platform/av/Handles.h"
#include "tests/exact/Files.h"
#include "tests/exact/PictureCheck.h"

namespace {

constexpr unsigned int Seed = 77003;
constexpr std::size_t MostQuestions = 60;
constexpr std::size_t MostPictures = 400; // of large ones, a gigabyte

// What is known to differ, and why.
const std::map<std::string, std::string>& KnownToDiffer() {
    static const std::string jumbled =
        "times and order of its pictures contradict each other; the program goes by their order, "
        "the library by their times";
    static const std::string encrypted =
        "encrypted; the library refuses it, the program shows noise";
    static const std::map<std::string, std::string> reasons{
        {"jcodec__cat_avc_clip.mp4", jumbled},
        {"jcodec__precise_clip.mp4", jumbled},
        {"media__sample_fragmented_sgpd_v2.mp4", encrypted},
        {"media__sample_fragmented_variable_length_sgpd.mp4", encrypted}};
    return reasons;
}

// Of 12 bits: no kernel converts them, so FFmpeg's scaler does.
double SameFor(const std::filesystem::path& file) {
    return file.filename() == "torchcodec__testsrc2_12bit_hdr.mp4" ? SameButForColourEdges
                                                                   : SamePicture;
}

// The codec of the first video stream that is no attached picture.
AVCodecID CodecOf(const std::string& path) {
    AVFormatContext* opened = nullptr;
    if (avformat_open_input(&opened, path.c_str(), nullptr, nullptr) < 0) {
        return AV_CODEC_ID_NONE;
    }
    const av::FormatContextPtr format(opened);
    for (unsigned int i = 0; i < format->nb_streams; ++i) {
        const AVStream& stream = *format->streams[i];
        if (stream.codecpar->codec_type == AVMEDIA_TYPE_VIDEO &&
            (stream.disposition & AV_DISPOSITION_ATTACHED_PIC) == 0) {
            return stream.codecpar->codec_id;
        }
    }
    return AV_CODEC_ID_NONE;
}

// As far as the name decides, which it does alone.
bool GoesToTheReader(const std::filesystem::path& file) {
    std::string extension = file.extension().string();
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](unsigned char c) { return std::tolower(c); });
    return extension == ".mp4" || extension == ".mov" || extension == ".m4a";
}

bool IsOfTheReadersCodecs(const std::string& path) {
    const AVCodecID codec = CodecOf(path);
    return codec == AV_CODEC_ID_H264 || codec == AV_CODEC_ID_HEVC || codec == AV_CODEC_ID_MPEG4;
}

std::vector<std::filesystem::path> Files() {
    std::vector<std::filesystem::path> files;
    for (const auto& file : RealMedia("mp4")) {
        if (GoesToTheReader(file)) {
            files.push_back(file);
        }
    }
    return files;
}

class RealFile : public testing::TestWithParam<std::filesystem::path> {};

TEST_P(RealFile, ShowsEachPictureAtItsTime) {
    const auto& reasons = KnownToDiffer();
    const auto known = reasons.find(GetParam().filename().string());
    if (known != reasons.end()) {
        GTEST_SKIP() << known->second;
    }
    if (!IsOfTheReadersCodecs(GetParam().string())) {
        GTEST_SKIP() << "of another codec";
    }
    const ReferencePictures reference(GetParam().string(), MostPictures);
    if (reference.Count() == 0 || !reference.HasTimes() || !reference.HasPixels()) {
        GTEST_SKIP() << "the ffmpeg program shows nothing that could be compared";
    }
    PictureAsker asker(GetParam().string());
    ASSERT_TRUE(asker);
    ExpectAnswers(asker, reference, QuestionsAbout(reference, MostQuestions, Seed),
                  SameFor(GetParam()));
}

INSTANTIATE_TEST_SUITE_P(All, RealFile, testing::ValuesIn(Files()), NameOfFile);
// Without the collection beside the checkout there are none.
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(RealFile);

TEST(RealFiles, AreThere) {
    if (Files().empty()) {
        GTEST_SKIP() << "no real media beside the checkout";
    }
}

} // namespace
