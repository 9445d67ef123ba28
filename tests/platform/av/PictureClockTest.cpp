#include "platform/av/PictureClock.h"

#include <limits>

#include <gtest/gtest.h>

namespace av {
namespace {

constexpr auto kMost = std::numeric_limits<std::int64_t>::max();

// Clocks of streams in units of 100 ns, 25 pictures a second.
class PictureClockTest : public testing::Test {
protected:
    PictureClockTest() {
        AVStream* stream = avformat_new_stream(m_context.get(), nullptr);
        stream->time_base = {1, 10'000'000};
        stream->avg_frame_rate = {25, 1};
        m_clock.emplace(*stream);
    }

    std::int64_t EndOf(std::int64_t pts, std::int64_t duration, std::int64_t start) {
        m_frame->pts = pts;
        m_frame->pkt_duration = duration;
        return m_clock->EndOf(*m_frame, start);
    }

    FormatContextPtr m_context{avformat_alloc_context()};
    FramePtr m_frame{av_frame_alloc()};
    std::optional<PictureClock> m_clock;
};

TEST_F(PictureClockTest, APictureEndsWithItsPacket) {
    EXPECT_EQ(EndOf(100, 50, 100), 150);
    EXPECT_EQ(EndOf(AV_NOPTS_VALUE, 50, 100), 150);
    EXPECT_EQ(EndOf(100, 0, 100), 100 + 400'000); // by the rate
}

TEST_F(PictureClockTest, AnEndBeyondTheNumbersIsTheLastOne) {
    EXPECT_EQ(EndOf(kMost - 100, 1000, 0), m_clock->FromStream(kMost));
    EXPECT_EQ(EndOf(kMost - 100, kMost, 0), m_clock->FromStream(kMost));
}

} // namespace
} // namespace av
