#include "platform/win32/ReadAhead.h"

#include <cstring>
#include <fstream>
#include <string>

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include "platform/win32/OwnedHandle.h"
#include "platform/win32/Text.h"
#include "tests/support/TemporaryFolder.h"

namespace {

constexpr std::size_t OneFetch = 4096;

win32::OwnedHandle Open(const std::string& path) {
    return win32::OpenToRead(win32::Utf8ToWide(path).c_str());
}

// Bytes of which no two neighbouring fetches are alike.
std::string Bytes(std::size_t count) {
    std::string bytes(count, '\0');
    for (std::size_t i = 0; i < count; ++i) {
        bytes[i] = static_cast<char>(i * 7 + i / 251);
    }
    return bytes;
}

// What is read there; "failed" when it cannot be.
std::string ReadAt(win32::ReadAhead& ahead, const win32::OwnedHandle& file, std::uint64_t position,
                   std::size_t byteCount) {
    std::string bytes(byteCount, '?');
    return ahead.Read(file.get(), position, bytes.data(), byteCount) ? bytes : "failed";
}

TEST(ReadAhead, EveryPieceIsTheFiles) {
    const TemporaryFolder folder;
    const std::string whole = Bytes(3 * OneFetch + 100);
    const win32::OwnedHandle file = Open(folder.Write("a", whole));
    win32::ReadAhead ahead;
    for (const std::size_t position : {0u, 4090u, 4095u, 4096u, 8191u, 5u, 12'380u, 4094u, 0u}) {
        for (const std::size_t count : {1u, 2u, 8u, 4096u, 0u}) {
            const bool there = position + count <= whole.size();
            EXPECT_EQ(ReadAt(ahead, file, position, count),
                      there ? whole.substr(position, count) : "failed")
                << position << " " << count;
        }
    }
    EXPECT_EQ(ReadAt(ahead, file, 0, whole.size()), whole);
}

TEST(ReadAhead, TheLastByteIsTheEnd) {
    const TemporaryFolder folder;
    for (const std::size_t size : {std::size_t{1}, OneFetch - 1, OneFetch, OneFetch + 1}) {
        const std::string whole = Bytes(size);
        const win32::OwnedHandle file = Open(folder.Write("a", whole));
        win32::ReadAhead ahead;
        EXPECT_EQ(ReadAt(ahead, file, 0, size), whole) << size;
        EXPECT_EQ(ReadAt(ahead, file, 0, size + 1), "failed") << size;
        EXPECT_EQ(ReadAt(ahead, file, size, 1), "failed") << size;
        EXPECT_EQ(ReadAt(ahead, file, size, 0), "") << size;
        EXPECT_EQ(ReadAt(ahead, file, size - 1, 1), whole.substr(size - 1)) << size;
    }
}

TEST(ReadAhead, NoFileHasAPositionBeyond63Bits) {
    const TemporaryFolder folder;
    const win32::OwnedHandle file = Open(folder.Write("a", "x"));
    win32::ReadAhead ahead;
    EXPECT_EQ(ReadAt(ahead, file, std::uint64_t{1} << 63, 1), "failed");
    EXPECT_EQ(ReadAt(ahead, file, ~std::uint64_t{0}, 1), "failed");
    EXPECT_EQ(ReadAt(ahead, nullptr, 0, 1), "failed");
    EXPECT_EQ(ReadAt(ahead, file, 0, 1), "x");
}

TEST(ReadAhead, WhatIsHeldIsNotFetchedAgain) {
    const TemporaryFolder folder;
    const std::string path = folder.Write("a", std::string(2 * OneFetch, 'a'));
    const win32::OwnedHandle file = Open(path);
    win32::ReadAhead ahead;
    EXPECT_EQ(ReadAt(ahead, file, 8, 2), "aa");
    std::ofstream(path, std::ios::binary) << std::string(2 * OneFetch, 'b');
    EXPECT_EQ(ReadAt(ahead, file, 8 + OneFetch - 1, 1), "a");
    EXPECT_EQ(ReadAt(ahead, file, 8 + OneFetch, 1), "b");
    EXPECT_EQ(ReadAt(ahead, file, 7, 1), "b");
}

// A file of which a part can be read and the rest cannot: the process's own memory, at the end of
// what it has mapped. The fetch that fails has overwritten some of what was held before.
TEST(ReadAhead, AFetchThatFailsLeavesNothingWrongBehind) {
    const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    const std::size_t mapped = 2 * (page > OneFetch ? page : OneFetch);
    void* memory =
        mmap(nullptr, mapped + page, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    ASSERT_NE(memory, MAP_FAILED);
    ASSERT_EQ(munmap(static_cast<char*>(memory) + mapped, page), 0);
    std::memset(memory, 'a', OneFetch);
    std::memset(static_cast<char*>(memory) + OneFetch, 'b', mapped - OneFetch);
    const win32::OwnedHandle file = Open("/proc/self/mem");
    const auto start = reinterpret_cast<std::uintptr_t>(memory);
    win32::ReadAhead ahead;
    const std::string before = ReadAt(ahead, file, start, 4);
    const std::string across = ReadAt(ahead, file, start + mapped - 4, 8);
    const std::string after = ReadAt(ahead, file, start, 4);
    munmap(memory, mapped);
    EXPECT_EQ(before, "aaaa");
    EXPECT_EQ(across, "failed");
    EXPECT_EQ(after, "aaaa");
}

} // namespace
