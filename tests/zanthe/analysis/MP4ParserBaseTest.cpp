#include "zanthe/analysis/MP4ParserBase.h"

#include <exception>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/win32/Text.h"
#include "tests/support/MemoryStreamReader.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/zanthe/analysis/Mp4Boxes.h"
#include "zanthe/analysis/FileReader.h"
#include "zanthe/analysis/MP4ParseException.h"

using boxes::Box;
using boxes::Header;
using boxes::U32;
using boxes::U64;
using boxes::WideBox;
using boxes::Zeros;
using testing::ElementsAre;

namespace {

// Writes down what it is called with.
// NOLINTNEXTLINE(cppcoreguidelines-virtual-class-destructor): final, and never owned by its base
class Recorder final : public MP4ParserBase {
public:
    using MP4ParserBase::MP4ParserBase;
    using MP4ParserBase::ReadBytes;
    using MP4ParserBase::ReadFixedInteger;
    using MP4ParserBase::ReadInteger;

    std::vector<std::string> calls;
    std::vector<MP4BoxHeader> headers;
    std::vector<std::string> parents; // of each box, by type
    std::vector<std::string> parentsAtEnd;
    std::function<void(const MP4BoxHeader&)> onBegin = [](const MP4BoxHeader&) {};

    IStreamReader& Reader() { return *m_reader; }

    std::vector<std::string> Types() const {
        std::vector<std::string> types;
        for (const MP4BoxHeader& header : headers) {
            types.push_back(header.type);
        }
        return types;
    }

protected:
    void OnBoxBegin(const MP4BoxHeader& header) override {
        calls.push_back(GetIndent() + "begin " + header.type);
        headers.push_back(header);
        parents.push_back(ParentBox().type);
        onBegin(header);
    }

    void OnBoxEnd(const MP4BoxHeader& header) override {
        calls.push_back(GetIndent() + "end " + header.type);
        parentsAtEnd.push_back(ParentBox().type);
    }

    void OnLeafBox(const MP4BoxHeader& header) override {
        calls.push_back(GetIndent() + "leaf " + header.type);
    }
};

static_assert(std::is_base_of_v<std::exception, MP4ParseException>);
static_assert(sizeof(MP4ParseException) == sizeof(std::exception), "it carries nothing");
static_assert(std::is_nothrow_copy_constructible_v<MP4ParseException>, "it is thrown by value");

Recorder Over(std::string bytes, MemoryStreamReader::Work* work = nullptr) {
    return Recorder(std::make_unique<MemoryStreamReader>(std::move(bytes), work));
}

// The types met on a walk that comes to its end.
std::vector<std::string> TypesIn(const std::string& bytes) {
    Recorder recorder = Over(bytes);
    recorder.Parse(L"");
    return recorder.Types();
}

bool Fails(const std::string& bytes) {
    Recorder recorder = Over(bytes);
    try {
        recorder.Parse(L"");
    } catch (const MP4ParseException&) {
        return true;
    }
    return false;
}

TEST(MP4Walk, CallsBackInOrder) {
    Recorder recorder = Over(Box("ftyp", "isom") + Box("moov", Box("trak", Box("tkhd", "x"))));
    recorder.Parse(L"");
    EXPECT_THAT(recorder.calls,
                ElementsAre("  begin ftyp", "  leaf ftyp", "  end ftyp", "  begin moov",
                            "    begin trak", "      begin tkhd", "      leaf tkhd",
                            "      end tkhd", "    end trak", "  end moov"));
}

TEST(MP4Walk, DescendsIntoContainersOnly) {
    for (const char* container : {"moov", "trak", "mdia", "minf", "stbl", "BSCM"}) {
        EXPECT_THAT(TypesIn(Box(container, Box("leaf", ""))), ElementsAre(container, "leaf"));
    }
    for (const char* leaf : {"bscm", "Moov", "stsd", "udta", "edts", "mdat", "free", "moo "}) {
        EXPECT_THAT(TypesIn(Box(leaf, Box("leaf", ""))), ElementsAre(leaf));
    }
}

TEST(MP4Walk, AnEmptyFileHasNoBoxes) {
    EXPECT_THAT(TypesIn(""), ElementsAre());
}

TEST(MP4Walk, HeadersTellWhereABoxLies) {
    Recorder recorder = Over(Box("moov", Box("trak", "") + WideBox("mdia", Box("hdlr", "12"))));
    recorder.Parse(L"");
    ASSERT_THAT(recorder.Types(), ElementsAre("moov", "trak", "mdia", "hdlr"));
    const MP4BoxHeader& trak = recorder.headers[1];
    EXPECT_EQ(trak.offset, 8u);
    EXPECT_EQ(trak.headerSize, 8u);
    EXPECT_EQ(trak.size, 8u);
    const MP4BoxHeader& mdia = recorder.headers[2];
    EXPECT_EQ(mdia.offset, 16u);
    EXPECT_EQ(mdia.headerSize, 16u);
    EXPECT_EQ(mdia.size, 26u);
    EXPECT_EQ(recorder.headers[3].offset, 32u);
}

TEST(MP4Walk, ParentsBeginAtDepthThree) {
    Recorder recorder = Over(Box("moov", Box("trak", Box("mdia", Box("hdlr", "")))));
    recorder.Parse(L"");
    EXPECT_THAT(recorder.parents, ElementsAre("", "", "trak", "mdia"));
    EXPECT_THAT(recorder.parentsAtEnd, ElementsAre("mdia", "trak", "", ""));
}

TEST(MP4Walk, ASizeOfZeroRunsToTheEndOfTheFile) {
    EXPECT_THAT(TypesIn(Header("mdat", 0) + Box("moov", "")), ElementsAre("mdat"));
    EXPECT_THAT(TypesIn(Box("ftyp", "") + Header("moov", 0) + Box("trak", "") + Box("free", "")),
                ElementsAre("ftyp", "moov", "trak", "free"));
}

// The child of size 0 takes the walk to the end of the file, and its parent takes it back.
TEST(MP4Walk, ASizeOfZeroInsideAParent) {
    EXPECT_THAT(TypesIn(Box("moov", Header("free", 0)) + Box("trak", "")),
                ElementsAre("moov", "free", "trak"));
}

TEST(MP4Walk, TheWideFormCounts64Bits) {
    const TemporaryFolder folder;
    constexpr std::uint64_t size = 0x1'4000'0010; // 5 GiB of media
    const std::string path =
        folder.Write("far.mp4", boxes::FileType() + Header("mdat", 1) + U64(size));
    std::filesystem::resize_file(path, 20 + size);
    std::ofstream(path, std::ios::binary | std::ios::app) << Box("moov", Box("trak", ""));
    Recorder recorder(std::make_unique<FileReader>());
    recorder.Parse(win32::Utf8ToWide(path));
    ASSERT_THAT(recorder.Types(), ElementsAre("ftyp", "mdat", "moov", "trak"));
    EXPECT_EQ(recorder.headers[1].size, size);
    EXPECT_EQ(recorder.headers[1].headerSize, 16u);
    EXPECT_EQ(recorder.headers[2].offset, 20 + size);
}

// Sizes 2 to 7 end inside the box's own header: what stands there is taken for the next header.
TEST(MP4Walk, ASizeBelowTheHeadersGoesOnInsideIt) {
    for (std::uint64_t size = 2; size <= 7; ++size) {
        Recorder recorder = Over(Header("abcd", size) + Zeros(16));
        recorder.Parse(L""); // the second box claims to end far beyond the file
        ASSERT_EQ(recorder.headers.size(), 2u) << size;
        EXPECT_EQ(recorder.headers[1].offset, size);
    }
    const std::string inside = U32(12) + "next" + Zeros(4);
    EXPECT_THAT(TypesIn(U32(4) + inside + Box("free", "")), ElementsAre(U32(12), "next", "free"));
}

// Its children are looked for behind the header, where it has ended already.
TEST(MP4Walk, AContainerSmallerThanItsHeaderHasNoChildren) {
    EXPECT_THAT(TypesIn(Header("moov", 5) + Zeros(3) + Header("last", 8)),
                ElementsAre("moov", Zeros(4)));
}

TEST(MP4Walk, AChildThatSticksOutEndsItsParentsLoop) {
    const std::string moov = Box("moov", Header("free", 100));
    EXPECT_THAT(TypesIn(moov + Box("trak", "") + Zeros(200)).at(1), "free");
    EXPECT_THAT(TypesIn(moov + Box("trak", Box("tkhd", ""))),
                ElementsAre("moov", "free", "trak", "tkhd"));
}

TEST(MP4Walk, ATopLevelBoxBeyondTheEndOfTheFileEndsTheWalk) {
    EXPECT_THAT(TypesIn(Header("mdat", 1000) + Zeros(10)), ElementsAre("mdat"));
}

TEST(MP4Walk, AContainerBeyondTheEndOfTheFileThrows) {
    EXPECT_TRUE(Fails(Header("moov", 1000) + Box("trak", "")));
    EXPECT_TRUE(Fails(Header("moov", 12) + "\x01"));
}

TEST(MP4Walk, AHeaderCutShortThrows) {
    const std::string whole = Box("ftyp", "") + Header("mdat", 1) + U64(16);
    EXPECT_THAT(TypesIn(whole), ElementsAre("ftyp", "mdat"));
    for (std::size_t size = 9; size < whole.size(); ++size) {
        EXPECT_TRUE(Fails(whole.substr(0, size))) << size;
    }
}

TEST(MP4Walk, ABoxThatEndsWhereItBeginsThrowsAtOnce) {
    const std::string still = Header("free", 1) + U64(0) + Zeros(100);
    Recorder outside = Over(still);
    EXPECT_THROW(outside.Parse(L""), MP4ParseException);
    EXPECT_THAT(outside.Types(), ElementsAre());
    Recorder inside = Over(Box("moov", still));
    EXPECT_THROW(inside.Parse(L""), MP4ParseException);
    EXPECT_THAT(inside.Types(), ElementsAre("moov"));
}

TEST(MP4Walk, ABoxWhoseEndWrapsRoundThrows) {
    for (const char* type : {"free", "moov"}) {
        const std::string before = Box("ftyp", Zeros(32));
        const std::string around = Header(type, 1);
        EXPECT_TRUE(Fails(before + around + U64(~std::uint64_t{0}) + Zeros(100)));
        EXPECT_TRUE(Fails(before + around + U64(0 - std::uint64_t{before.size()}) + Zeros(100)));
    }
}

TEST(MP4Walk, AWideSizeBelowTheWideHeaderStillMoves) {
    EXPECT_THAT(TypesIn(Header("free", 1) + U64(16) + Header("last", 8)),
                ElementsAre("free", "last"));
    Recorder recorder = Over(Header("free", 1) + U64(8) + Zeros(8));
    recorder.Parse(L"");
    EXPECT_EQ(recorder.headers.at(1).offset, 8u);
}

// Each `moov` is a box of 16 bytes whose child claims the rest of the file: the walk goes through
// the rest inside the child, goes back, and goes through it again. Every level doubles the work.
TEST(MP4Walk, GoingOverTheSameBytesForEverThrows) {
    std::string bytes;
    for (int level = 0; level < 64; ++level) {
        bytes += Header("moov", 16) + Header("trak", 0);
    }
    MemoryStreamReader::Work work;
    Recorder recorder = Over(bytes, &work);
    EXPECT_THROW(recorder.Parse(L""), MP4ParseException);
    EXPECT_LE(recorder.headers.size(), bytes.size());
}

TEST(MP4Walk, GoingOverSomeBytesTwiceIsNoFailure) {
    const std::string twice = Header("moov", 16) + Header("trak", 0);
    EXPECT_THAT(TypesIn(twice + Box("free", "") + Box("mdat", Zeros(40))),
                ElementsAre("moov", "trak", "free", "mdat", "free", "mdat"));
}

std::string Nested(int depth) {
    std::string bytes;
    for (int level = depth; level > 0; --level) {
        bytes += Header("moov", static_cast<std::uint64_t>(level) * 8);
    }
    return bytes;
}

TEST(MP4Walk, HowManyHeadersAFileMayHave) {
    EXPECT_EQ(Recorder::AllowedHeaders(0), 1000u);
    EXPECT_EQ(Recorder::AllowedHeaders(8000), 1000u);
    EXPECT_EQ(Recorder::AllowedHeaders(400'000), 50'000u);
    EXPECT_EQ(Recorder::AllowedHeaders(std::uint64_t{64} << 20), std::uint64_t{1} << 20);
    EXPECT_EQ(Recorder::AllowedHeaders(std::uint64_t{128} << 20), std::uint64_t{2} << 20);
    EXPECT_EQ(Recorder::AllowedHeaders(std::uint64_t{1} << 50), 4'000'000u);
}

// All of them fit into the file, and yet nobody wants to wait for the end.
TEST(MP4Walk, AFileOfNothingButHeadersHasAnEnd) {
    std::string bytes;
    const std::string box = Box("free", "");
    for (int i = 0; i < 1'000'001; ++i) {
        bytes += box;
    }
    EXPECT_FALSE(Fails(bytes.substr(8)));
    EXPECT_TRUE(Fails(bytes));
}

TEST(MP4Walk, NestingHasAnEnd) {
    EXPECT_EQ(TypesIn(Nested(Recorder::MaxOpenBoxes)).size(), std::size_t{Recorder::MaxOpenBoxes});
    EXPECT_TRUE(Fails(Nested(Recorder::MaxOpenBoxes + 1)));
    EXPECT_TRUE(Fails(Nested(1'000'000)));
}

TEST(MP4Walk, CallbacksMayLeaveThePositionAnywhere) {
    Recorder recorder = Over(Box("ftyp", "12345678") + Box("free", "") + Box("last", "1"));
    recorder.onBegin = [&recorder](const MP4BoxHeader& header) {
        recorder.Reader().Seek(header.offset == 0 ? 1000 : 0);
    };
    recorder.Parse(L"");
    EXPECT_THAT(recorder.Types(), ElementsAre("ftyp", "free", "last"));
}

TEST(MP4Walk, AContainerWhosePayloadIsConsumedHasNoChildren) {
    Recorder recorder = Over(Box("moov", Box("trak", "")) + Box("free", ""));
    recorder.onBegin = [&recorder](const MP4BoxHeader& header) {
        recorder.Reader().Seek(header.End());
    };
    recorder.Parse(L"");
    EXPECT_THAT(recorder.Types(), ElementsAre("moov", "free"));
}

TEST(MP4Walk, PayloadsAreNotRead) {
    MemoryStreamReader::Work work;
    Recorder recorder = Over(Box("ftyp", "isom") + Box("mdat", Zeros(100'000)), &work);
    recorder.Parse(L"");
    EXPECT_EQ(work.bytesRead, 16u);
    EXPECT_EQ(work.seeks, 2u);
}

TEST(MP4Walk, AParserCanBeUsedAgainAfterAFailure) {
    const TemporaryFolder folder;
    const std::string good = boxes::FileType() + Box("moov", Box("trak", ""));
    Recorder recorder(std::make_unique<FileReader>());
    EXPECT_THROW(recorder.Parse(win32::Utf8ToWide(folder.Write("a", good.substr(0, 24)))),
                 MP4ParseException);
    EXPECT_THROW(recorder.Parse(
                     win32::Utf8ToWide(folder.Write("b", boxes::FileType() + Header("moov", 99)))),
                 MP4ParseException);
    recorder.calls.clear();
    recorder.parents.clear();
    recorder.Parse(win32::Utf8ToWide(folder.Write("c", good)));
    EXPECT_THAT(recorder.calls,
                ElementsAre("  begin ftyp", "  leaf ftyp", "  end ftyp", "  begin moov",
                            "    begin trak", "    end trak", "  end moov"));
    EXPECT_THAT(recorder.parents, ElementsAre("", "", "")); // nothing is open from before
}

TEST(MP4Walk, EachWalkMayReadAsManyHeaders) {
    std::string bytes;
    for (std::uint64_t i = 0; i < Recorder::AllowedHeaders(0); ++i) {
        bytes += Box("free", "");
    }
    Recorder recorder = Over(bytes);
    recorder.Parse(L"");
    EXPECT_NO_THROW(recorder.Parse(L""));
}

TEST(MP4Walk, NumbersAreBigEndian) {
    Recorder recorder = Over(Box("ftyp", "\x01\x02\x03\x04\xFF\xFE\x80\x01\x7F\xFF"));
    recorder.onBegin = [&recorder](const MP4BoxHeader&) {
        EXPECT_EQ(recorder.ReadInteger<std::uint32_t>(), 0x01020304u);
        EXPECT_EQ(recorder.ReadInteger<std::int16_t>(), -2);
        EXPECT_EQ(recorder.ReadFixedInteger(), 0x8001);
    };
    recorder.Parse(L"");
}

TEST(MP4Walk, BytesThatTheFileHasNotAreNotAllocated) {
    Recorder recorder = Over(Box("ftyp", "12345678"));
    recorder.onBegin = [&recorder](const MP4BoxHeader&) {
        EXPECT_THROW(recorder.ReadBytes(9), MP4ParseException);
        EXPECT_THROW(recorder.ReadBytes(~std::uint64_t{0}), MP4ParseException);
        EXPECT_THROW(recorder.ReadBytes(std::uint64_t{1} << 62), MP4ParseException);
        EXPECT_EQ(recorder.ReadBytes(8).size(), 8u);
        recorder.Reader().Seek(1000);
        EXPECT_THROW(recorder.ReadBytes(1), MP4ParseException);
        EXPECT_THROW(recorder.ReadBytes(std::uint64_t{1} << 62), MP4ParseException);
    };
    recorder.Parse(L"");
}

} // namespace
