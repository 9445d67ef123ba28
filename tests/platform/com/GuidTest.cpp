#include "platform/com/Guid.h"

#include <type_traits>

#include <gtest/gtest.h>

namespace {

constexpr GUID Sample = {0x01234567, 0x89AB, 0xCDEF, {1, 2, 3, 4, 5, 6, 7, 8}};

TEST(Guid, IsItself) {
    constexpr GUID copy = Sample;
    EXPECT_TRUE(copy == Sample);
    EXPECT_FALSE(copy != Sample);
}

TEST(Guid, DiffersInAnyField) {
    GUID first = Sample, second = Sample, third = Sample, last = Sample;
    first.Data1 ^= 1;
    second.Data2 ^= 1;
    third.Data3 ^= 1;
    last.Data4[7] ^= 1;
    for (const GUID& other : {first, second, third, last}) {
        EXPECT_TRUE(other != Sample);
    }
}

TEST(Guid, NamesClasses) {
    static_assert(std::is_same_v<CLSID, GUID>);
    static_assert(std::is_trivially_copyable_v<GUID> && std::is_standard_layout_v<GUID>);
}

} // namespace
