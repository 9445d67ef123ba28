#include "tools/zanthe/Progress.h"

#include <sstream>

#include <gtest/gtest.h>

using Program::Clock;
using Program::Progress;
using namespace std::chrono_literals;

TEST(Progress, ShowsOneLineAndWipesIt) {
    std::ostringstream stream;
    {
        Progress progress(stream, true, 0ms);
        progress.Show("one");
        progress.Show("two");
    }
    EXPECT_EQ(stream.str(), "one\r\x1b[Ktwo\r\x1b[K");
}

TEST(Progress, IsSilentWhereNobodyLooks) {
    std::ostringstream stream;
    {
        Progress progress(stream, false, 0ms);
        progress.Show("one");
    }
    EXPECT_EQ(stream.str(), "");
}

TEST(Progress, ShortWorkShowsNothing) {
    std::ostringstream stream;
    {
        Progress progress(stream, true, 1h);
        progress.Show("one");
    }
    EXPECT_EQ(stream.str(), "");
}

TEST(Clock, TellsHoursMinutesSeconds) {
    EXPECT_EQ(Clock(0, 44100), "0:00:00");
    EXPECT_EQ(Clock(44100 * 61 - 1, 44100), "0:01:00");
    EXPECT_EQ(Clock(std::int64_t{3600} * 30 * 48000 + 59 * 48000, 48000), "30:00:59");
}
