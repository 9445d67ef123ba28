#include <exception>
#include <numeric>
#include <typeinfo>

#include <gtest/gtest.h>

#include "tests/support/AviFile.h"
#include "tests/support/MemoryStream.h"
#include "zanthe/containers/avi20/BasicInfoParser.h"

namespace {

using namespace Riff;
using AVI20::Read::BasicInfoParser;
using AVI20::Read::ChunkHeader;
using AVI20::Read::FourCc;
using AVI20::Read::StreamInfo;

// Everything that the walk tells on its way.
class TracingParser final : public BasicInfoParser {
public:
    using BasicInfoParser::BasicInfoParser;

    // ParserBase
    void OnChunk(int depth, const ChunkHeader& chunk, bool skip) override {
        std::string line;
        FormatChunk(line, depth, chunk, skip);
        trace += line + '\n';
    }

    void OnListEnd(const ChunkHeader&, std::uint64_t bytesRead) override {
        listEnds.push_back(bytesRead);
    }

    std::string trace;
    std::vector<std::uint64_t> listEnds;
};

std::string Avi(const std::string& content) {
    return List("RIFF", "AVI ", content);
}

// What one file says, walked whole.
struct Walked {
    explicit Walked(const std::string& bytes)
        : stream(bytes)
        , parser(&stream) {
        parser.ParseFile();
    }

    MemoryStream stream;
    TracingParser parser;
};

std::string Vids() {
    return Avi::StreamHeader("vids", FourCc("abcd"), 7, 25, 2);
}

// The bytes 1, 2, 3, ...
std::string Counting(std::size_t size) {
    std::string bytes(size, '\0');
    std::iota(bytes.begin(), bytes.end(), '\1');
    return bytes;
}

// What stands at `place` of them.
constexpr std::uint32_t At(std::uint32_t place) {
    return (place + 1) | (place + 2) << 8 | (place + 3) << 16 | (place + 4) << 24;
}

constexpr std::uint16_t ShortAt(std::uint32_t place) {
    return static_cast<std::uint16_t>(At(place));
}

TEST(AviParser, FieldsOfTheMainHeaderStandAtTheirPlaces) {
    std::string bytes = Counting(56);
    bytes.replace(24, 4, Number32(50));
    const Walked file(Avi(Chunk("avih", bytes)));
    const AVI20::Read::MainAVIHeader& header = file.parser.MainHeader();
    EXPECT_EQ(header.dwMicroSecPerFrame, At(0));
    EXPECT_EQ(header.dwMaxBytesPerSec, At(4));
    EXPECT_EQ(header.dwPaddingGranularity, At(8));
    EXPECT_EQ(header.dwFlags, At(12));
    EXPECT_EQ(header.dwTotalFrames, At(16));
    EXPECT_EQ(header.dwInitialFrames, At(20));
    EXPECT_EQ(header.dwStreams, 50U);
    EXPECT_EQ(header.dwSuggestedBufferSize, At(28));
    EXPECT_EQ(header.dwWidth, At(32));
    EXPECT_EQ(header.dwHeight, At(36));
    EXPECT_EQ(header.dwReserved[0], At(40));
    EXPECT_EQ(header.dwReserved[3], At(52));
}

TEST(AviParser, FieldsOfAStreamHeaderStandAtTheirPlaces) {
    const auto header =
        Walked(Avi(List("strl", Chunk("strh", Counting(56))))).parser.GetStreamInfo(0).header;
    EXPECT_EQ(header.fccType, At(0));
    EXPECT_EQ(header.fccHandler, At(4));
    EXPECT_EQ(header.dwFlags, At(8));
    EXPECT_EQ(header.wPriority, ShortAt(12));
    EXPECT_EQ(header.wLanguage, ShortAt(14));
    EXPECT_EQ(header.dwInitialFrames, At(16));
    EXPECT_EQ(header.dwScale, At(20));
    EXPECT_EQ(header.dwRate, At(24));
    EXPECT_EQ(header.dwStart, At(28));
    EXPECT_EQ(header.dwLength, At(32));
    EXPECT_EQ(header.dwSuggestedBufferSize, At(36));
    EXPECT_EQ(header.dwQuality, At(40));
    EXPECT_EQ(header.dwSampleSize, At(44));
    EXPECT_EQ(header.rcFrame.left, ShortAt(48));
    EXPECT_EQ(header.rcFrame.bottom, ShortAt(54));
}

TEST(AviParser, FieldsOfFormatsStandAtTheirPlaces) {
    const Walked pictures(Avi(List("strl", Vids() + Chunk("strf", Counting(40)))));
    const BITMAPINFOHEADER video = pictures.parser.GetStreamInfo(0).videoFormat;
    EXPECT_EQ(video.biSize, At(0));
    EXPECT_EQ(static_cast<std::uint32_t>(video.biWidth), At(4));
    EXPECT_EQ(static_cast<std::uint32_t>(video.biHeight), At(8));
    EXPECT_EQ(video.biPlanes, ShortAt(12));
    EXPECT_EQ(video.biBitCount, ShortAt(14));
    EXPECT_EQ(video.biCompression, At(16));
    EXPECT_EQ(video.biSizeImage, At(20));
    EXPECT_EQ(static_cast<std::uint32_t>(video.biXPelsPerMeter), At(24));
    EXPECT_EQ(static_cast<std::uint32_t>(video.biYPelsPerMeter), At(28));
    EXPECT_EQ(video.biClrUsed, At(32));
    EXPECT_EQ(video.biClrImportant, At(36));

    const std::string bytes = Counting(16) + Number16(2) + "xyz";
    const Walked sound(Avi(List("strl", Avi::StreamHeader("auds", 0, 0) + Chunk("strf", bytes))));
    const StreamInfo heard = sound.parser.GetStreamInfo(0);
    EXPECT_EQ(heard.audioFormat.wFormatTag, ShortAt(0));
    EXPECT_EQ(heard.audioFormat.nChannels, ShortAt(2));
    EXPECT_EQ(heard.audioFormat.nSamplesPerSec, At(4));
    EXPECT_EQ(heard.audioFormat.nAvgBytesPerSec, At(8));
    EXPECT_EQ(heard.audioFormat.nBlockAlign, ShortAt(12));
    EXPECT_EQ(heard.audioFormat.wBitsPerSample, ShortAt(14));
    EXPECT_EQ(heard.audioFormat.cbSize, 2);
    EXPECT_EQ(heard.audioExtra, (std::vector<std::uint8_t>{'x', 'y'}));
}

TEST(AviParser, HeadersOfAllStreamsAreCollected) {
    const WAVEFORMATEX sound{85, 2, 44100, 16000, 1, 0, 3};
    const Walked file(Avi(List(
        "hdrl",
        Avi::MainHeader(2) + List("strl", Vids() + Avi::VideoFormat(63, 48, 16, FourCc("wxyz"))) +
            List("strl", Avi::StreamHeader("auds", 0, 9) + Avi::AudioFormat(sound, "xyz")))));
    ASSERT_EQ(file.parser.StreamCount(), 2U);
    EXPECT_EQ(file.parser.MainHeader().dwStreams, 2U);
    EXPECT_EQ(file.parser.MainHeader().dwMicroSecPerFrame, 100'000U);
    const StreamInfo pictures = file.parser.GetStreamInfo(0);
    EXPECT_EQ(pictures.header.fccHandler, FourCc("abcd"));
    EXPECT_EQ(pictures.header.dwRate, 25U);
    EXPECT_EQ(pictures.header.dwScale, 2U);
    EXPECT_EQ(pictures.header.dwLength, 7U);
    EXPECT_EQ(pictures.videoFormat.biWidth, 63);
    EXPECT_EQ(pictures.videoFormat.biBitCount, 16);
    EXPECT_EQ(pictures.videoFormat.biCompression, FourCc("wxyz"));
    EXPECT_EQ(pictures.audioFormat.nChannels, 0);
    const StreamInfo heard = file.parser.GetStreamInfo(1);
    EXPECT_EQ(heard.header.fccType, FourCc("auds"));
    EXPECT_EQ(heard.audioFormat.nSamplesPerSec, 44100U);
    EXPECT_EQ(heard.audioExtra, (std::vector<std::uint8_t>{'x', 'y', 'z'}));
    EXPECT_EQ(heard.videoFormat.biWidth, 0);
    EXPECT_EQ(file.parser.GetStreamInfo(2).header.fccType, 0U);
}

TEST(AviParser, TheWalkIsTold) {
    const Walked file(Avi(List("hdrl", Avi::MainHeader(1) + List("strl", Vids())) +
                          List("movi", Chunk("00dc", "12345")) + Chunk("JUNK", "xyz")));
    EXPECT_EQ(file.parser.trace, "[AVI ] (194)\n"
                                 "  [hdrl] (144)\n"
                                 "    avih (56)\n"
                                 "    [strl] (68)\n"
                                 "      strh (56)\n"
                                 "  [movi] (18) *skip*\n"
                                 "  JUNK (3)\n");
    EXPECT_EQ(file.parser.listEnds, (std::vector<std::uint64_t>{68, 144, 194}));
}

// Tells when it is asked, and moves the position wherever it may.
class MovingParser final : public BasicInfoParser {
public:
    explicit MovingParser(MemoryStream& stream)
        : BasicInfoParser(&stream)
        , m_moved(stream) {}

    // ParserBase
    bool ShouldSkipChunk(const ChunkHeader& chunk) override {
        Tell("skip?", chunk);
        return BasicInfoParser::ShouldSkipChunk(chunk);
    }

    void OnChunk(int, const ChunkHeader& chunk, bool) override { Tell("chunk", chunk); }

    void OnChunkContents(const ChunkHeader& chunk) override {
        Tell("contents", chunk);
        m_moved.Seek(1'000'000);
    }

    std::vector<std::string> calls;

private:
    // With the number of streams known by then.
    void Tell(const char* what, const ChunkHeader& chunk) {
        if (chunk.fourcc == FourCc("strl") || chunk.fourcc == FourCc("movi")) {
            calls.push_back(what + (' ' + std::to_string(StreamCount())));
        }
    }

    MemoryStream& m_moved;
};

TEST(AviParser, AChunkIsToldThenReadThenItsContentIsTold) {
    MemoryStream stream(Avi(List("strl", Vids()) + List("movi", "") + List("strl", "")));
    MovingParser parser(stream);
    parser.ParseFile();
    EXPECT_EQ(parser.calls,
              (std::vector<std::string>{"skip? 0", "chunk 0", "contents 1", "skip? 1", "chunk 1",
                                        "skip? 1", "chunk 1", "contents 2"}));
    EXPECT_EQ(parser.GetStreamInfo(0).header.fccHandler, FourCc("abcd"));
}

TEST(AviParser, AMainHeaderOfAnySizeIsRead) {
    const std::string bytes = Avi::MainHeader(3).substr(8);
    EXPECT_EQ(Walked(Avi(ChunkOfSize("avih", 8, bytes))).parser.MainHeader().dwStreams, 3U);
    EXPECT_EQ(Walked(Avi(Chunk("avih", bytes + "more"))).parser.MainHeader().dwStreams, 3U);
}

// Whether a chunk is a list plays no part in what it means.
TEST(AviParser, ChunksAreKnownByTheirCodeAlone) {
    const Walked plain(Avi(Chunk("strl", "ab") + Vids() + Chunk("movi", "cd")));
    ASSERT_EQ(plain.parser.StreamCount(), 1U);
    EXPECT_EQ(plain.parser.GetStreamInfo(0).header.fccHandler, FourCc("abcd"));
    EXPECT_EQ(plain.parser.MoviStart(), 12U + 10 + 64 + 8);
    EXPECT_NE(plain.parser.trace.find("\n  movi (2) *skip*\n"), std::string::npos);
    const Walked list(Avi(List("strl", "") + List("strh", Vids().substr(8 + 4))));
    EXPECT_EQ(list.parser.GetStreamInfo(0).header.fccType, FourCc("abcd"));
}

// A recorder that was interrupted has not filled it in: the frames are walked as chunks then.
TEST(AviParser, BehindAMediaListWithoutASizeTheIndexIsFound) {
    const std::string head = List("hdrl", Avi::MainHeader(1) + List("strl", Vids()));
    std::string frames;
    for (int i = 0; i < 150'000; ++i) {
        frames += Chunk("00dc", "ab");
    }
    MemoryStream stream(
        Avi(head + ChunkOfSize("LIST", 0, "movi" + frames) + Chunk("idx1", std::string(16, 'i'))));
    BasicInfoParser parser(&stream);
    parser.ParseFile();
    EXPECT_EQ(parser.MoviStart(), 12 + head.size() + 8);
    EXPECT_EQ(parser.GetStreamInfo(0).indexChunk.fourcc, FourCc("idx1"));
    EXPECT_EQ(parser.GetStreamInfo(0).indexChunk.size, 16U);
}

TEST(AviParser, MoreThanAMillionChunksThrow) {
    const auto walk = [](std::size_t chunks) {
        MemoryStream stream(Avi(std::string(8 * (chunks - 1), '\0')));
        BasicInfoParser(&stream).ParseFile();
    };
    EXPECT_NO_THROW(walk(1'000'000));
    EXPECT_THROW(walk(1'000'001), std::exception);
}

TEST(AviParser, MediaDataAreNotRead) {
    const std::string head = List("hdrl", Avi::MainHeader(1) + List("strl", Vids()));
    Walked file(Avi(head + List("movi", Chunk("00dc", std::string(1'000'000, 'x'))) +
                    Chunk("idx1", std::string(16, '\0'))));
    EXPECT_LT(file.stream.bytesRead, 300U);
    EXPECT_EQ(file.parser.MoviStart(), 12 + head.size() + 8);
    EXPECT_EQ(file.parser.GetStreamInfo(0).indexChunk.fourcc, FourCc("idx1"));
}

TEST(AviParser, MoreThanFiftyStreamsInTheMainHeaderThrow) {
    EXPECT_NO_THROW(Walked(Avi(List("hdrl", Avi::MainHeader(50)))));
    EXPECT_THROW(Walked(Avi(List("hdrl", Avi::MainHeader(51) + List("strl", Vids())))),
                 std::exception);
    // Only what the main header says counts here.
    std::string lists;
    for (int i = 0; i < 60; ++i) {
        lists += List("strl", Vids());
    }
    EXPECT_EQ(Walked(Avi(List("hdrl", Avi::MainHeader(1) + lists))).parser.StreamCount(), 60U);
}

TEST(AviParser, WhatIsThrownIsAPlainException) {
    try {
        const Walked walked(Avi(Avi::MainHeader(51)));
        FAIL();
    } catch (const std::exception& failure) {
        EXPECT_TRUE(typeid(failure) == typeid(std::exception));
    }
}

TEST(AviParser, MoreStreamListsThanChunkNamesCanCountThrow) {
    std::string lists;
    for (int i = 0; i < 256; ++i) {
        lists += List("strl", "");
    }
    EXPECT_EQ(Walked(Avi(lists)).parser.StreamCount(), 256U);
    EXPECT_THROW(Walked(Avi(lists + List("strl", ""))), std::exception);
}

TEST(AviParser, AStreamHeaderOfAnotherSizeIsPassedOver) {
    const Walked file(Avi(List("strl", Chunk("strh", "vids" + std::string(60, 'x')) +
                                           Avi::VideoFormat(64, 48, 24, 0))));
    ASSERT_EQ(file.parser.StreamCount(), 1U);
    EXPECT_EQ(file.parser.GetStreamInfo(0).header.fccType, 0U);
    // Without a type the format is read for neither pictures nor sound.
    EXPECT_EQ(file.parser.GetStreamInfo(0).videoFormat.biWidth, 0);
}

TEST(AviParser, AFormatWithAPaletteIsPassedOver) {
    const std::string format = Avi::VideoFormat(64, 48, 8, 1).substr(8);
    const Walked file(Avi(List("strl", Vids() + Chunk("strf", format + std::string(1024, 'p')))));
    EXPECT_EQ(file.parser.GetStreamInfo(0).videoFormat.biWidth, 0);
}

TEST(AviParser, AShortFormatOfSoundIsPassedOver) {
    for (const std::size_t size : {16U, 17U}) {
        const Walked file(
            Avi(List("strl", Avi::StreamHeader("auds", 0, 0) + Chunk("strf", Counting(size)))));
        EXPECT_EQ(file.parser.GetStreamInfo(0).audioFormat.wFormatTag, 0);
        EXPECT_TRUE(file.parser.GetStreamInfo(0).audioExtra.empty());
    }
}

TEST(AviParser, ExtraBytesOfSoundAreReadBeyondTheirChunk) {
    const WAVEFORMATEX sound{1, 2, 44100, 16000, 4, 16, 6};
    const Walked file(Avi(List("strl", Avi::StreamHeader("auds", 0, 0) + Avi::AudioFormat(sound) +
                                           Chunk("JUNK", "ab"))));
    const std::vector<std::uint8_t> expected{'J', 'U', 'N', 'K', 2, 0};
    EXPECT_EQ(file.parser.GetStreamInfo(0).audioExtra, expected);
}

TEST(AviParser, AnEmptyChunkAtAnOddPlaceStepsToTheEvenOne) {
    // The list begins at an odd place only where the one before it lies about its size.
    const std::string odd = std::string("abcd") + Number32(0) + '\0';
    MemoryStream stream('x' + odd + Chunk("next", "ab"));
    TracingParser parser(&stream);
    stream.Seek(1);
    parser.ParseChunk(0);
    EXPECT_EQ(stream.Position(), 10U);
    parser.ParseChunk(0);
    EXPECT_EQ(parser.trace, "abcd (0)\nnext (2)\n");
}

TEST(AviParser, OddSizesArePadded) {
    const Walked file(
        Avi(Chunk("odd ", "123") + List("LIST", "list", "12345") + Chunk("even", "")));
    // The list's one byte behind its type is too short for a chunk, and is walked as one.
    EXPECT_NE(file.parser.trace.find("  odd  (3)\n  [list] (9)\n"), std::string::npos);
    EXPECT_NE(file.parser.trace.find("\n  even (0)\n"), std::string::npos);
}

TEST(AviParser, AnIndexOfItsOwnIsKept) {
    const std::string own = Chunk("indx", std::string(24, 'x'));
    const std::string streams = List("hdrl", List("strl", Vids() + own) + List("strl", Vids()));
    const std::string old = Chunk("idx1", std::string(16, 'y'));
    const Walked file(Avi(streams + List("movi", "") + old));
    EXPECT_EQ(file.parser.GetStreamInfo(0).indexChunk.fourcc, FourCc("indx"));
    EXPECT_FALSE(file.parser.GetStreamInfo(0).isOldIndex);
    EXPECT_EQ(file.parser.GetStreamInfo(1).indexChunk.fourcc, FourCc("idx1"));
    EXPECT_TRUE(file.parser.GetStreamInfo(1).isOldIndex);

    const Walked turned(Avi(List("strl", Vids() + old + own)));
    EXPECT_EQ(turned.parser.GetStreamInfo(0).indexChunk.fourcc, FourCc("indx"));
    EXPECT_FALSE(turned.parser.GetStreamInfo(0).isOldIndex);
}

TEST(AviParser, TheFirstOldIndexStays) {
    const std::string empty = Chunk("indx", "");
    const Walked file(Avi(List("strl", Vids() + empty) + List("movi", "") +
                          Chunk("idx1", std::string(16, 'a')) +
                          Chunk("idx1", std::string(32, 'b'))));
    // An index of no bytes is none.
    EXPECT_EQ(file.parser.GetStreamInfo(0).indexChunk.fourcc, FourCc("idx1"));
    EXPECT_EQ(file.parser.GetStreamInfo(0).indexChunk.size, 16U);
    EXPECT_TRUE(file.parser.GetStreamInfo(0).isOldIndex);
}

TEST(AviParser, AListWithinAStreamBelongsToIt) {
    const Walked file(
        Avi(List("strl", Vids() + List("more", Avi::VideoFormat(2, 3, 24, 0))) + List("strl", "")));
    EXPECT_EQ(file.parser.GetStreamInfo(0).videoFormat.biHeight, 3);
}

TEST(AviParser, ALaterMediaListReplacesTheFirst) {
    const std::string first = List("movi", "abcd");
    EXPECT_EQ(Walked(Avi(first + List("movi", ""))).parser.MoviStart(), 12 + first.size() + 8);
}

TEST(AviParser, WhatFollowsTheFirstChunkIsNotWalked) {
    const Walked file(Avi(List("strl", "")) + List("RIFF", "AVIX", List("strl", "")));
    EXPECT_EQ(file.parser.StreamCount(), 1U);
}

TEST(AviParser, NoAviHasNoStreams) {
    EXPECT_EQ(Walked("").parser.StreamCount(), 0U);
    EXPECT_EQ(Walked("RI").parser.StreamCount(), 0U);
    EXPECT_EQ(Walked(std::string(1000, 'x')).parser.StreamCount(), 0U);
}

// A list that claims to be longer than the file ends with the file, not never.
TEST(AviParser, AListLongerThanTheFileEndsWithIt) {
    const std::string inner = List("strl", Vids());
    for (const std::uint64_t size : {0xFFFFFFFFU, 0x7FFFFFFFU, 1000U}) {
        EXPECT_EQ(Walked(ChunkOfSize("RIFF", size, "AVI " + inner)).parser.StreamCount(), 1U);
        EXPECT_EQ(Walked(ChunkOfSize("RIFF", size, "AVI " + inner + 'x')).parser.StreamCount(), 1U);
    }
}

TEST(AviParser, DeepListsThrow) {
    std::string nested = Chunk("leaf", "");
    for (int i = 0; i < 63; ++i) {
        nested = List("list", nested);
    }
    EXPECT_NO_THROW(Walked{nested});
    for (int i = 0; i < 10'000; ++i) {
        nested = ChunkOfSize("LIST", 0x7FFFFFFF, "list" + nested.substr(0, 100'000));
    }
    EXPECT_THROW(Walked{nested}, std::exception);
}

// Each pair is a list of 16 bytes and in it one that claims the rest of the file: what follows is
// walked within the inner one and again behind the outer one, so the work doubles with each pair.
TEST(AviParser, OverlappingListsThrow) {
    std::string bytes;
    for (int i = 0; i < 25; ++i) {
        bytes += ChunkOfSize("LIST", 16, "outr") + ChunkOfSize("LIST", 0xFFFF, "innr");
    }
    MemoryStream stream(ChunkOfSize("RIFF", 0xFFFF, "AVI " + bytes));
    TracingParser parser(&stream);
    EXPECT_THROW(parser.ParseFile(), std::exception);
    EXPECT_LT(stream.reads, 1'000U);
}

TEST(AviParser, AFileThatIsCutAnywhereEnds) {
    const std::string whole =
        Avi::OneVideo({FourCc("cvid"), FourCc("cvid"), 64, 48},
                      std::vector<Avi::Frame>(25, {"frame", true}), Avi::IndexKind::OpenDml);
    for (std::size_t size = 0; size < whole.size(); ++size) {
        const Walked file(whole.substr(0, size));
        EXPECT_LE(file.parser.StreamCount(), 1U);
    }
}

} // namespace
