#include "zanthe/h264/SeekInfoSeekOrStepThroughDecider.h"

#include <algorithm>
#include <limits>
#include <stdexcept>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/mf/SeekInfo.h"
#include "tests/zanthe/h264/ScriptedMedia.h"

using testing::ElementsAre;

namespace Zanthe {
namespace {

// Key frames as a table, answered as the platform's sources do.
class ScriptedSeekInfo final : public com::Object<IMFSeekInfo> {
public:
    explicit ScriptedSeekInfo(std::vector<std::int64_t> keyFrames)
        : m_keyFrames(std::move(keyFrames)) {}

    std::vector<std::int64_t> asked;
    std::size_t answers = std::numeric_limits<std::size_t>::max(); // behind them it fails
    bool alwaysTheSame = false;

    // IMFSeekInfo
    HRESULT GetNearestKeyFrames(const GUID* format, const PROPVARIANT* start, PROPVARIANT* previous,
                                PROPVARIANT* next) override {
        EXPECT_EQ(*format, GUID_NULL);
        EXPECT_EQ(start->vt, VT_I8);
        const std::int64_t position = start->hVal.QuadPart;
        asked.push_back(position);
        if (asked.size() > answers) {
            return E_FAIL;
        }
        const auto at = std::lower_bound(m_keyFrames.begin(), m_keyFrames.end(), position);
        const auto before = at != m_keyFrames.end() && *at == position ? at : at - 1;
        Set(previous, alwaysTheSame ? 7 : *before);
        Set(next, alwaysTheSame ? 7 : (at == m_keyFrames.end() ? *before : *at));
        return S_OK;
    }

private:
    static void Set(PROPVARIANT* variant, std::int64_t value) {
        variant->vt = VT_I8;
        variant->hVal.QuadPart = value;
    }

    void* Find(REFIID iid) override {
        return com::Among(iid, IID_IMFSeekInfo, static_cast<IMFSeekInfo*>(this));
    }

    std::vector<std::int64_t> m_keyFrames;
};

constexpr std::int64_t Second = 10'000'000;

com::ComPtr<ScriptedSeekInfo> EverySecond() {
    return com::MakeOwned<ScriptedSeekInfo>(
        std::vector<std::int64_t>{0, Second, 2 * Second, 3 * Second, 4 * Second});
}

TEST(SeekInfoDecider, EarlierIsSoughtAndTheSameIsNot) {
    const auto info = EverySecond();
    const SeekInfoSeekOrStepThroughDecider decider("", info.Get(), 0);
    EXPECT_TRUE(decider.NeedToSeekBetweenTimes(Second, Second - 1));
    EXPECT_TRUE(info->asked.empty());
    EXPECT_FALSE(decider.NeedToSeekBetweenTimes(Second / 2, Second / 2));
    EXPECT_FALSE(decider.NeedToSeekBetweenTimes(Second, Second));
}

TEST(SeekInfoDecider, TheSameAndTheNextIntervalAreStepped) {
    const SeekInfoSeekOrStepThroughDecider decider("", EverySecond().Get(), 0);
    EXPECT_FALSE(decider.NeedToSeekBetweenTimes(Second / 4, Second / 2));
    EXPECT_FALSE(decider.NeedToSeekBetweenTimes(Second / 2, 3 * Second / 2));
    EXPECT_TRUE(decider.NeedToSeekBetweenTimes(Second / 2, 5 * Second / 2));
    // On key frames themselves the next one is found by moving on.
    EXPECT_FALSE(decider.NeedToSeekBetweenTimes(0, Second));
    EXPECT_TRUE(decider.NeedToSeekBetweenTimes(0, 2 * Second));
}

TEST(SeekInfoDecider, TheOffsetLeadsToTheSourcesTimes) {
    const auto info = EverySecond();
    const SeekInfoSeekOrStepThroughDecider decider("", info.Get(), Second / 2);
    EXPECT_FALSE(decider.NeedToSeekBetweenTimes(1, Second));
    EXPECT_THAT(info->asked, ElementsAre(Second / 2 + 1, 3 * Second / 2));
}

TEST(SeekInfoDecider, APositionOnAKeyFrameMovesOn) {
    const auto info = EverySecond();
    const SeekInfoSeekOrStepThroughDecider decider("", info.Get(), 0);
    decider.NeedToSeekBetweenTimes(Second, 3 * Second / 2);
    EXPECT_THAT(info->asked, ElementsAre(Second, Second + 333'333, 3 * Second / 2));
}

TEST(SeekInfoDecider, NoFurtherThanFifteenTimes) {
    const auto info = EverySecond();
    info->alwaysTheSame = true;
    const SeekInfoSeekOrStepThroughDecider decider("", info.Get(), 0);
    EXPECT_FALSE(decider.NeedToSeekBetweenTimes(0, Second));
    ASSERT_EQ(info->asked.size(), 32U);
    EXPECT_EQ(info->asked[15], 15 * 333'333);
    EXPECT_EQ(info->asked[16], Second);
}

TEST(SeekInfoDecider, WithoutAnAnswerItIsOneInterval) {
    const auto info = EverySecond();
    info->answers = 0;
    const SeekInfoSeekOrStepThroughDecider decider("", info.Get(), 0);
    EXPECT_FALSE(decider.NeedToSeekBetweenTimes(0, 4 * Second));
}

// A position on a key frame whose next one is never told keeps that key frame.
TEST(SeekInfoDecider, AnAnswerStandsWhenNoOtherFollows) {
    const auto info = EverySecond();
    info->answers = 1;
    const SeekInfoSeekOrStepThroughDecider decider("", info.Get(), 0);
    EXPECT_TRUE(decider.NeedToSeekBetweenTimes(Second, 3 * Second));
    EXPECT_EQ(info->asked.size(), 32U);
}

TEST(SeekInfoDecider, HoldsItsSource) {
    const auto info = EverySecond();
    {
        const SeekInfoSeekOrStepThroughDecider decider("", info.Get(), 0);
        EXPECT_EQ(References(info.Get()), 2U);
    }
    EXPECT_EQ(References(info.Get()), 1U);
}

TEST(SeekInfoDecider, WithoutASource) {
    try {
        const SeekInfoSeekOrStepThroughDecider decider("", nullptr, 0);
        FAIL();
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(),
                     "SeekInfoSeekOrStepThroughDecider: seekInfo need to be non-null");
    }
}

} // namespace
} // namespace Zanthe
