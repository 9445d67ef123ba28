#include "platform/com/MemoryStream.h"

#include <array>
#include <string>

#include <gtest/gtest.h>

#include "platform/com/ComPtr.h"
#include "platform/com/StorageResult.h"

namespace {

com::ComPtr<IStream> StreamOver(const std::string& bytes) {
    return com::ComPtr<IStream>::Attach(SHCreateMemStream(
        reinterpret_cast<const BYTE*>(bytes.data()), static_cast<UINT>(bytes.size())));
}

std::string Read(IStream& stream, ULONG count) {
    std::string bytes(count, '?');
    ULONG done = 0;
    EXPECT_TRUE(SUCCEEDED(stream.Read(bytes.data(), count, &done)));
    return bytes.substr(0, done);
}

TEST(MemoryStream, HoldsACopyOfTheBytes) {
    std::string bytes = "0123456789";
    const auto stream = StreamOver(bytes);
    ASSERT_TRUE(stream);
    bytes.assign(10, 'x');
    EXPECT_EQ(Read(*stream.Get(), 4), "0123");
    EXPECT_EQ(Read(*stream.Get(), 100), "456789");
    EXPECT_EQ(Read(*stream.Get(), 1), "");
    STATSTG facts{};
    EXPECT_EQ(stream->Stat(&facts, STATFLAG_NONAME), S_OK);
    EXPECT_EQ(facts.cbSize.QuadPart, 10U);
}

TEST(MemoryStream, ACopyHasAPositionOfItsOwnAndOutlivesIt) {
    auto stream = StreamOver("abcdef");
    com::ComPtr<IStream> copy;
    ASSERT_EQ(stream->Clone(copy.Put()), S_OK);
    EXPECT_EQ(Read(*stream.Get(), 3), "abc");
    stream.Reset();
    EXPECT_EQ(Read(*copy.Get(), 3), "abc");
}

TEST(MemoryStream, IsOnlyRead) {
    const auto stream = StreamOver("abc");
    EXPECT_EQ(stream->Write("x", 1, nullptr), STG_E_ACCESSDENIED);
    EXPECT_EQ(Read(*stream.Get(), 3), "abc");
}

TEST(MemoryStream, OfNoBytes) {
    const auto stream = StreamOver("");
    ASSERT_TRUE(stream);
    EXPECT_EQ(Read(*stream.Get(), 1), "");
    EXPECT_TRUE(com::ComPtr<IStream>::Attach(SHCreateMemStream(nullptr, 0)));
    EXPECT_EQ(SHCreateMemStream(nullptr, 1), nullptr);
}

} // namespace
