#include "zanthe/containers/OrirecScreenVideoDecoder.h"

#include <algorithm>
#include <cstring>
#include <exception>
#include <stdexcept>

#include <gtest/gtest.h>
#include <sys/mman.h>

#include "tests/support/AviFile.h"
#include "tests/support/CompoundFile.h"
#include "tests/support/MemoryStream.h"
#include "tests/support/ScriptedCodec.h"
#include "tests/support/TemporaryFolder.h"

namespace {

using AVI20::Read::FourCc;
using Zanthe::MediaTime;

constexpr DWORD TestCode = FourCc("zzzz");
constexpr DWORD ScreenCode = FourCc("bscc");

// What the failure says; "opened" for none.
std::string FailureOf(const std::string& path) {
    try {
        OrirecScreenVideoDecoder::create(path);
        return "opened";
    } catch (const std::runtime_error&) {
        return "a runtime_error";
    } catch (const std::exception& failure) {
        return failure.what();
    }
}

// Frames "0+", "1+", ..., a key frame every `keyDistance`; one named in `unchanged` is one byte.
std::vector<Avi::Frame> Frames(std::size_t count, std::size_t keyDistance,
                               const std::vector<std::size_t>& unchanged = {}) {
    std::vector<Avi::Frame> frames;
    for (std::size_t i = 0; i < count; ++i) {
        const bool same = std::count(unchanged.begin(), unchanged.end(), i) != 0;
        frames.push_back({same ? "0" : std::to_string(i) + '+', i % keyDistance == 0});
    }
    return frames;
}

// A recording and a codec that paints all bytes of a picture with the number of its frame.
class Recording : public testing::Test {
protected:
    void Write(const Avi::VideoStream& stream, const std::vector<Avi::Frame>& frames,
               Avi::IndexKind kind = Avi::IndexKind::Old) {
        WriteCompoundFile(path, {{"Screen_Stream.avi", Avi::OneVideo(stream, frames, kind)}});
    }

    void WriteFrames(const std::vector<Avi::Frame>& frames) {
        Write({TestCode, TestCode, 4, 2, 24}, frames);
    }

    void Open() {
        decoder = OrirecScreenVideoDecoder::create(path);
        buffer.assign(
            static_cast<std::size_t>(decoder->outputWidth()) * decoder->outputHeight() * 4, 0xEE);
    }

    // The frame at this time as the codec painted it, or -1.
    int Read(MediaTime time) {
        double actualTime = -7.0;
        if (!decoder->readFrame(time, buffer.data(), actualTime)) {
            EXPECT_EQ(actualTime, -7.0);
            return -1;
        }
        EXPECT_DOUBLE_EQ(actualTime, static_cast<double>(time.numerator()) /
                                         static_cast<double>(time.denominator()));
        return buffer.empty() ? 0 : buffer[0];
    }

    int ReadNumber(int frame) { return Read(MediaTime(frame * 2 + 1, 20)); }

    // What was decoded since the last time.
    std::string Decoded() {
        std::string text;
        for (const std::string& picture : codec.pictures) {
            text += picture.substr(0, picture.find('+')) + ' ';
        }
        codec.pictures.clear();
        return text;
    }

    static LRESULT Paint(const ICDECOMPRESS& picture) {
        std::memset(picture.lpOutput, std::atoi(static_cast<const char*>(picture.lpInput)),
                    picture.lpbiOutput->biSizeImage);
        return ICERR_OK;
    }

    Recording() { codec.onDecompress = Paint; }

    TemporaryFolder folder;
    std::string path = folder / "a.orirec";
    ScriptedCodec codec{TestCode};
    std::unique_ptr<OrirecScreenVideoDecoder> decoder;
    std::vector<unsigned char> buffer;
};

TEST_F(Recording, FailuresToOpenAreTold) {
    EXPECT_EQ(FailureOf(folder / "none"),
              "OrirecScreenVideoDecoder - orirec is not a structured-storage file!");
    EXPECT_EQ(FailureOf(folder.Write("text", "text")),
              "OrirecScreenVideoDecoder - failed to open structured-storage file!");
    WriteCompoundFile(path, {{"Camera_Stream.wmv", "x"}});
    EXPECT_EQ(FailureOf(path), "OrirecScreenVideoDecoder - failed to open screen stream!");
    Write({FourCc("none"), FourCc("none"), 4, 2}, Frames(3, 1));
    EXPECT_EQ(FailureOf(path), "OrirecScreenVideoDecoder - VFW codec initialization failed!");
    codec.refuses = true;
    WriteFrames(Frames(3, 1));
    EXPECT_EQ(FailureOf(path), "OrirecScreenVideoDecoder - VFW codec initialization failed!");
}

TEST_F(Recording, WhatIsNoAviShowsNothing) {
    WriteCompoundFile(path, {{"Screen_Stream.avi", std::string(5'000, 'x')}});
    // Without a stream the code is 0, which is that of uncompressed pictures; of these there is
    // none.
    decoder = OrirecScreenVideoDecoder::create(path);
    EXPECT_EQ(decoder->outputWidth(), 0);
    EXPECT_EQ(Read(MediaTime(0)), -1);
}

TEST_F(Recording, AStreamWithoutAnIndexThrowsWithoutAText) {
    using namespace Riff;
    WriteCompoundFile(
        path, {{"Screen_Stream.avi",
                List("RIFF", "AVI ", List("strl", Avi::StreamHeader("vids", TestCode, 3)))}});
    EXPECT_EQ(FailureOf(path), std::exception().what());
    EXPECT_TRUE(codec.calls.empty());
}

TEST_F(Recording, SizesThatNoPictureHasAreRefused) {
    for (const auto& [width, height] :
         {std::pair{-4, 2}, {4, -2}, {0x7FFFFFFF, 0x7FFFFFFF}, {1 << 20, 1 << 20}}) {
        Write({TestCode, TestCode, width, height}, Frames(3, 1));
        EXPECT_EQ(FailureOf(path), "OrirecScreenVideoDecoder - VFW codec initialization failed!");
    }
}

TEST_F(Recording, TheCodecIsAskedStartedAndEnded) {
    WriteFrames(Frames(3, 1));
    Open();
    EXPECT_EQ(decoder->outputWidth(), 4);
    EXPECT_EQ(decoder->outputHeight(), 2);
    decoder.reset();
    EXPECT_EQ(codec.calls, (std::vector<std::string>{"open", "query 24 4x2 (0) -> 32 4x2 (32)",
                                                     "begin", "end", "close"}));
}

TEST_F(Recording, WhatTheCodecSaysToItsStartPlaysNoPart) {
    codec.beginAnswer = ICERR_ERROR;
    WriteFrames(Frames(3, 1));
    Open();
    EXPECT_EQ(codec.begun, "24 4x2 (0) -> 32 4x2 (32)");
    EXPECT_EQ(ReadNumber(1), 1);
}

TEST_F(Recording, TheFirstStreamOfPicturesIsShown) {
    const std::vector<Avi::Frame> sound(50, {"99+", true});
    WriteCompoundFile(
        path, {{"Screen_Stream.avi",
                Avi::SoundAndVideo(sound, {TestCode, TestCode, 4, 2, 24}, Frames(30, 10))}});
    Open();
    EXPECT_EQ(decoder->outputWidth(), 4);
    EXPECT_EQ(ReadNumber(13), 13);
    EXPECT_EQ(Decoded(), "*10 11 12 13 ");
    EXPECT_EQ(ReadNumber(29), 29);
}

TEST_F(Recording, TimesOutsideTheStreamAreRefused) {
    WriteFrames(Frames(5, 1));
    Open();
    EXPECT_EQ(Read(MediaTime(-1, 100)), -1);
    EXPECT_EQ(Read(MediaTime(1, 2)), -1); // the duration itself
    EXPECT_EQ(Read(MediaTime(100)), -1);
    EXPECT_EQ(Read(MediaTime(0)), 0);
    EXPECT_EQ(Read(MediaTime(499, 1000)), 4);
    EXPECT_EQ(Read(MediaTime(399, 1000)), 3);
}

TEST_F(Recording, ATimeWithoutAFrameIsRefused) {
    // The header promises more frames than the index has.
    std::string avi = Avi::OneVideo({TestCode, TestCode, 4, 2}, Frames(3, 1), Avi::IndexKind::Old);
    avi[avi.find("strh") + 8 + 32] = 100;
    WriteCompoundFile(path, {{"Screen_Stream.avi", avi}});
    Open();
    EXPECT_EQ(ReadNumber(2), 2);
    EXPECT_EQ(ReadNumber(3), -1);
}

// The header's length counts, whatever the index holds.
TEST_F(Recording, BehindTheHeadersLengthThereIsNone) {
    std::string avi = Avi::OneVideo({TestCode, TestCode, 4, 2}, Frames(9, 1), Avi::IndexKind::Old);
    avi[avi.find("strh") + 8 + 32] = 4;
    WriteCompoundFile(path, {{"Screen_Stream.avi", avi}});
    Open();
    EXPECT_EQ(ReadNumber(3), 3);
    EXPECT_EQ(Read(MediaTime(4, 10)), -1);
    EXPECT_EQ(ReadNumber(5), -1);
}

// Five pictures in two seconds.
TEST_F(Recording, ARateIsNoWholeNumber) {
    Write({TestCode, TestCode, 4, 2, 24, 5, 2}, Frames(10, 1));
    Open();
    EXPECT_EQ(Read(MediaTime(39, 100)), 0);
    EXPECT_EQ(Read(MediaTime(41, 100)), 1);
    EXPECT_EQ(Read(MediaTime(199, 100)), 4);
    EXPECT_EQ(Read(MediaTime(2)), 5);
    EXPECT_EQ(Read(MediaTime(399, 100)), 9);
    EXPECT_EQ(Read(MediaTime(4)), -1);
}

TEST_F(Recording, TheSameFrameIsDecodedOnce) {
    WriteFrames(Frames(30, 10));
    Open();
    EXPECT_EQ(ReadNumber(13), 13);
    EXPECT_EQ(Decoded(), "*10 11 12 13 ");
    EXPECT_EQ(ReadNumber(13), 13);
    EXPECT_EQ(Decoded(), "");
}

TEST_F(Recording, ForwardPlayDecodesOneFrameEach) {
    WriteFrames(Frames(30, 10));
    Open();
    for (int i = 0; i < 30; ++i) {
        EXPECT_EQ(ReadNumber(i), i);
        EXPECT_EQ(Decoded(), (i % 10 == 0 ? "*" : "") + std::to_string(i) + ' ');
    }
}

TEST_F(Recording, AStepBackRestartsAtTheKeyFrame) {
    WriteFrames(Frames(30, 10));
    Open();
    ReadNumber(13);
    Decoded();
    EXPECT_EQ(ReadNumber(12), 12);
    EXPECT_EQ(Decoded(), "*10 11 12 ");
}

TEST_F(Recording, AJumpForwardTakesTheNearerStart) {
    WriteFrames(Frames(40, 10));
    Open();
    ReadNumber(12);
    Decoded();
    EXPECT_EQ(ReadNumber(17), 17); // the last frame is nearer
    EXPECT_EQ(Decoded(), "13 14 15 16 17 ");
    EXPECT_EQ(ReadNumber(25), 25); // the key frame is
    EXPECT_EQ(Decoded(), "*20 21 22 23 24 25 ");
    ReadNumber(20);
    Decoded();
    EXPECT_EQ(ReadNumber(22), 22); // as near as each other: on from the last frame
    EXPECT_EQ(Decoded(), "21 22 ");
}

TEST_F(Recording, ARunOfUnchangedFramesKeepsThePicture) {
    WriteFrames(Frames(10, 10, {4, 5, 6}));
    Open();
    EXPECT_EQ(ReadNumber(3), 3);
    EXPECT_EQ(Decoded(), "*0 1 2 3 ");
    for (int i = 4; i < 7; ++i) {
        EXPECT_EQ(ReadNumber(i), 3);
        EXPECT_EQ(Decoded(), "");
    }
    EXPECT_EQ(ReadNumber(7), 7);
    EXPECT_EQ(Decoded(), "7 ");
}

// The number of the last frame goes up by one, from wherever it was.
TEST_F(Recording, AnUnchangedFrameBehindAJumpCountsOn) {
    WriteFrames(Frames(20, 5, {5}));
    Open();
    EXPECT_EQ(ReadNumber(8), 8);
    EXPECT_EQ(Decoded(), "6 7 8 ");
    EXPECT_EQ(ReadNumber(5), 8); // the last frame is taken to be 9 now
    EXPECT_EQ(Decoded(), "");
    EXPECT_EQ(ReadNumber(9), 8);
    EXPECT_EQ(Decoded(), "");
    EXPECT_EQ(ReadNumber(5), 8); // and 10
    EXPECT_EQ(ReadNumber(11), 11);
    EXPECT_EQ(Decoded(), "11 ");
}

TEST_F(Recording, AFrameThatFailsLeavesTheRest) {
    WriteFrames(Frames(20, 10));
    codec.onDecompress = [](const ICDECOMPRESS& picture) -> LRESULT {
        const int frame = std::atoi(static_cast<const char*>(picture.lpInput));
        if (frame == 3) {
            return ICERR_ERROR;
        }
        if (frame == 4) {
            throw std::runtime_error("broken codec");
        }
        return frame == 14 ? ICERR_DONTDRAW : Paint(picture);
    };
    Open();
    EXPECT_EQ(ReadNumber(5), -1);
    EXPECT_EQ(Decoded(), "*0 1 2 3 ");
    EXPECT_EQ(ReadNumber(2), 2);
    EXPECT_EQ(Decoded(), "");
    codec.onDecompress = [](const ICDECOMPRESS& picture) -> LRESULT {
        throw static_cast<int>(picture.dwFlags);
    };
    EXPECT_EQ(ReadNumber(3), -1);
    codec.onDecompress = Paint;
    EXPECT_EQ(ReadNumber(4), 4);
    EXPECT_EQ(Decoded(), "3 3 4 ");
}

TEST_F(Recording, ACodecThatFaultsHasFailed) {
    void* const forbidden = mmap(nullptr, 4096, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    ASSERT_NE(forbidden, MAP_FAILED);
    WriteFrames(Frames(5, 1));
    codec.onDecompress = [&](const ICDECOMPRESS& picture) -> LRESULT {
        if (std::atoi(static_cast<const char*>(picture.lpInput)) == 1) {
            *static_cast<volatile char*>(forbidden) = 1;
        }
        return Paint(picture);
    };
    Open();
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(ReadNumber(1), -1);
        EXPECT_EQ(ReadNumber(0), 0);
    }
    EXPECT_EQ(ReadNumber(2), 2);
    munmap(forbidden, 4096);
}

TEST_F(Recording, AFrameThatCannotBeReadFails) {
    auto frames = Frames(3, 1);
    std::string avi = Avi::OneVideo({TestCode, TestCode, 4, 2}, frames, Avi::IndexKind::Old);
    const std::size_t size = avi.find("idx1") + 8 + 16 + 12;
    avi.replace(size, 4, "\xF0\xFF\xFF\xFF");
    WriteCompoundFile(path, {{"Screen_Stream.avi", avi}});
    Open();
    EXPECT_EQ(ReadNumber(0), 0);
    EXPECT_EQ(ReadNumber(1), -1);
    EXPECT_EQ(ReadNumber(2), 2);
}

TEST_F(Recording, RatesOfZeroGiveNoFrame) {
    for (const auto& [rate, scale] : {std::pair{10U, 0U}, {0U, 1U}, {0U, 0U}}) {
        Write({TestCode, TestCode, 4, 2, 24, rate, scale}, Frames(3, 1));
        Open();
        EXPECT_EQ(Read(MediaTime(0)), -1);
        EXPECT_EQ(Read(MediaTime(1, 10)), -1);
    }
}

TEST_F(Recording, AHugeSuggestedSizeIsNoMemory) {
    std::string avi = Avi::OneVideo({TestCode, TestCode, 4, 2}, Frames(3, 1), Avi::IndexKind::Old);
    avi.replace(avi.find("strh") + 8 + 36, 4, "\xFF\xFF\xFF\xFF");
    WriteCompoundFile(path, {{"Screen_Stream.avi", avi}});
    Open();
    EXPECT_EQ(codec.calls.at(1), "query 24 4x2 (4294967295) -> 32 4x2 (32)");
    EXPECT_EQ(ReadNumber(2), 2);
}

TEST_F(Recording, ACodecWithout32BitsGives24) {
    codec.onQuery = [](const auto&, const BITMAPINFOHEADER& output) {
        return output.biBitCount == 32 ? ICERR_BADFORMAT : ICERR_OK;
    };
    codec.onDecompress = [](const ICDECOMPRESS& picture) -> LRESULT {
        auto* to = static_cast<unsigned char*>(picture.lpOutput);
        for (DWORD i = 0; i < picture.lpbiOutput->biSizeImage; ++i) {
            to[i] = static_cast<unsigned char>(i);
        }
        return ICERR_OK;
    };
    WriteFrames(Frames(3, 1));
    Open();
    EXPECT_EQ(codec.calls.at(1), "query 24 4x2 (0) -> 32 4x2 (32)");
    EXPECT_EQ(codec.calls.at(2), "begin"); // it is not asked again
    ReadNumber(0);
    // The bottom row came first.
    EXPECT_EQ(buffer, (std::vector<unsigned char>{12,  13,  14, 255, 15,  16,  17, 255, 18,  19, 20,
                                                  255, 21,  22, 23,  255, 0,   1,  2,   255, 3,  4,
                                                  5,   255, 6,  7,   8,   255, 9,  10,  11,  255}));
}

// Only the screen codec's rows are whole groups of four pixels. Others pad theirs, which is not
// taken into account.
TEST_F(Recording, RowsOf24BitsAreReadBackToBack) {
    codec.onQuery = [](const auto&, const auto&) { return ICERR_BADFORMAT; };
    codec.onDecompress = [](const ICDECOMPRESS& picture) -> LRESULT {
        auto* to = static_cast<unsigned char*>(picture.lpOutput);
        for (unsigned char i = 0; i < 32; ++i) {
            to[i] = i;
        }
        return ICERR_OK;
    };
    Write({TestCode, TestCode, 5, 2, 24}, Frames(3, 1));
    Open();
    EXPECT_EQ(codec.begun, "24 5x2 (0) -> 24 5x2 (30)");
    ReadNumber(0);
    EXPECT_EQ(buffer[0], 15);
    EXPECT_EQ(buffer[20], 0);
}

std::uint32_t FrameCountOf(const std::string& avi) {
    MemoryStream stream(avi);
    AVI20::Read::Reader reader(&stream);
    return reader.GetMediaStreamReader(0).GetFrameCount();
}

// At each byte, with either index: a frame comes whole and right, or not at all. The last one's
// entry may be cut itself; it keeps the rest of the one before, and may show anything.
TEST_F(Recording, AStreamThatIsCutAnywhereGivesRightFramesOrNone) {
    for (const Avi::IndexKind kind : {Avi::IndexKind::Old, Avi::IndexKind::OpenDml}) {
        const std::string whole =
            Avi::OneVideo({TestCode, TestCode, 4, 2, 24}, Frames(10, 4), kind);
        int shown = 0;
        for (std::size_t size = 0; size < whole.size(); ++size) {
            const std::string cut = whole.substr(0, size);
            WriteCompoundFile(path, {{"Screen_Stream.avi", cut}});
            try {
                Open();
                const std::uint32_t last = FrameCountOf(cut) - 1;
                for (const std::uint32_t frame : {0U, 9U, 3U, 5U}) {
                    const int painted = ReadNumber(static_cast<int>(frame));
                    const bool right = painted == static_cast<int>(frame);
                    ASSERT_TRUE(painted == -1 || right || frame == last) << size << ' ' << frame;
                    shown += right ? 1 : 0;
                }
            } catch (const std::exception&) {
                // No index: the way in which such a recording fails to open.
            }
        }
        EXPECT_GT(shown, 100);
    }
}

// Recordings in the screen codec, which asks for formats of its own.
class ScreenRecording : public Recording {
protected:
    void TearDown() override { decoder.reset(); } // before its codec

    ScriptedCodec screen{ScreenCode};

    void OpenScreen(int width, int bits, Avi::IndexKind kind = Avi::IndexKind::OpenDml) {
        Write({ScreenCode, ScreenCode, width, 2, bits}, Frames(3, 1), kind);
        Open();
    }
};

TEST_F(ScreenRecording, OnlyAnOpenDmlIndexChangesTheFormats) {
    OpenScreen(5, 24);
    EXPECT_EQ(screen.calls.at(1), "query 24 8x2 (0) -> 24 8x2 (40)");
    EXPECT_EQ(decoder->outputWidth(), 5);
    decoder.reset();
    screen.calls.clear();
    OpenScreen(5, 32);
    EXPECT_EQ(screen.calls.at(1), "query 24 8x2 (0) -> 24 8x2 (40)");
    decoder.reset();
    screen.calls.clear();
    OpenScreen(8, 16);
    EXPECT_EQ(screen.calls.at(1), "query 16 8x2 (0) -> 16 8x2 (64)");
    decoder.reset();
    screen.calls.clear();
    OpenScreen(5, 16, Avi::IndexKind::Old);
    EXPECT_EQ(screen.calls.at(1), "query 16 5x2 (0) -> 32 5x2 (40)");
}

TEST_F(ScreenRecording, RowsOf24BitsAreRoundedTo4Pixels) {
    screen.onDecompress = [](const ICDECOMPRESS& picture) -> LRESULT {
        auto* to = static_cast<unsigned char*>(picture.lpOutput);
        for (int i = 0; i < 2 * 24; ++i) {
            to[i] = static_cast<unsigned char>(i);
        }
        return ICERR_OK;
    };
    OpenScreen(5, 24);
    ReadNumber(0);
    EXPECT_EQ(std::vector<unsigned char>(buffer.begin(), buffer.begin() + 4),
              (std::vector<unsigned char>{24, 25, 26, 255}));
    EXPECT_EQ(std::vector<unsigned char>(buffer.begin() + 20, buffer.begin() + 24),
              (std::vector<unsigned char>{0, 1, 2, 255}));
}

// The pixels of 16 bits: their number in the five bits of blue.
LRESULT Count16(const ICDECOMPRESS& picture) {
    auto* to = static_cast<unsigned char*>(picture.lpOutput);
    for (std::ptrdiff_t i = 0; i < picture.lpbiOutput->biWidth * 2; ++i) {
        to[2 * i] = static_cast<unsigned char>(i);
        to[2 * i + 1] = 0x7C;
    }
    return ICERR_OK;
}

TEST_F(ScreenRecording, PixelsOf16BitsAreExpanded) {
    screen.onDecompress = Count16;
    OpenScreen(4, 16);
    ReadNumber(0);
    EXPECT_EQ(std::vector<unsigned char>(buffer.begin(), buffer.begin() + 8),
              (std::vector<unsigned char>{4 << 3, 0, 31 << 3, 255, 5 << 3, 0, 31 << 3, 255}));
    EXPECT_EQ(buffer[16], 0);
    EXPECT_EQ(buffer[20], 1 << 3);
}

TEST_F(ScreenRecording, EachOfTheThreeChannelsHasFiveBits) {
    screen.onDecompress = [](const ICDECOMPRESS& picture) -> LRESULT {
        const std::uint16_t pixels[] = {0x8000, 0x7FFF, 0x001F, 0x03E0,
                                        0x7C00, 0x0001, 0x0020, 0x0400};
        std::memcpy(picture.lpOutput, pixels, sizeof pixels);
        return ICERR_OK;
    };
    OpenScreen(4, 16);
    ReadNumber(0);
    // The lower row of the picture: nothing but the highest bit, all others, blue, green.
    EXPECT_EQ(std::vector<unsigned char>(buffer.begin() + 16, buffer.end()),
              (std::vector<unsigned char>{0, 0, 0, 255, 248, 248, 248, 255, 248, 0, 0, 255, 0, 248,
                                          0, 255}));
    // The upper one: red, and the lowest bit of each.
    EXPECT_EQ(
        std::vector<unsigned char>(buffer.begin(), buffer.begin() + 16),
        (std::vector<unsigned char>{0, 0, 248, 255, 8, 0, 0, 255, 0, 8, 0, 255, 0, 0, 8, 255}));
}

TEST_F(ScreenRecording, ACodecThatRefusesItsFormatsIsGiven24Bits) {
    screen.onQuery = [](const auto&, const auto&) { return ICERR_BADFORMAT; };
    OpenScreen(5, 16);
    EXPECT_EQ(screen.calls.at(1), "query 16 8x2 (0) -> 16 8x2 (40)");
    EXPECT_EQ(screen.calls.at(2), "begin"); // it is not asked again
    EXPECT_EQ(screen.begun, "16 8x2 (0) -> 24 8x2 (48)");
    decoder.reset();
    OpenScreen(5, 24); // it has them already
    EXPECT_EQ(screen.begun, "24 8x2 (0) -> 24 8x2 (40)");
}

TEST_F(ScreenRecording, PicturesComeInTheFormatsThatItWasBegunWith) {
    OpenScreen(5, 24);
    screen.onDecompress = [](const ICDECOMPRESS& picture) -> LRESULT {
        EXPECT_EQ(picture.lpbiInput->biWidth, 8);
        EXPECT_EQ(picture.lpbiInput->biHeight, 2);
        EXPECT_EQ(picture.lpbiInput->biPlanes, 1);
        EXPECT_EQ(picture.lpbiInput->biBitCount, 24);
        EXPECT_EQ(picture.lpbiInput->biCompression, ScreenCode);
        EXPECT_EQ(picture.lpbiInput->biSizeImage, 2U); // of this frame
        EXPECT_EQ(picture.lpbiOutput->biSize, 40U);
        EXPECT_EQ(picture.lpbiOutput->biWidth, 8);
        EXPECT_EQ(picture.lpbiOutput->biHeight, 2);
        EXPECT_EQ(picture.lpbiOutput->biPlanes, 1);
        EXPECT_EQ(picture.lpbiOutput->biBitCount, 24);
        EXPECT_EQ(picture.lpbiOutput->biCompression, 0U);
        EXPECT_EQ(picture.lpbiOutput->biSizeImage, 40U);
        EXPECT_EQ(picture.lpbiOutput->biClrUsed, 0U);
        return ICERR_OK;
    };
    EXPECT_NE(ReadNumber(1), -1);
}

TEST_F(ScreenRecording, PixelsOf16BitsAreReadBackToBack) {
    screen.onDecompress = Count16;
    OpenScreen(5, 16);
    ReadNumber(0);
    // The codec's second row begins with pixel 8; pixel 5 is taken for it.
    EXPECT_EQ(buffer[0], 5 << 3);
    EXPECT_EQ(buffer[20], 0);
}

TEST_F(ScreenRecording, ACodecThatFillsItsRowsStaysWithinThem) {
    for (const int width : {1, 2, 5}) {
        for (const int bits : {16, 24}) {
            screen.onDecompress = [](const ICDECOMPRESS& picture) -> LRESULT {
                const BITMAPINFOHEADER& out = *picture.lpbiOutput;
                std::memset(picture.lpOutput, 1,
                            static_cast<std::size_t>(out.biWidth) * out.biBitCount / 8 *
                                static_cast<std::size_t>(out.biHeight));
                return ICERR_OK;
            };
            OpenScreen(width, bits);
            EXPECT_NE(ReadNumber(0), -1);
        }
    }
}

TEST_F(ScreenRecording, WithoutA16BitPictureThereIsNone) {
    Write({ScreenCode, ScreenCode, 4, 2, 16}, Frames(3, 1, {0}), Avi::IndexKind::OpenDml);
    Open();
    EXPECT_EQ(ReadNumber(0), -1);
}

} // namespace
