#include "zanthe/analysis/FileReader.h"

#include <array>
#include <filesystem>
#include <string>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "platform/win32/Text.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/zanthe/analysis/Mp4Boxes.h"
#include "zanthe/analysis/MP4ParseException.h"

namespace {

const std::string SomeFile = boxes::FileType() + "0123456789";

std::wstring Wide(const std::string& path) {
    return win32::Utf8ToWide(path);
}

std::string Read(FileReader& reader, std::size_t byteCount) {
    std::string bytes(byteCount, '?');
    reader.Read(bytes.data(), byteCount);
    return bytes;
}

TEST(FileReader, StartsAtTheStartAndReadsOn) {
    const TemporaryFolder folder;
    FileReader reader;
    reader.Open(Wide(folder.Write("a.mp4", SomeFile)));
    EXPECT_EQ(reader.GetPosition(), 0u);
    EXPECT_EQ(Read(reader, 4), boxes::U32(20));
    EXPECT_EQ(Read(reader, 4), "ftyp");
    EXPECT_EQ(reader.GetPosition(), 8u);
}

TEST(FileReader, TheSizeLeavesThePosition) {
    const TemporaryFolder folder;
    FileReader reader;
    reader.Open(Wide(folder.Write("a.mp4", SomeFile)));
    reader.Seek(21);
    EXPECT_EQ(reader.GetSize(), 30u);
    EXPECT_EQ(reader.GetPosition(), 21u);
    EXPECT_EQ(Read(reader, 3), "123");
}

TEST(FileReader, AShortReadThrows) {
    const TemporaryFolder folder;
    FileReader reader;
    reader.Open(Wide(folder.Write("a.mp4", SomeFile)));
    reader.Seek(20);
    EXPECT_EQ(Read(reader, 10), "0123456789");
    reader.Seek(21);
    EXPECT_THROW(Read(reader, 10), MP4ParseException);
    EXPECT_EQ(Read(reader, 0), "");
}

TEST(FileReader, ASeekPastTheEndThrowsAtTheNextRead) {
    const TemporaryFolder folder;
    FileReader reader;
    reader.Open(Wide(folder.Write("a.mp4", SomeFile)));
    reader.Seek(std::uint64_t{1} << 62);
    EXPECT_EQ(reader.GetPosition(), std::uint64_t{1} << 62);
    EXPECT_THROW(Read(reader, 1), MP4ParseException);
    reader.Seek(20);
    EXPECT_EQ(Read(reader, 1), "0");
}

TEST(FileReader, ASeekBeyond63BitsThrows) {
    const TemporaryFolder folder;
    FileReader reader;
    reader.Open(Wide(folder.Write("a.mp4", SomeFile)));
    EXPECT_THROW(reader.Seek(std::uint64_t{1} << 63), MP4ParseException);
    EXPECT_THROW(reader.Seek(~std::uint64_t{0}), MP4ParseException);
    EXPECT_EQ(reader.GetPosition(), 0u);
    constexpr std::uint64_t farthest = (std::uint64_t{1} << 63) - 1;
    reader.Seek(farthest);
    EXPECT_EQ(reader.GetPosition(), farthest);
    EXPECT_THROW(Read(reader, 1), MP4ParseException);
}

TEST(FileReader, PositionsBeyond32BitsAreReached) {
    const TemporaryFolder folder;
    const std::string path = folder.Write("a.mp4", SomeFile);
    constexpr std::uint64_t far = 0x1'2345'6789;
    std::filesystem::resize_file(path, far); // a hole, which takes no room
    FileReader reader;
    reader.Open(Wide(path));
    EXPECT_EQ(reader.GetSize(), far);
    reader.Seek(far - 2);
    EXPECT_EQ(Read(reader, 2), boxes::Zeros(2));
    EXPECT_THROW(Read(reader, 1), MP4ParseException);
}

TEST(FileReader, AFileWithoutAFileTypeFirstIsRefused) {
    const TemporaryFolder folder;
    const std::string moov = boxes::Box("moov", boxes::MovieHeaderBox(0, boxes::Upright));
    FileReader reader;
    EXPECT_THROW(reader.Open(Wide(folder.Write("a.mov", moov))), MP4ParseException);
    EXPECT_THROW(reader.Open(Wide(folder.Write("b.mov", boxes::Box("free", "") + SomeFile))),
                 MP4ParseException);
    for (const char* type : {"FTYP", "ftyx", "xtyp", "styp"}) {
        EXPECT_THROW(reader.Open(Wide(folder.Write("c.mov", boxes::Box(type, "")))),
                     MP4ParseException)
            << type;
    }
}

TEST(FileReader, AFileShorterThanEightBytesIsRefused) {
    const TemporaryFolder folder;
    for (std::size_t size = 0; size < 8; ++size) {
        FileReader reader;
        EXPECT_THROW(reader.Open(Wide(folder.Write("a.mp4", SomeFile.substr(0, size)))),
                     MP4ParseException)
            << size;
    }
    FileReader reader;
    EXPECT_NO_THROW(reader.Open(Wide(folder.Write("a.mp4", SomeFile.substr(0, 8)))));
}

TEST(FileReader, WhatIsNoRegularFileIsRefusedAtOnce) {
    const TemporaryFolder folder;
    const std::string pipe = folder / "pipe.mp4";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    FileReader reader;
    EXPECT_THROW(reader.Open(Wide(pipe)), MP4ParseException);
    EXPECT_THROW(reader.Open(Wide(folder.Path().string())), MP4ParseException);
    EXPECT_THROW(reader.Open(Wide(folder / "absent.mp4")), MP4ParseException);
    EXPECT_THROW(reader.Open(L""), MP4ParseException);
}

TEST(FileReader, BeforeItIsOpenNothingCanBeRead) {
    FileReader reader;
    EXPECT_THROW(Read(reader, 1), MP4ParseException);
    EXPECT_THROW(reader.Seek(0), MP4ParseException);
    EXPECT_THROW(reader.GetPosition(), MP4ParseException);
    EXPECT_EQ(reader.GetSize(), 0u);
}

TEST(FileReader, ASecondOpenReplacesTheFirst) {
    const TemporaryFolder folder;
    FileReader reader;
    reader.Open(Wide(folder.Write("a.mp4", SomeFile)));
    reader.Seek(21);
    const std::string other = boxes::Box("ftyp", "qt  ") + "more";
    reader.Open(Wide(folder.Write("b.mp4", other)));
    EXPECT_EQ(reader.GetSize(), other.size());
    EXPECT_EQ(reader.GetPosition(), 0u);
    EXPECT_EQ(Read(reader, other.size()), other);
}

TEST(FileReader, AfterAnOpenThatFailsTheFirstFileIsStillThere) {
    const TemporaryFolder folder;
    FileReader reader;
    reader.Open(Wide(folder.Write("a.mp4", SomeFile)));
    reader.Seek(21);
    EXPECT_THROW(reader.Open(Wide(folder / "absent.mp4")), MP4ParseException);
    EXPECT_EQ(Read(reader, 3), "123");
}

TEST(FileReader, SeveralReadOneFile) {
    const TemporaryFolder folder;
    const std::wstring path = Wide(folder.Write("a.mp4", SomeFile));
    FileReader one;
    FileReader other;
    one.Open(path);
    other.Open(path);
    one.Seek(20);
    other.Seek(25);
    EXPECT_EQ(Read(one, 2), "01");
    EXPECT_EQ(Read(other, 2), "56");
    EXPECT_EQ(Read(one, 2), "23");
}

TEST(FileReader, ATransactionContextDecidesHowToOpen) {
    const TemporaryFolder folder;
    const std::wstring path = Wide(folder.Write("a.mp4", SomeFile));
    int anything = 0;
    const TransactionContext none{nullptr, false};
    const TransactionContext noneButPlainly{nullptr, true};
    const TransactionContext running{&anything, true};
    EXPECT_THROW(FileReader(&none).Open(path), MP4ParseException);
    EXPECT_NO_THROW(FileReader(&noneButPlainly).Open(path));
    EXPECT_THROW(FileReader(&running).Open(path), MP4ParseException);
}

} // namespace
