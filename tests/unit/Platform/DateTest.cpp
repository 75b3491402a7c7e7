// SPDX-License-Identifier: Apache-2.0
#include "tests/support/Values.h"
#include <Orvane/Common/CurrentDate.h>
#include <Orvane/GoogleTest.h>
#include <Orvane/Platform/Date.h>
#include <Orvane/Platform/TimeZone.h>
#include <Orvane/Testing/Device.h>

#include <cstdint>
#include <optional>
#include <string_view>

namespace orvane {
namespace {

TEST(DateTest, roundsHalfMillisecondsAwayFromZero) {
  const std::pair<double, std::int64_t> rows[] = {
      {0.0005, 1},
      {-0.0005, -1},
      {0.0004999, 0},
      {0.0025, 3},
      {-0.0025, -3},
      {-0.0004999, 0},
      {-0.0, 0},
      {1.5e9, 1'500'000'000'000},
      {-0x1p63 / 1000, least},
      {9.2e15, 9'200'000'000'000'000'000},
  };
  for (const auto& [seconds, milliseconds] : rows) {
    EXPECT_EQ(millisecondsSince1970(dateFromSeconds(seconds)), milliseconds) << seconds;
  }
  for (const std::int64_t whole : {0LL, 1LL, -1LL, 1'499'999'999'999LL, 253'402'300'799'999LL}) {
    EXPECT_EQ(millisecondsSince1970(dateFromMilliseconds(whole)), whole);
  }
}

TEST(DateTest, hasNoMillisecondsOutside64Bits) {
  for (const double seconds :
       {0x1p63 / 1000, -0x1.0000001p63 / 1000, 1e300, infinity, notANumber}) {
    EXPECT_EQ(millisecondsSince1970(dateFromSeconds(seconds)), std::nullopt) << seconds;
  }
}

TEST(DeviceClockTest, canBeMovedAndIsPutBack) {
  {
    MovableClock clock(dateFromSeconds(1000));
    {
      const MovableClock inner(dateFromSeconds(5));
      EXPECT_EQ(DeviceClock::now(), dateFromSeconds(5));
    }
    clock.advance(Seconds{-1.5});
    EXPECT_EQ(DeviceClock::now(), dateFromSeconds(998.5));
    setCurrentDateOffset(Seconds{300.25});
    EXPECT_EQ(currentDate(), dateFromSeconds(1298.75));
    setCurrentDateOffset(Seconds{0});
    EXPECT_EQ(currentDate(), clock.now());
  }
  EXPECT_GT(DeviceClock::now(), dateFromSeconds(1'700'000'000));
}

TEST(TimeZoneTest, fixedOffsetsReachFrom18HoursWestTo18HoursEast) {
  const std::pair<std::int64_t, std::string_view> rows[] = {{0, "GMT"},
                                                            {19'800, "GMT+5:30"},
                                                            {-34'200, "GMT-9:30"},
                                                            {64'800, "GMT+18:00"},
                                                            {-64'800, "GMT-18:00"},
                                                            {3'661, "GMT+1:01:01"},
                                                            {-59, "GMT-0:00:59"}};
  for (const auto& [seconds, identifier] : rows) {
    const auto zone = TimeZone::fromSeconds(seconds);
    ASSERT_TRUE(zone) << seconds;
    EXPECT_EQ(zone->secondsFromGMT(dateFromSeconds(0)), seconds);
    EXPECT_EQ(zone->identifier(), identifier);
  }
  for (const std::int64_t refused :
       {std::int64_t{64'801}, std::int64_t{-64'801}, most, least, std::int64_t{1} << 32}) {
    EXPECT_FALSE(TimeZone::fromSeconds(refused)) << refused;
  }
}

TEST(TimeZoneTest, namedZonesFollowTheirDaylightSaving) {
  const auto zurich = TimeZone::named("Europe/Zurich");
  ASSERT_TRUE(zurich);
  EXPECT_EQ(zurich->secondsFromGMT(dateFromSeconds(1'711'846'799)), 3600);  // 2024-03-31T00:59:59Z
  EXPECT_EQ(zurich->secondsFromGMT(dateFromSeconds(1'711'846'800)), 7200);
  EXPECT_EQ(zurich->secondsFromGMT(dateFromSeconds(16'015'000'000)), 7200);  // in July 2477
  EXPECT_EQ(zurich->secondsFromGMT(dateFromSeconds(1e300)),
            zurich->secondsFromGMT(dateFromSeconds(infinity)));
  EXPECT_EQ(zurich->secondsFromGMT(dateFromSeconds(notANumber)), 0);
  EXPECT_EQ(zurich->identifier(), "Europe/Zurich");
  EXPECT_EQ(*zurich, *TimeZone::named("Europe/Zurich"));
  EXPECT_NE(*zurich, *TimeZone::named("Europe/Berlin"));
  EXPECT_NE(*TimeZone::named("UTC"), *TimeZone::fromSeconds(0));
  EXPECT_TRUE(TimeZone::named("GMT") && TimeZone::named("Etc/GMT+5"));
  for (const std::string_view refused :
       {"", "Europe/Nowhere", "europe zurich", "GMT+23:00", "GMT-5", "Etc/Unknown", "Europe",
        "Europe/", "/usr/share/zoneinfo/UTC", "../zoneinfo/UTC", "right/UTC", "posix/UTC",
        "localtime", "zone.tab", "Fixed/UTC+05:30:00"}) {
    EXPECT_FALSE(TimeZone::named(refused)) << refused;
  }
}

}  // namespace
}  // namespace orvane
