// Which sample holds a time: exactly one, whatever was read before.
#include <random>

#include <gtest/gtest.h>

#include "platform/mf/MediaFormats.h"
#include "tests/platform/mf/Readers.h"
#include "tests/support/TestMedia.h"

namespace {

// As readers of samples take it: from a unit before the sample's time, for truncated times, on.
bool Holds(IMFSample& sample, LONGLONG time) {
    return time >= TimeOf(sample) - 1 && time < TimeOf(sample) + DurationOf(sample);
}

class SampleTimes : public testing::TestWithParam<const char*> {
protected:
    SampleTimes()
        : m_reader(OpenPixels(MadeMedia(GetParam()), MFVideoFormat_ARGB32)) {
        for (const auto& sample : ReadAll(*m_reader)) {
            m_spans.push_back({TimeOf(*sample), DurationOf(*sample)});
        }
    }

    struct Span {
        LONGLONG time;
        LONGLONG duration;
    };

    const com::ComPtr<IMFSourceReader> m_reader;
    std::vector<Span> m_spans;
};

TEST_P(SampleTimes, TileTheTimeline) {
    ASSERT_FALSE(m_spans.empty());
    for (std::size_t i = 0; i + 1 < m_spans.size(); ++i) {
        EXPECT_EQ(m_spans[i].time + m_spans[i].duration, m_spans[i + 1].time - 1) << i;
    }
}

TEST_P(SampleTimes, APositionLeadsToTheSampleThatHoldsIt) {
    std::minstd_rand random(1);
    for (int turn = 0; turn < 40; ++turn) {
        const std::size_t i = random() % m_spans.size();
        const auto& [time, duration] = m_spans[i];
        const LONGLONG last = time + duration - 1;
        for (const LONGLONG position : {time - 1, time, time + duration / 2, last}) {
            ASSERT_EQ(Seek(*m_reader, position), S_OK);
            const ReadResult read = ReadNext(*m_reader);
            ASSERT_TRUE(read.sample) << position;
            EXPECT_EQ(read.time, time) << position;
            EXPECT_TRUE(Holds(*read.sample, position)) << position;
        }
    }
}

TEST_P(SampleTimes, SamplesAreTheSameWhateverWasReadBefore) {
    std::minstd_rand random(2);
    for (int turn = 0; turn < 30; ++turn) {
        const std::size_t i = random() % m_spans.size();
        ASSERT_EQ(Seek(*m_reader, m_spans[i].time), S_OK);
        for (std::size_t next = i; next < std::min(i + 3, m_spans.size()); ++next) {
            const ReadResult read = ReadNext(*m_reader);
            ASSERT_TRUE(read.sample);
            EXPECT_EQ(TimeOf(*read.sample), m_spans[next].time);
            EXPECT_EQ(DurationOf(*read.sample), m_spans[next].duration);
        }
    }
}

TEST_P(SampleTimes, EndsBehindTheLastSample) {
    const LONGLONG end = m_spans.back().time + m_spans.back().duration;
    for (const LONGLONG position : {end, end + 1, std::numeric_limits<LONGLONG>::max()}) {
        ASSERT_EQ(Seek(*m_reader, position), S_OK);
        const ReadResult read = ReadNext(*m_reader);
        EXPECT_EQ(read.result, S_OK);
        EXPECT_FALSE(read.sample) << position;
        EXPECT_EQ(read.flags, MF_SOURCE_READERF_ENDOFSTREAM) << position;
    }
}

TEST_P(SampleTimes, BeginsWithTheFirstSample) {
    for (const LONGLONG position :
         {std::numeric_limits<LONGLONG>::min(), m_spans.front().time - 2}) {
        ASSERT_EQ(Seek(*m_reader, position), S_OK);
        EXPECT_EQ(ReadNext(*m_reader).time, m_spans.front().time) << position;
    }
}

INSTANTIATE_TEST_SUITE_P(Files, SampleTimes,
                         testing::Values("h264/plain.mp4", "h264/rate-29.97.mp4",
                                         "h264/vfr-jitter.mp4", "h264/one-picture.mp4",
                                         "h264/longer-sound.mp4", "h264/edit-into-group.mp4",
                                         "h264/in-transport.ts", "h264/mpeg4-bframes.avi",
                                         "h264/hevc-plain.mp4"));

} // namespace
