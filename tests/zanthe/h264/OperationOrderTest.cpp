// Hosts are built apart from the library and call through the order of the virtual operations.
#include <type_traits>

#include <gtest/gtest.h>

#include "tests/support/SlotOf.h"
#include "zanthe/h264/IH264KeyframeCollector.h"
#include "zanthe/h264/ISeekOrStepThroughDecider.h"

#if defined(__x86_64__)

namespace Zanthe {
namespace {

TEST(OperationOrder, Deciders) {
    EXPECT_EQ(SlotOf(&ISeekOrStepThroughDecider::NeedToSeekBetweenTimes), 2);
    static_assert(std::has_virtual_destructor_v<ISeekOrStepThroughDecider>);
}

TEST(OperationOrder, KeyframeCollectors) {
    EXPECT_EQ(SlotOf(&IH264KeyframeCollector::CollectKeyframeTimesAndDuration), 2);
    static_assert(std::has_virtual_destructor_v<IH264KeyframeCollector>);
}

} // namespace
} // namespace Zanthe

#endif
