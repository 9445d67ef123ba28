#include "tools/zanthe/TimeText.h"

#include <stdexcept>

#include <gtest/gtest.h>

using Program::ClockText;
using Program::FractionText;
using Program::ParseTime;
using Program::ParseTimes;
using Zanthe::MediaTime;

namespace {

std::string RefusalOf(std::string_view text) {
    try {
        return "accepted as " + FractionText(ParseTime(text));
    } catch (const std::invalid_argument& error) {
        return error.what();
    }
}

} // namespace

TEST(ParseTime, AFractionIsTakenExactly) {
    EXPECT_EQ(ParseTime("1001/30000"), MediaTime(1001, 30000));
    EXPECT_EQ(ParseTime("2002/60000"), MediaTime(1001, 30000));
    EXPECT_EQ(ParseTime("0/7"), MediaTime(0));
    EXPECT_EQ(ParseTime("7/1"), MediaTime(7));
}

TEST(ParseTime, ADecimalIsTakenExactly) {
    EXPECT_EQ(ParseTime("0"), MediaTime(0));
    EXPECT_EQ(ParseTime("12.5"), MediaTime(25, 2));
    EXPECT_EQ(ParseTime("0.1"), MediaTime(1, 10)); // no double is that
    EXPECT_EQ(ParseTime("007.250"), MediaTime(29, 4));
    EXPECT_EQ(ParseTime("0.000000000000000001"), MediaTime(1, 1'000'000'000'000'000'000));
    EXPECT_EQ(ParseTime("0.50000000000000000000000000000000000000"), MediaTime(1, 2));
}

TEST(ParseTime, ColonsSeparateHoursMinutesAndSeconds) {
    EXPECT_EQ(ParseTime("0:00:01"), MediaTime(1));
    EXPECT_EQ(ParseTime("1:02:03.25"), MediaTime(3723 * 4 + 1, 4));
    EXPECT_EQ(ParseTime("1:02.5"), MediaTime(125, 2));
    EXPECT_EQ(ParseTime("90:00"), MediaTime(5400));
    EXPECT_EQ(ParseTime("100:59:59.999"), MediaTime(363599999, 1000));
}

TEST(ParseTime, WhatIsNoTimeIsRefused) {
    for (const char* text :
         {"",        " ",    "x",       "1x", "-1",  "+1",   "1e3",  "0x10",  "1.",    ".5",
          "1..2",    "1.-2", "1/",      "/1", "1/0", "1/-2", "-1/2", "1/2/3", "1.5/2", "1:60",
          "1:60:00", "1:-1", "1:2:3:4", "1:", ":1",  "1:.5", "nan",  "inf",   "1,5 ",  "1 2"}) {
        EXPECT_EQ(RefusalOf(text),
                  "'" + std::string(text) + "' is no time such as 12.5, 1001/30000 or 0:01:02.5");
    }
}

TEST(ParseTime, WhatCannotBeCountedExactlyIsRefused) {
    for (const char* text :
         {"9223372036854775808", "99999999999999999999/3", "1/99999999999999999999",
          "0.1234567890123456789", "9223372036854775807", "1000000000000.5",
          "3000000000000000:00:00", "9223372036854775807/9223372036854775806",
          "999999999999999999:59:59"}) {
        EXPECT_EQ(RefusalOf(text), "'" + std::string(text) + "' cannot be counted");
    }
}

TEST(ParseTime, TheLargestStillHasItsCountOfUnits) {
    EXPECT_EQ(Zanthe::MediaTimeToReferenceTime(ParseTime("922337203684")), 9223372036840000000);
    EXPECT_EQ(Zanthe::MediaTimeToReferenceTime(ParseTime("1/3")), 3333333);
}

TEST(ParseTimes, CommasSeparate) {
    EXPECT_EQ(ParseTimes("1"), (std::vector<MediaTime>{1}));
    EXPECT_EQ(ParseTimes("1,1/2,0:01:00"),
              (std::vector<MediaTime>{1, MediaTime(1, 2), MediaTime(60)}));
    EXPECT_THROW(ParseTimes("1,"), std::invalid_argument);
    EXPECT_THROW(ParseTimes(",1"), std::invalid_argument);
    EXPECT_THROW(ParseTimes(""), std::invalid_argument);
}

TEST(TimeText, PrintsFractionsAndClocks) {
    EXPECT_EQ(FractionText(MediaTime(1001, 30000)), "1001/30000");
    EXPECT_EQ(FractionText(MediaTime(4, 2)), "2");
    EXPECT_EQ(ClockText(0), "0:00:00.000");
    EXPECT_EQ(ClockText(37'230'000'000), "1:02:03.000");
    EXPECT_EQ(ClockText(37'230'000'001), "1:02:03.001");
    EXPECT_EQ(ClockText(9'999'999), "0:00:01.000");
}

TEST(TimeText, CountsTheWholeUnits) {
    EXPECT_EQ(Program::WholeUnits(MediaTime(1, 3)), 3333333);
    EXPECT_EQ(Program::WholeUnits(MediaTime(2, 3)), 6666666);
    EXPECT_EQ(Program::WholeUnits(MediaTime(5)), 50'000'000);
    // By way of a double it were a unit less.
    EXPECT_EQ(Program::WholeUnits(MediaTime(41, 25)), 16'400'000);
    for (std::int64_t units = 0; units < 100'000'000; units += 33'367) {
        EXPECT_EQ(Program::WholeUnits(Program::TimeOfUnits(units)), units);
    }
}

TEST(TimeText, LooksForTheUnitsThatDoubleGives) {
    EXPECT_EQ(Program::UnitsLookedFor(MediaTime(5)), 50'000'000);
    EXPECT_EQ(Program::UnitsLookedFor(MediaTime(7'599'999, 10'000'000)), 7'599'998);
    for (std::int64_t units = 0; units < 100'000'000; units += 33'367) {
        const std::int64_t seen = Program::UnitsLookedFor(Program::TimeOfUnits(units));
        EXPECT_LE(seen, units);
        EXPECT_GE(seen, units - 1);
    }
}
