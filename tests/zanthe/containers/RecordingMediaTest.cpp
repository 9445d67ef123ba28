// Recordings of real codecs, against what the ffmpeg and ffprobe programs make of their AVI files.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <numeric>
#include <random>
#include <sstream>

#include <gtest/gtest.h>

#include "platform/com/FileStream.h"
#include "platform/win32/Text.h"
#include "tests/support/AviFile.h"
#include "tests/support/CompoundFile.h"
#include "tests/support/DecoderPictures.h"
#include "tests/support/FfmpegPictures.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestMedia.h"
#include "zanthe/containers/OrirecScreenVideoDecoder.h"
#include "zanthe/core/DecoderFactory.h"
#include "zanthe/core/VideoSample.h"
#include "zanthe/core/VideoSampleReader.h"

namespace {

using AVI20::Read::FourCc;
using Zanthe::MediaTime;

// Every picture in order, compared with ffmpeg's, then all of them at random.
void ExpectPictures(const std::string& aviPath, int count) {
    const TemporaryFolder folder;
    const std::string path = folder / "a.orirec";
    WriteCompoundFile(path, {{"Screen_Stream.avi", ReadWholeFile(aviPath)}, {"Audio.wav", "x"}});
    const auto decoder = OrirecScreenVideoDecoder::create(path);
    ExpectLikeness(ExpectAnyOrder(*decoder, MiddlesOf(count, 10)),
                   FfmpegPictures(aviPath, decoder->outputWidth(), decoder->outputHeight()));
}

class RecordedCodec : public testing::TestWithParam<const char*> {};

TEST_P(RecordedCodec, EveryPictureIsExactInAnyOrder) {
    ExpectPictures(MadeMedia(std::string("rec-") + GetParam() + ".avi"), 40);
}

INSTANTIATE_TEST_SUITE_P(Codecs, RecordedCodec,
                         testing::Values("cinepak", "msvideo1", "mjpeg", "mpeg4", "zmbv", "h264"),
                         [](const auto& row) { return std::string(row.param); });

// Pictures without any coding: each pixel tells its place and its frame.
std::string RawPicture(int width, int height, int bits, int frame) {
    const int bytes = bits / 8;
    std::string rows;
    for (int y = 0; y < height; ++y) {
        std::string row;
        for (int i = 0; i < width * bytes; ++i) {
            row += static_cast<char>(i * 7 + y * 29 + frame * 53);
        }
        row.resize((row.size() + 3) / 4 * 4);
        rows += row;
    }
    return rows;
}

class RecordedPixels : public testing::TestWithParam<int> {};

TEST_P(RecordedPixels, EveryPictureIsExactInAnyOrder) {
    for (const Avi::IndexKind kind : {Avi::IndexKind::Old, Avi::IndexKind::OpenDml}) {
        std::vector<Avi::Frame> frames;
        frames.reserve(24);
        for (int i = 0; i < 24; ++i) {
            frames.push_back({RawPicture(31, 17, GetParam(), i), true});
        }
        const TemporaryFolder folder;
        ExpectPictures(
            folder.Write("raw.avi", Avi::OneVideo({0, 0, 31, 17, GetParam()}, frames, kind)), 24);
    }
}

INSTANTIATE_TEST_SUITE_P(Depths, RecordedPixels, testing::Values(16, 24, 32),
                         [](const auto& row) { return std::to_string(row.param); });

// Runs that say only what has changed, one key frame far behind, and single bytes in between.
TEST(RecordedRuns, PicturesBuildOnTheOnesBefore) {
    std::vector<Avi::Frame> frames;
    std::string expected; // the blue of each picture's first row of four
    std::string row(4, '\x20');
    for (int i = 0; i < 50; ++i) {
        if (i % 5 == 4) {
            frames.push_back({"0", false});
        } else {
            const char shade = static_cast<char>(0x20 + i);
            row[static_cast<std::size_t>(i) % 4] = shade;
            const std::string whole = "\4" + std::string(3, '\x20');
            const std::string bytes = i == 0 ? whole + std::string("\0\0", 2) + whole
                                             : std::string("\0\2", 2) + static_cast<char>(i % 4) +
                                                   '\1' + '\1' + std::string(3, shade);
            frames.push_back({bytes + std::string("\0\1", 2), i == 0});
        }
        expected += row;
    }
    const TemporaryFolder folder;
    const std::string path = folder / "a.orirec";
    WriteCompoundFile(path,
                      {{"Screen_Stream.avi", Avi::OneVideo({FourCc("mrle"), BI_RLE8, 4, 2, 24},
                                                           frames, Avi::IndexKind::OpenDml)}});
    const auto decoder = OrirecScreenVideoDecoder::create(path);
    std::vector<int> order(50);
    std::iota(order.begin(), order.end(), 0);
    for (int round = 0; round < 3; ++round) {
        for (const int i : order) {
            std::vector<unsigned char> pixels(std::size_t{4} * 2 * 4);
            double actualTime = -1.0;
            ASSERT_TRUE(decoder->readFrame(MediaTime(2 * i + 1, 20), pixels.data(), actualTime));
            for (std::size_t x = 0; x < 4; ++x) {
                ASSERT_EQ(pixels[4 * x],
                          static_cast<unsigned char>(expected[static_cast<std::size_t>(i) * 4 + x]))
                    << i << ' ' << x;
            }
        }
        std::shuffle(order.begin(), order.end(), std::mt19937(7));
    }
}

TEST(RecordedRoute, TheFactoryOpensTheScreenStream) {
    const TemporaryFolder folder;
    WriteCompoundFile(folder / "a.orirec",
                      {{"Screen_Stream.avi", ReadWholeFile(MadeMedia("rec-mjpeg.avi"))}});
    const std::unique_ptr<Zanthe::DecoderFactory> factory(Zanthe::DecoderFactory::Create());
    const std::unique_ptr<Zanthe::VideoSampleReader> reader(
        factory->CreateVideoSampleReader(folder / "a.orirec" + "!Screen_Stream.avi", 0, false));
    ASSERT_NE(reader, nullptr);
}

// One line of ffprobe for each packet: place, size, flags.
struct Packet {
    std::uint64_t place;
    std::uint32_t size;
    bool keyFrame;
};

// In the order of the file; of all streams unless `which` is an option that chooses one.
std::vector<Packet> PacketsOf(const std::string& path, const std::string& which = "") {
    std::istringstream lines(OutputOf("ffprobe -v quiet " + which +
                                      " -show_packets -show_entries packet=pos,size,flags "
                                      "-of csv=p=0 '" +
                                      path + "'"));
    std::vector<Packet> packets;
    std::string line;
    while (std::getline(lines, line)) {
        Packet packet{};
        char flag = 0;
        unsigned long long place = 0;
        if (std::sscanf(line.c_str(), "%u,%llu,%c", &packet.size, &place, &flag) == 3) {
            packet.place = place;
            packet.keyFrame = flag == 'K';
            packets.push_back(packet);
        }
    }
    std::sort(packets.begin(), packets.end(),
              [](const Packet& a, const Packet& b) { return a.place < b.place; });
    return packets;
}

// An AVI file, open.
class OpenFile {
public:
    explicit OpenFile(const std::string& path)
        : m_file(FileAt(path))
        , m_stream(m_file.Get())
        , m_reader(&m_stream) {}

    AVI20::Read::Reader& Reader() { return m_reader; }

private:
    static com::ComPtr<::IStream> FileAt(const std::string& path) {
        com::ComPtr<::IStream> file;
        EXPECT_EQ(SHCreateStreamOnFileW(win32::Utf8ToWide(path).c_str(), STGM_READ, file.Put()),
                  S_OK);
        return file;
    }

    com::ComPtr<::IStream> m_file;
    AVI20::Read::WindowsStream m_stream;
    AVI20::Read::Reader m_reader;
};

void ExpectFrames(const AVI20::Read::MediaStreamReader& frames,
                  const std::vector<Packet>& packets) {
    ASSERT_EQ(frames.GetFrameCount(), packets.size());
    // Of a file that it jumps about in, ffprobe tells the payloads' places, else the chunks'.
    const std::uint64_t header = frames.GetFrameOffset(0) == packets[0].place ? 0 : 8;
    for (std::uint32_t frame = 0; frame < packets.size(); ++frame) {
        EXPECT_EQ(frames.GetFrameOffset(frame), packets[frame].place + header);
        EXPECT_EQ(frames.GetFrameSize(frame), packets[frame].size);
        EXPECT_EQ(frames.IsKeyFrame(frame), packets[frame].keyFrame) << frame;
    }
}

void ExpectFramesOfFfprobe(const std::string& path, std::size_t streams, bool oldIndex) {
    OpenFile file(path);
    ASSERT_EQ(file.Reader().GetStreamCount(), streams);
    const auto packets = PacketsOf(path);
    ASSERT_GE(packets.size(), 40U);
    for (std::size_t i = 0; i < streams; ++i) {
        const auto frames = file.Reader().GetMediaStreamReader(i);
        EXPECT_EQ(frames.GetStreamInfo().isOldIndex, oldIndex);
        ExpectFrames(frames, packets);
    }
}

class FrameTable : public testing::TestWithParam<const char*> {};

// Files of several streams have the chunks of all of them in each.
TEST_P(FrameTable, IsThatOfFfprobe) {
    const std::string name = GetParam();
    ExpectFramesOfFfprobe(MadeMedia("rec-" + name + ".avi"), name.rfind("sound", 0) == 0 ? 2 : 1,
                          true);
}

TEST(OpenDmlFrameTable, IsThatOfFfprobe) {
    std::vector<Avi::Frame> frames;
    for (std::size_t i = 0; i < 95; ++i) {
        frames.push_back({std::string(3 + i % 5, static_cast<char>(i)), i % 12 == 0});
    }
    const TemporaryFolder folder;
    ExpectFramesOfFfprobe(
        folder.Write("dml.avi", Avi::OneVideo({FourCc("cvid"), FourCc("cvid"), 64, 48}, frames,
                                              Avi::IndexKind::OpenDml)),
        1, false);
}

// A file of more than a gigabyte is the smallest that ffmpeg writes with an OpenDML index: pictures
// and sound, each with standard indexes of its own in the first list and in an "AVIX" list.
TEST(OpenDmlFrameTable, OfALargeFileOfTwoStreamsIsThatOfFfprobe) {
    if (std::getenv("ZANTHE_LARGE_FILES") == nullptr) {
        GTEST_SKIP() << "ZANTHE_LARGE_FILES is not set: it takes 1.2 GB of disk";
    }
    const TemporaryFolder folder;
    const std::string path = folder / "large.avi";
    OutputOf("ffmpeg -nostdin -v error -f lavfi -i testsrc2=size=1921x1081:rate=30:duration=6 "
             "-f lavfi -i sine=frequency=440:duration=6 -map 0 -map 1 -c:v rawvideo -pix_fmt bgr24 "
             "-c:a pcm_s16le '" +
             path + "'");
    OpenFile file(path);
    ASSERT_EQ(file.Reader().GetStreamCount(), 2U);
    for (std::size_t i = 0; i < 2; ++i) {
        const auto frames = file.Reader().GetMediaStreamReader(i);
        EXPECT_FALSE(frames.GetStreamInfo().isOldIndex);
        const auto packets = PacketsOf(path, "-select_streams " + std::to_string(i));
        ASSERT_GE(packets.size(), 180U);
        EXPECT_GT(packets.back().place, std::uint64_t{1} << 30);
        ExpectFrames(frames, packets);
    }
}

// Real files of one stream, among them ones with an index that names chunks of another one.
TEST(RealFrameTables, AreThoseOfFfprobe) {
    const auto files = RealMedia("avi");
    if (files.empty()) {
        GTEST_SKIP() << "no real media beside the checkout";
    }
    std::size_t compared = 0;
    for (const auto& path : files) {
        SCOPED_TRACE(path.string());
        OpenFile file(path.string());
        const auto packets = PacketsOf(path.string());
        for (std::size_t i = 0; i < file.Reader().GetStreamCount(); ++i) {
            const auto frames = file.Reader().GetMediaStreamReader(i);
            EXPECT_GT(frames.GetFrameCount(), 0U);
            if (frames.GetFrameCount() == packets.size()) {
                ExpectFrames(frames, packets);
                ++compared;
            }
        }
    }
    EXPECT_GT(compared, 0U);
}

INSTANTIATE_TEST_SUITE_P(Files, FrameTable,
                         testing::Values("cinepak", "msvideo1", "mjpeg", "mpeg4", "zmbv", "h264",
                                         "sound", "sound_first"),
                         [](const auto& row) { return std::string(row.param); });

} // namespace
