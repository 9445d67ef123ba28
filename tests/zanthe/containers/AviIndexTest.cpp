#include <exception>

#include <gtest/gtest.h>

#include "tests/support/AviFile.h"
#include "tests/support/MemoryStream.h"
#include "zanthe/containers/avi20/FrameIndex.h"
#include "zanthe/containers/avi20/TypeOneIndex.h"
#include "zanthe/containers/avi20/TypeTwoIndex.h"

namespace {

using namespace Riff;
using AVI20::Read::ChunkHeader;
using AVI20::Read::FourCc;
using AVI20::Read::FrameIndex;
using AVI20::Read::TypeOneIndex;
using AVI20::Read::TypeTwoIndex;

std::string OldEntry(std::uint32_t flags, std::uint32_t offset, std::uint32_t size) {
    return "00dc" + Number32(flags) + Number32(offset) + Number32(size);
}

std::string StandardIndex(std::uint64_t base, std::uint32_t count, const std::string& entries) {
    return Chunk("ix00", Number16(2) + std::string("\0\1", 2) + Number32(count) + "00dc" +
                             Number64(base) + Number32(0) + entries);
}

std::string StandardEntry(std::uint32_t offset, std::uint32_t size) {
    return Number32(offset) + Number32(size);
}

std::string SuperIndex(std::uint32_t count, const std::string& entries, int longsPerEntry = 4,
                       int subType = 0, int type = 0) {
    return Number16(static_cast<std::uint64_t>(longsPerEntry)) + static_cast<char>(subType) +
           static_cast<char>(type) + Number32(count) + "00dc" + std::string(12, '\0') + entries;
}

std::string SuperEntry(std::uint64_t offset) {
    return Number64(offset) + Number32(0) + Number32(0);
}

// A file that is nothing but the index's content, from its first byte on.
template <typename Index>
void LoadInto(Index& index, const std::string& bytes) {
    MemoryStream stream(bytes);
    index.Load(stream, bytes.size());
}

TEST(AviOldIndex, AnEmptyOneHasNoFrames) {
    TypeOneIndex index(0);
    LoadInto(index, "");
    EXPECT_EQ(index.GetFrameCount(), 0U);
    EXPECT_EQ(index.GetTotalBytes(), 0U);
    EXPECT_EQ(index.GetFrameAtByteOffset(0), -1);
    EXPECT_EQ(index.GetByteOffsetOfFrame(0), 0U);
    EXPECT_EQ(index.FindKeyFrame(7), 0U);
}

TEST(AviOldIndex, EntriesCountFromTheMediaList) {
    TypeOneIndex index(1000);
    LoadInto(index,
             OldEntry(0x10, 4, 7) + OldEntry(0, 20, 9) + OldEntry(0xFFFFFFFF, 0xFFFFFFFF, 0));
    ASSERT_EQ(index.GetFrameCount(), 3U);
    EXPECT_EQ(index.GetFrameInfo(0)->GetOffset(), 1012U);
    EXPECT_EQ(index.GetFrameInfo(0)->GetSize(), 7U);
    EXPECT_TRUE(index.GetFrameInfo(0)->IsKeyFrame());
    EXPECT_EQ(index.GetFrameInfo(1)->GetOffset(), 1028U);
    EXPECT_FALSE(index.GetFrameInfo(1)->IsKeyFrame());
    EXPECT_EQ(index.GetFrameInfo(2)->GetOffset(), 1000 + 8 + 0xFFFFFFFFULL);
    EXPECT_TRUE(index.GetFrameInfo(2)->IsKeyFrame());
    EXPECT_EQ(index.GetTotalBytes(), 16U);
}

TEST(AviOldIndex, SizesAreNotCutToTheirSign) {
    TypeOneIndex index(0);
    LoadInto(index, OldEntry(0, 0, 0x80000010) + OldEntry(0, 0, 1));
    EXPECT_EQ(index.GetFrameInfo(0)->GetSize(), 0x80000010U);
    EXPECT_EQ(index.GetTotalBytes(), 0x80000011U);
}

TEST(AviOldIndex, SumsGoBeyond32Bits) {
    TypeOneIndex index(0);
    const std::string entry = OldEntry(0, 0, 0xFFFFFFFF);
    LoadInto(index, entry + entry + entry);
    EXPECT_EQ(index.GetTotalBytes(), 3 * 0xFFFFFFFFULL);
    EXPECT_EQ(index.GetByteOffsetOfFrame(2), 2 * 0xFFFFFFFFULL);
    EXPECT_EQ(index.GetFrameAtByteOffset(2 * 0xFFFFFFFFULL), 2);
    EXPECT_EQ(index.GetFrameAtByteOffset(2 * 0xFFFFFFFFULL - 1), 1);
}

// Says that it is long, and holds nothing: a file of holes.
// NOLINTNEXTLINE(cppcoreguidelines-virtual-class-destructor): final, and ended as what it is
class HollowStream final : public AVI20::Read::IStream {
public:
    explicit HollowStream(std::uint64_t size)
        : m_size(size) {}

    // AVI20::Read::IStream
    bool IsNull() const override { return false; }

    bool Read(void*, std::uint32_t) override {
        ++reads;
        return false;
    }

    std::uint64_t Position() const override { return 0; }

    bool Seek(std::uint64_t position) override { return position == 0; }

    bool SeekToEnd() override { return false; }

    std::uint64_t Size() override { return m_size; }

    bool IsOpen() const override { return true; }

    bool Rewind() override { return true; }

    int reads = 0;

private:
    std::uint64_t m_size;
};

TEST(AviOldIndex, MoreThan33MillionFramesThrowBeforeAnyIsRead) {
    constexpr std::uint64_t most = std::uint64_t{1} << 25;
    HollowStream stream(16 * (most + 1));
    TypeOneIndex index(0);
    EXPECT_THROW(index.Load(stream, stream.Size()), std::exception);
    EXPECT_EQ(stream.reads, 0);
}

TEST(AviOldIndex, AnEntryMayReachOverTheEndOfItsChunk) {
    MemoryStream stream(OldEntry(0x10, 1, 2) + OldEntry(0, 3, 4));
    TypeOneIndex index(0);
    index.Load(stream, 17);
    ASSERT_EQ(index.GetFrameCount(), 2U);
    EXPECT_EQ(index.GetFrameInfo(1)->GetSize(), 4U);
}

TEST(AviOldIndex, AFileThatEndsWithinAnEntryLeavesTheRestAsItWas) {
    MemoryStream stream(OldEntry(0x10, 1, 2) + OldEntry(0, 3, 4).substr(0, 9));
    TypeOneIndex index(0);
    index.Load(stream, 1'000'000'000);
    ASSERT_EQ(index.GetFrameCount(), 2U);
    EXPECT_FALSE(index.GetFrameInfo(1)->IsKeyFrame());
    EXPECT_EQ(index.GetFrameInfo(1)->GetOffset(), 8U + 3U);
    EXPECT_EQ(index.GetFrameInfo(1)->GetSize(), 2U);
}

TEST(AviOpenDmlIndex, EntriesCountFromTheirBase) {
    const std::string standard =
        StandardIndex(5'000'000'000, 3,
                      StandardEntry(8, 0x10) + StandardEntry(40, 0x80000010) + StandardEntry(0, 0));
    const std::string super = SuperIndex(2, SuperEntry(56) + SuperEntry(56 + standard.size()));
    MemoryStream stream(super + standard + StandardIndex(1, 1, StandardEntry(2, 3)));
    TypeTwoIndex index;
    index.Load(stream, super.size());
    ASSERT_EQ(index.GetFrameCount(), 4U);
    EXPECT_EQ(index.GetFrameInfo(0)->GetOffset(), 5'000'000'008U);
    EXPECT_EQ(index.GetFrameInfo(0)->GetSize(), 16U);
    EXPECT_TRUE(index.GetFrameInfo(0)->IsKeyFrame());
    EXPECT_EQ(index.GetFrameInfo(1)->GetSize(), 16U);
    EXPECT_FALSE(index.GetFrameInfo(1)->IsKeyFrame());
    EXPECT_EQ(index.GetFrameInfo(3)->GetOffset(), 3U);
    EXPECT_EQ(index.GetTotalBytes(), 35U);
    EXPECT_EQ(index.GetByteOffsetOfFrame(2), 32U);
    EXPECT_EQ(index.GetByteOffsetOfFrame(3), 32U);
    EXPECT_EQ(index.GetByteOffsetOfFrame(4), 35U);
    // The frame without bytes shares its place with the one behind it.
    EXPECT_EQ(index.GetFrameAtByteOffset(32), 3);
    EXPECT_EQ(index.GetFrameAtByteOffset(31), 1);
    EXPECT_EQ(index.GetFrameAtByteOffset(1'000), 3);
}

// Of a standard index only the count, the base and the entries matter.
TEST(AviOpenDmlIndex, StandardIndexesAreTakenOnTrust) {
    const std::string standard =
        ChunkOfSize("abcd", 3,
                    Number16(9) + std::string("\7\5", 2) + Number32(1) + "wxyz" + Number64(100) +
                        Number32(77) + StandardEntry(8, 5));
    MemoryStream stream(SuperIndex(1, SuperEntry(40)) + standard);
    TypeTwoIndex index;
    index.Load(stream, 40);
    ASSERT_EQ(index.GetFrameCount(), 1U);
    EXPECT_EQ(index.GetFrameOffset(0), 108U);
    EXPECT_EQ(index.GetFrameSize(0), 5U);
}

TEST(AviOpenDmlIndex, WhatIsNoSuperIndexThrows) {
    const auto load = [](const std::string& bytes) {
        TypeTwoIndex index;
        LoadInto(index, bytes);
    };
    EXPECT_NO_THROW(load(SuperIndex(0, "")));
    EXPECT_THROW(load(SuperIndex(0, "", 2)), std::exception);
    EXPECT_THROW(load(SuperIndex(0, "", 4, 1)), std::exception);
    EXPECT_THROW(load(SuperIndex(0, "", 4, 0, 1)), std::exception);
    EXPECT_THROW(load(""), std::exception);
}

TEST(AviOpenDmlIndex, MoreEntriesThanFitThrowBeforeAnyIsRead) {
    for (const std::uint32_t count : {2U, 0x10000000U, 0xFFFFFFFFU}) {
        const std::string bytes = SuperIndex(count, SuperEntry(0));
        MemoryStream stream(bytes);
        TypeTwoIndex index;
        EXPECT_THROW(index.Load(stream, bytes.size()), std::exception);
        EXPECT_EQ(stream.bytesRead, 24U);
        // A chunk that claims to be long enough is still no longer than the file.
        stream.Rewind();
        EXPECT_THROW(index.Load(stream, 0xFFFFFFFFFFULL), std::exception);
    }
}

TEST(AviOpenDmlIndex, APromiseOfEntriesIsNoMemory) {
    const std::string standard = StandardIndex(0, 0xFFFFFFFF, StandardEntry(1, 2));
    MemoryStream stream(SuperIndex(1, SuperEntry(40)) + standard);
    TypeTwoIndex index;
    index.Load(stream, 40);
    EXPECT_EQ(index.GetFrameCount(), 1U);
}

TEST(AviOpenDmlIndex, PlacesBehindTheFileHoldNothing) {
    const std::uint64_t nowhere = 0xFFFFFFFFFFFFFFF0;
    MemoryStream stream(SuperIndex(2, SuperEntry(1'000'000) + SuperEntry(nowhere)));
    TypeTwoIndex index;
    index.Load(stream, 56);
    EXPECT_EQ(index.GetFrameCount(), 0U);
}

TEST(AviOpenDmlIndex, OneIndexNamedOverAndOverThrows) {
    std::string entries;
    for (int i = 0; i < 1'000; ++i) {
        entries += StandardEntry(0, 1);
    }
    std::string super;
    for (int i = 0; i < 1'000; ++i) {
        super += SuperEntry(24 + 16'000);
    }
    const std::string bytes = SuperIndex(1'000, super) + StandardIndex(0, 1'000, entries);
    MemoryStream stream(bytes);
    TypeTwoIndex index;
    EXPECT_THROW(index.Load(stream, 24 + 16'000), std::exception);
    EXPECT_LT(stream.bytesRead, 2 * bytes.size());
}

TEST(AviIndex, TheKeyFrameBeforeIsFound) {
    TypeOneIndex index(0);
    std::string entries;
    for (int i = 0; i < 20; ++i) {
        entries += OldEntry(i == 3 || i == 11 ? 0x10 : 0, 0, 0);
    }
    LoadInto(index, entries);
    EXPECT_EQ(index.FindKeyFrame(0), 0U);
    EXPECT_EQ(index.FindKeyFrame(2), 0U);
    EXPECT_EQ(index.FindKeyFrame(3), 3U);
    EXPECT_EQ(index.FindKeyFrame(10), 3U);
    EXPECT_EQ(index.FindKeyFrame(11), 11U);
    EXPECT_EQ(index.FindKeyFrame(0xFFFFFFFF), 11U);
}

// A million frames, an hour or nine, are read once and in few pieces.
TEST(AviIndex, ALongIndexIsReadOnceInLargePieces) {
    constexpr int frames = 1'000'000;
    std::string entries;
    entries.reserve(std::size_t{16} * frames);
    for (int i = 0; i < frames; ++i) {
        entries += OldEntry(i % 1'000 == 0 ? 0x10 : 0, static_cast<std::uint32_t>(i), 100);
    }
    MemoryStream stream(entries);
    TypeOneIndex index(0);
    index.Load(stream, entries.size());
    EXPECT_EQ(index.GetFrameCount(), 1'000'000U);
    EXPECT_EQ(index.GetTotalBytes(), 100'000'000U);
    EXPECT_EQ(index.FindKeyFrame(999'999), 999'000U);
    EXPECT_EQ(index.GetFrameAtByteOffset(12'345'678), 123'456);
    EXPECT_EQ(stream.bytesRead, entries.size());
    EXPECT_LT(stream.reads, 300U);
}

TEST(AviIndex, LongStandardIndexesAreReadOnceInLargePieces) {
    constexpr std::uint64_t indexes = 100;
    constexpr std::uint32_t framesOfEach = 10'000;
    std::string entries;
    for (std::uint32_t i = 0; i < framesOfEach; ++i) {
        entries += StandardEntry(i, i % 1'000 == 0 ? 100 : 100 | 0x80000000U);
    }
    std::string super;
    std::string standard;
    for (std::uint64_t i = 0; i < indexes; ++i) {
        super += SuperEntry(24 + 16 * indexes + standard.size());
        standard += StandardIndex(1'000'000 * i, framesOfEach, entries);
    }
    MemoryStream stream(SuperIndex(indexes, super) + standard);
    TypeTwoIndex index;
    index.Load(stream, 24 + 16 * indexes);
    EXPECT_EQ(index.GetFrameCount(), 1'000'000U);
    EXPECT_EQ(index.GetFrameOffset(987'654), 98'000'000U + 7'654);
    EXPECT_EQ(index.FindKeyFrame(987'654), 987'000U);
    EXPECT_EQ(index.GetTotalBytes(), 100'000'000U);
    EXPECT_EQ(stream.bytesRead, 24 + indexes * (16 + 24 + 8ULL * framesOfEach));
    EXPECT_LT(stream.reads, 500U);
}

// Frames "0", "11", "222", ... behind each other, and an index on them.
class AviFrames : public testing::Test {
protected:
    static constexpr std::uint32_t Count = 6;

    static std::string File() {
        std::string payload;
        std::string entries;
        for (std::uint32_t i = 0; i < Count; ++i) {
            entries += OldEntry(0, static_cast<std::uint32_t>(payload.size()), i + 1);
            payload += std::string(i + 1, static_cast<char>('0' + i));
        }
        return std::string(8, 'h') + payload + Chunk("idx1", entries);
    }

    AviFrames()
        : stream(File())
        , frames(&stream, ChunkHeader{FourCc("idx1"), Count * 16, false, 8 + 21}, 0) {}

    std::string Bytes(std::uint64_t offset, std::uint32_t count) {
        std::string bytes(count, '?');
        bytes.resize(frames.ReadBytes(offset, count, bytes.data()));
        return bytes;
    }

    MemoryStream stream;
    FrameIndex frames;
};

TEST_F(AviFrames, AreReadByNumber) {
    std::string bytes(4, '?');
    EXPECT_TRUE(frames.ReadFrame(3, bytes.data()));
    EXPECT_EQ(bytes, "3333");
    EXPECT_FALSE(frames.ReadFrame(Count, bytes.data()));
    EXPECT_EQ(frames.GetFrameSize(Count - 1), Count);
    EXPECT_EQ(frames.GetFrameSize(Count), 0U);
    EXPECT_EQ(frames.GetFrameOffset(Count), 0U);
    EXPECT_FALSE(frames.IsKeyFrame(Count));
}

TEST_F(AviFrames, AreReadAcrossTheirBorders) {
    EXPECT_EQ(Bytes(0, 21), "011222333344444555555");
    EXPECT_EQ(Bytes(8, 4), "3344"); // from the middle of frame 3 on
    EXPECT_EQ(Bytes(9, 0), "");
    EXPECT_EQ(Bytes(20, 100), "5");
}

TEST_F(AviFrames, EndWithTheirTotal) {
    EXPECT_EQ(frames.GetTotalBytes(), 21U);
    EXPECT_EQ(Bytes(21, 10), "");
    EXPECT_EQ(Bytes(22, 10), "");
    EXPECT_EQ(Bytes(0x100000000 + 15, 10), "");
}

TEST(AviFrameBytes, AFrameWithoutBytesEndsARead) {
    const std::string payload = "abcd";
    MemoryStream stream(std::string(8, 'h') + payload +
                        Chunk("idx1", OldEntry(0, 0, 2) + OldEntry(0, 2, 0) + OldEntry(0, 2, 2)));
    const FrameIndex frames(&stream, ChunkHeader{FourCc("idx1"), 48, false, 12}, 0);
    std::string bytes(4, '?');
    EXPECT_EQ(frames.ReadBytes(0, 4, bytes.data()), 2U);
    EXPECT_EQ(frames.ReadBytes(2, 4, bytes.data()), 2U);
    EXPECT_EQ(bytes, "cd??");
}

TEST(AviFrameBytes, EntriesBehindTheFileCannotBeRead) {
    MemoryStream stream(Chunk("idx1", OldEntry(0, 1'000, 5) + OldEntry(0, 0, 0xFFFFFFFF)));
    const FrameIndex frames(&stream, ChunkHeader{FourCc("idx1"), 32, false, 0}, 0);
    std::string bytes(64, '?');
    EXPECT_FALSE(frames.ReadFrame(0, bytes.data()));
    EXPECT_FALSE(frames.HoldsFrame(0));
    EXPECT_FALSE(frames.HoldsFrame(1));
}

TEST(AviFrameBytes, OfNoBytesAllAreThereWhereverTheyLie) {
    MemoryStream stream(Chunk("idx1", OldEntry(0, 1'000, 0)));
    const FrameIndex frames(&stream, ChunkHeader{FourCc("idx1"), 16, false, 0}, 0);
    char untouched = '?';
    EXPECT_TRUE(frames.ReadFrame(0, &untouched));
    EXPECT_EQ(untouched, '?');
    EXPECT_TRUE(frames.HoldsFrame(0));
    EXPECT_FALSE(frames.HoldsFrame(1));
}

} // namespace
