#include "platform/av/SoundFlow.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <vector>

#include <gtest/gtest.h>

namespace {

constexpr av::SoundFormat Mono(int rate) {
    return {AV_SAMPLE_FMT_FLT, rate, 1, AV_CH_LAYOUT_MONO};
}

std::vector<float> Tone(std::size_t frames, int rate) {
    std::vector<float> tone(frames);
    for (std::size_t i = 0; i < frames; ++i) {
        const double t = static_cast<double>(i) / rate;
        tone[i] = static_cast<float>(0.5 * std::sin(2 * 3.14159265 * (300 + 200 * t) * t));
    }
    return tone;
}

bool Put(av::SoundFlow& flow, const std::vector<float>& sound, std::size_t from,
         std::size_t count) {
    return flow.Put(reinterpret_cast<const std::uint8_t*>(sound.data() + from),
                    static_cast<int>(count));
}

std::vector<float> TakeAll(av::SoundFlow& flow) {
    std::vector<float> taken(static_cast<std::size_t>(flow.Frames()));
    EXPECT_EQ(flow.Take(reinterpret_cast<std::uint8_t*>(taken.data()), flow.Frames()),
              static_cast<std::int64_t>(taken.size()));
    return taken;
}

void Append(std::vector<float>& to, const std::vector<float>& more) {
    to.insert(to.end(), more.begin(), more.end());
}

struct Rate {
    int from;
    int to;
};

class Flow : public testing::TestWithParam<Rate> {
protected:
    std::unique_ptr<av::SoundFlow> Make() const {
        return av::SoundFlow::Create(Mono(GetParam().from), Mono(GetParam().to));
    }

    const std::vector<float> m_sound = Tone(20000, GetParam().from);

    // All at once.
    std::vector<float> Whole() const {
        const auto flow = Make();
        EXPECT_TRUE(Put(*flow, m_sound, 0, m_sound.size()));
        EXPECT_TRUE(flow->End());
        return TakeAll(*flow);
    }

    double Ratio() const { return static_cast<double>(GetParam().to) / GetParam().from; }
};

TEST_P(Flow, GivesAsManyFramesAsStandBeforeTheEnd) {
    EXPECT_NEAR(static_cast<double>(Whole().size()), 20000 * Ratio(), 1);
}

TEST_P(Flow, PiecesMakeTheWhole) {
    const auto flow = Make();
    std::vector<float> joined;
    for (std::size_t from = 0; from < m_sound.size(); from += 1000) {
        EXPECT_TRUE(Put(*flow, m_sound, from, 1000));
        Append(joined, TakeAll(*flow));
    }
    EXPECT_TRUE(flow->End());
    Append(joined, TakeAll(*flow));
    EXPECT_EQ(joined, Whole());
}

// Every end gives all there is, and what follows goes on without a frame too many or too few and
// without a click: only the frames next to an end differ, as they could not know what follows.
TEST_P(Flow, EndsInBetweenLoseNothing) {
    const auto flow = Make();
    std::vector<float> joined;
    for (std::size_t from = 0; from < m_sound.size(); from += 1000) {
        EXPECT_EQ(flow->Position(), static_cast<std::int64_t>(joined.size()));
        EXPECT_TRUE(Put(*flow, m_sound, from, 1000));
        EXPECT_TRUE(flow->End());
        Append(joined, TakeAll(*flow));
        EXPECT_NEAR(static_cast<double>(joined.size()), static_cast<double>(from + 1000) * Ratio(),
                    1);
    }
    const std::vector<float> whole = Whole();
    ASSERT_EQ(joined.size(), whole.size());
    // Half the filter: 16 samples at the lower rate.
    const double reach = 17 * std::max(Ratio(), 1.0);
    for (std::size_t i = 0; i < whole.size(); ++i) {
        const double toEnd = 1000 * Ratio() - std::fmod(static_cast<double>(i), 1000 * Ratio());
        ASSERT_NEAR(joined[i], whole[i], toEnd <= reach ? 0.5 : 0) << i;
    }
}

TEST_P(Flow, ARestartForgets) {
    const auto flow = Make();
    EXPECT_TRUE(Put(*flow, m_sound, 500, 3000));
    EXPECT_TRUE(flow->Restart());
    EXPECT_EQ(flow->Frames(), 0);
    EXPECT_EQ(flow->Position(), 0);
    EXPECT_TRUE(Put(*flow, m_sound, 0, m_sound.size()));
    EXPECT_TRUE(flow->End());
    EXPECT_EQ(TakeAll(*flow), Whole());
}

TEST_P(Flow, FramesCanBeTakenOneByOne) {
    const auto flow = Make();
    EXPECT_TRUE(Put(*flow, m_sound, 0, m_sound.size()));
    EXPECT_TRUE(flow->End());
    std::vector<float> joined;
    float frame = 0;
    while (flow->Take(reinterpret_cast<std::uint8_t*>(&frame), 1) == 1) {
        joined.push_back(frame);
    }
    EXPECT_EQ(joined, Whole());
}

INSTANTIATE_TEST_SUITE_P(Rates, Flow,
                         testing::Values(Rate{48000, 44100}, Rate{44100, 48000}, Rate{22050, 44100},
                                         Rate{44100, 44100}, Rate{96000, 44100}, Rate{8000, 44100},
                                         Rate{48000, 16001}),
                         [](const auto& test) {
                             return "From" + std::to_string(test.param.from) + "To" +
                                    std::to_string(test.param.to);
                         });

TEST(SoundFlow, AnEndWithoutInputGivesNothing) {
    const auto flow = av::SoundFlow::Create(Mono(48000), Mono(44100));
    EXPECT_TRUE(flow->End());
    EXPECT_EQ(flow->Frames(), 0);
    EXPECT_TRUE(flow->End());
}

} // namespace
