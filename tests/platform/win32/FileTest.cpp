#include "platform/win32/File.h"

#include <array>
#include <cstdint>
#include <filesystem>
#include <limits>
#include <string>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "platform/win32/OwnedHandle.h"
#include "platform/win32/Text.h"
#include "tests/support/TemporaryFolder.h"

namespace {

using win32::OpenToRead;
using win32::OwnedHandle;

constexpr std::int64_t Farthest = std::numeric_limits<std::int64_t>::max();

HANDLE OpenRaw(const std::string& path) {
    return CreateFileW(win32::Utf8ToWide(path).c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                       OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
}

OwnedHandle Open(const std::string& path) {
    return OpenToRead(win32::Utf8ToWide(path).c_str());
}

std::string Read(const OwnedHandle& file, DWORD byteCount) {
    std::string bytes(byteCount, '?');
    DWORD got = 0;
    EXPECT_TRUE(ReadFile(file.get(), bytes.data(), byteCount, &got, nullptr));
    bytes.resize(got);
    return bytes;
}

// The new position; -1 when the move failed.
std::int64_t Move(const OwnedHandle& file, std::int64_t distance, DWORD method) {
    LARGE_INTEGER by;
    by.QuadPart = distance;
    LARGE_INTEGER position;
    position.QuadPart = -2;
    return SetFilePointerEx(file.get(), by, &position, method) != FALSE ? position.QuadPart : -1;
}

TEST(File, ReadsOnFromItsPosition) {
    const TemporaryFolder folder;
    const OwnedHandle file = Open(folder.Write("a", "0123456789"));
    ASSERT_TRUE(file);
    EXPECT_EQ(Read(file, 4), "0123");
    EXPECT_EQ(Read(file, 4), "4567");
    EXPECT_EQ(Read(file, 4), "89");
    EXPECT_EQ(Read(file, 4), "");
}

TEST(File, MovesFromStartPositionAndEnd) {
    const TemporaryFolder folder;
    const OwnedHandle file = Open(folder.Write("a", "0123456789"));
    EXPECT_EQ(Move(file, 3, FILE_BEGIN), 3);
    EXPECT_EQ(Move(file, 2, FILE_CURRENT), 5);
    EXPECT_EQ(Read(file, 1), "5");
    EXPECT_EQ(Move(file, -1, FILE_END), 9);
    EXPECT_EQ(Read(file, 2), "9");
    EXPECT_EQ(Move(file, 0, FILE_CURRENT), 10);
}

TEST(File, APositionFarPastTheEndReadsNothing) {
    const TemporaryFolder folder;
    const OwnedHandle file = Open(folder.Write("a", "0123456789"));
    EXPECT_EQ(Move(file, std::int64_t{1} << 60, FILE_BEGIN), std::int64_t{1} << 60);
    EXPECT_EQ(Read(file, 2), "");
    EXPECT_EQ(Move(file, Farthest, FILE_BEGIN), Farthest);
}

TEST(File, AMoveThatCannotBeLeavesThePosition) {
    const TemporaryFolder folder;
    const OwnedHandle file = Open(folder.Write("a", "0123456789"));
    EXPECT_EQ(Move(file, 4, FILE_BEGIN), 4);
    EXPECT_EQ(Move(file, -1, FILE_BEGIN), -1);
    EXPECT_EQ(Move(file, -5, FILE_CURRENT), -1);
    EXPECT_EQ(Move(file, Farthest, FILE_CURRENT), -1);
    EXPECT_EQ(Move(file, 0, 3), -1);
    EXPECT_EQ(Read(file, 1), "4");
}

TEST(File, OnlyRegularFilesOpen) {
    const TemporaryFolder folder;
    const std::string pipe = folder / "pipe";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_EQ(OpenRaw(pipe), INVALID_HANDLE_VALUE);
    EXPECT_EQ(OpenRaw(folder.Path().string()), INVALID_HANDLE_VALUE);
    EXPECT_EQ(OpenRaw("/dev/null"), INVALID_HANDLE_VALUE);
    EXPECT_EQ(OpenRaw(folder / "absent"), INVALID_HANDLE_VALUE);
    EXPECT_EQ(OpenRaw(""), INVALID_HANDLE_VALUE);
    EXPECT_EQ(OpenToRead(L""), nullptr);
}

TEST(File, OnlyReadingAnExistingFileIsOffered) {
    const TemporaryFolder folder;
    const std::wstring path = win32::Utf8ToWide(folder.Write("a", "x"));
    constexpr DWORD genericWrite = 0x40000000;
    constexpr DWORD createAlways = 2;
    EXPECT_EQ(CreateFileW(path.c_str(), genericWrite, 0, nullptr, OPEN_EXISTING, 0, nullptr),
              INVALID_HANDLE_VALUE);
    EXPECT_EQ(CreateFileW(path.c_str(), GENERIC_READ, 0, nullptr, createAlways, 0, nullptr),
              INVALID_HANDLE_VALUE);
    EXPECT_EQ(CreateFileW(nullptr, GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr),
              INVALID_HANDLE_VALUE);
    EXPECT_EQ(ReadWholeFile(folder / "a"), "x");
}

TEST(File, BackslashesAndWideNamesAreFound) {
    const TemporaryFolder folder;
    std::filesystem::create_directory(folder.Path() / "sub");
    folder.Write("sub/фильм.mp4", "film");
    const OwnedHandle file = Open(folder / "sub\\фильм.mp4");
    ASSERT_TRUE(file);
    EXPECT_EQ(Read(file, 9), "film");
}

TEST(File, WhatIsNoFileHandleFails) {
    std::array<char, 4> buffer{};
    DWORD got = 7;
    EXPECT_FALSE(ReadFile(nullptr, buffer.data(), 4, &got, nullptr));
    EXPECT_EQ(got, 0u);
    EXPECT_FALSE(ReadFile(INVALID_HANDLE_VALUE, buffer.data(), 4, &got, nullptr));
    EXPECT_FALSE(SetFilePointerEx(nullptr, LARGE_INTEGER{}, nullptr, FILE_BEGIN));
    win32::KernelObject somethingElse;
    EXPECT_FALSE(ReadFile(&somethingElse, buffer.data(), 4, &got, nullptr));
    EXPECT_FALSE(CloseHandle(nullptr));
    EXPECT_FALSE(CloseHandle(INVALID_HANDLE_VALUE));
}

} // namespace
