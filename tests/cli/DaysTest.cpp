// SPDX-License-Identifier: Apache-2.0
// Days and times of day of the command line in the device's time zone.
#include "Days.h"
#include <Orvane/GoogleTest.h>
#include <Orvane/Platform/DeviceSettings.h>

#include <tuple>

namespace orvane::cli {
namespace {

class DaysTest : public testing::Test {
 protected:
  void TearDown() override {
    DeviceSettings::set({});
    DeviceClock::setSource(nullptr);
  }
};

TEST_F(DaysTest, NoonIsTheDevices) {
  const std::tuple<std::string, DateComponents, double> rows[] = {
      {"UTC", {1970, 1, 1}, 43200},
      {"Asia/Kolkata", {1970, 1, 2}, 86400 + 43200 - 19800},
      {"Pacific/Kiritimati", {2024, 5, 17}, 1715896800},  // UTC+14
      {"America/St_Johns", {2024, 2, 29}, 1709220600},    // UTC-03:30
      {"Europe/Zurich", {2024, 3, 31}, 1711879200},       // put forward in that night
      {"Pacific/Auckland", {2024, 9, 29}, 1727564400},    // the same, at noon before by UTC
      {"America/New_York", {1900, 1, 1}, -2208927600},
  };
  for (const auto& [zone, day, seconds] : rows) {
    DeviceSettings::set({.timeZone = zone});
    EXPECT_EQ(secondsSince1970(noonOf(day)), seconds) << zone;
  }
}

TEST_F(DaysTest, TheNextTimeOfDay) {
  DeviceSettings::set({.timeZone = "Europe/Zurich"});
  // 2024-03-30 23:00 in Zurich; at 2:00 the clock is put forward to 3:00.
  DeviceClock::setSource([] { return dateFromSeconds(1711836000); });
  const std::pair<TimeOfDay, double> rows[] = {
      {{23, 0}, 1711836000},
      {{22, 30}, 1711917000},
      {{6, 5}, 1711857900},
      {{2, 30}, 1711931400},  // on the day after the next: the next has no such time
  };
  for (const auto& [time, seconds] : rows) {
    EXPECT_EQ(secondsSince1970(next(time)), seconds) << time.hour << ":" << time.minute;
  }
}

TEST_F(DaysTest, TimesOfDayAreRead) {
  for (const char* text : {"", "6", "24:00", "12:60", "6:5", "006:05", "-1:00", "6:05 "}) {
    EXPECT_FALSE(Argument<TimeOfDay>::parse(text)) << text;
  }
  EXPECT_EQ(Argument<TimeOfDay>::parse("6:05")->minute, 5);
  EXPECT_EQ(Argument<TimeOfDay>::parse("23:59")->hour, 23);
}

}  // namespace
}  // namespace orvane::cli
