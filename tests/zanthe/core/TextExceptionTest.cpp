#include "zanthe/core/TextException.h"

#include <memory>
#include <stdexcept>
#include <type_traits>

#include <gtest/gtest.h>

namespace Zanthe {
namespace {

TEST(TextException, TellsItsText) {
    auto first = std::make_unique<TextException>("one text");
    const TextException copy = *first;
    EXPECT_STREQ(first->what(), "one text");
    first.reset();
    EXPECT_STREQ(copy.what(), "one text");
}

TEST(TextException, IsCaughtAsAPlainExceptionOnly) {
    static_assert(std::is_base_of_v<std::exception, TextException>);
    static_assert(!std::is_base_of_v<std::runtime_error, TextException>);
    static_assert(!std::is_base_of_v<std::logic_error, TextException>);
    try {
        throw TextException("through the base");
    } catch (const std::exception& error) {
        EXPECT_STREQ(error.what(), "through the base");
    }
}

} // namespace
} // namespace Zanthe
