#include "platform/av/PacketOrder.h"

#include <limits>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using av::PacketOrder;
using av::PictureSpan;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr std::int64_t kEarliest = std::numeric_limits<std::int64_t>::min();

std::vector<PictureSpan> PopAll(PacketOrder& order) {
    std::vector<PictureSpan> spans;
    for (PictureSpan span; order.Pop(span);) {
        spans.push_back(span);
    }
    return spans;
}

class Order : public testing::Test {
protected:
    Order() { m_order.Restart(kEarliest); }

    // Packets 10 apart, decoded from `decoded` on, shown at the times given.
    void Push(std::int64_t decoded, const std::vector<std::int64_t>& shown) {
        for (const std::int64_t time : shown) {
            m_order.Push({time, decoded, 10});
            decoded += 10;
        }
    }

    PacketOrder m_order;
};

TEST_F(Order, NothingIsSettledByOnePacket) {
    Push(0, {0});
    EXPECT_THAT(PopAll(m_order), IsEmpty());
}

TEST_F(Order, ASpanIsSettledOnceTheNextPictureIsDue) {
    Push(0, {0, 10});
    EXPECT_THAT(PopAll(m_order), ElementsAre(PictureSpan{0, 10}));
}

TEST_F(Order, BPicturesComeBeforeThePictureTheyReferTo) {
    Push(-20, {0, 30, 10, 20, 40});
    m_order.Close();
    EXPECT_THAT(PopAll(m_order),
                ElementsAre(PictureSpan{0, 10}, PictureSpan{10, 20}, PictureSpan{20, 30},
                            PictureSpan{30, 40}, PictureSpan{40, 50}));
}

TEST_F(Order, NoSpanIsGivenBeforeAllThatMayFallIntoItHasCome) {
    Push(-20, {0, 30});
    EXPECT_THAT(PopAll(m_order), IsEmpty());
    Push(0, {10});
    EXPECT_THAT(PopAll(m_order), IsEmpty()) << "something shown at 5 could still come";
    Push(10, {20});
    EXPECT_THAT(PopAll(m_order), ElementsAre(PictureSpan{0, 10}));
}

TEST_F(Order, DistancesMayVary) {
    m_order.Push({0, 0, 10});
    m_order.Push({70, 70, 10});
    m_order.Push({75, 75, 10});
    m_order.Close();
    EXPECT_THAT(PopAll(m_order),
                ElementsAre(PictureSpan{0, 70}, PictureSpan{70, 75}, PictureSpan{75, 85}));
}

TEST_F(Order, OfTwoAtOneTimeThereIsOneSpan) {
    m_order.Push({0, 0, 10});
    m_order.Push({10, 1, 10});
    m_order.Push({10, 2, 25});
    m_order.Close();
    EXPECT_THAT(PopAll(m_order), ElementsAre(PictureSpan{0, 10}, PictureSpan{10, 35}));
}

TEST_F(Order, TheLastLastsAsLongAsTheOneBeforeWhereItDoesNotSay) {
    m_order.Push({0, 0, 0});
    m_order.Push({7, 7, 0});
    m_order.Close();
    EXPECT_THAT(PopAll(m_order), ElementsAre(PictureSpan{0, 7}, PictureSpan{7, 14}));
}

TEST_F(Order, WhatComesTooLateIsPassedOver) {
    Push(0, {0, 10});
    EXPECT_THAT(PopAll(m_order), ElementsAre(PictureSpan{0, 10}));
    m_order.Push({0, 20, 10});
    m_order.Push({-5, 21, 10});
    m_order.Close();
    EXPECT_THAT(PopAll(m_order), ElementsAre(PictureSpan{10, 20}));
}

TEST_F(Order, WhatIsShownBeforeTheRestartIsPassedOver) {
    m_order.Restart(30);
    Push(0, {30, 10, 20, 40});
    m_order.Close();
    EXPECT_THAT(PopAll(m_order), ElementsAre(PictureSpan{30, 40}, PictureSpan{40, 50}));
}

TEST_F(Order, ARestartForgets) {
    Push(0, {0, 10, 20});
    m_order.Close();
    m_order.Restart(kEarliest);
    EXPECT_THAT(PopAll(m_order), IsEmpty());
    Push(0, {0});
    EXPECT_THAT(PopAll(m_order), IsEmpty()) << "it is open again";
}

TEST_F(Order, DecodeTimesThatNeverCatchUpDoNotHoldAFileBack) {
    std::size_t given = 0;
    for (std::int64_t i = 0; i < 1000; ++i) {
        m_order.Push({i, -1'000'000, 1});
        given += PopAll(m_order).size();
    }
    EXPECT_GT(given, 900U);
}

TEST_F(Order, TimesAtTheEdgeOfTheirTypeStayInIt) {
    constexpr std::int64_t kLatest = std::numeric_limits<std::int64_t>::max();
    m_order.Push({kEarliest, kEarliest, kLatest});
    m_order.Push({kLatest - 1, kLatest, kLatest});
    m_order.Close();
    EXPECT_THAT(PopAll(m_order), ElementsAre(PictureSpan{kEarliest, kLatest - 1},
                                             PictureSpan{kLatest - 1, kLatest}));
}

} // namespace
