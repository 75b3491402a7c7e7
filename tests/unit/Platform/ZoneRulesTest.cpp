// SPDX-License-Identifier: Apache-2.0
// Time zones by the machine's database, as the machine's own C library reads it.
#include "tests/support/TemporaryFolder.h"
#include "tests/support/Values.h"
#include "tests/unit/DeathTest.h"
#include <Orvane/GoogleTest.h>
#include <Orvane/Platform/Calendar.h>
#include <Orvane/Platform/TimeZone.h>
#include <Orvane/Testing/Device.h>

#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <set>
#include <string>

namespace orvane {
namespace {

namespace fs = std::filesystem;

fs::path database() {
  const char* folder = std::getenv("TZDIR");
  return folder != nullptr ? folder : "/usr/share/zoneinfo";
}

// One name of each set of rules. The tests of zones that are not the database's own stand
// elsewhere.
std::set<std::string> zoneNames() {
  std::set<std::string> names;
  std::set<std::string> seen;
  std::error_code error;
  for (const fs::directory_entry& entry : fs::recursive_directory_iterator(database(), error)) {
    const std::string name = entry.path().lexically_relative(database()).string();
    const bool isCopy = name.starts_with("posix") || name.starts_with("right/");
    if (isCopy || name == "localtime" || !entry.is_regular_file()) continue;
    std::string rules = contentsOf(entry.path().string());
    if (rules.starts_with("TZif") && seen.insert(std::move(rules)).second) names.insert(name);
  }
  return names;
}

// The C library in another zone while it lives.
class ScopedLibraryZone {
 public:
  explicit ScopedLibraryZone(const std::string& name) {
    setenv("TZ", name.c_str(), 1);
    tzset();
  }
  ~ScopedLibraryZone() {
    if (former_) {
      setenv("TZ", former_->c_str(), 1);
    } else {
      unsetenv("TZ");
    }
    tzset();
  }
  ScopedLibraryZone(const ScopedLibraryZone&) = delete;
  ScopedLibraryZone& operator=(const ScopedLibraryZone&) = delete;

  [[nodiscard]] static std::tm local(std::time_t time) {
    std::tm parts{};
    localtime_r(&time, &parts);
    return parts;
  }
  [[nodiscard]] static std::time_t timeOf(int year, int month, int day, int hour) {
    std::tm parts{};
    parts.tm_year = year - 1900;
    parts.tm_mon = month - 1;
    parts.tm_mday = day;
    parts.tm_hour = hour;
    parts.tm_isdst = -1;
    return std::mktime(&parts);
  }

 private:
  static std::optional<std::string> variable() {
    const char* value = std::getenv("TZ");
    return value != nullptr ? std::optional<std::string>(value) : std::nullopt;
  }
  const std::optional<std::string> former_ = variable();
};

class ZoneComparison {
 public:
  explicit ZoneComparison(const std::string& name)
      : library_(name),
        settings_({.locale = "en_US", .timeZone = name}),
        zone_(*TimeZone::named(name)) {}

  void run() const {
    using Library = ScopedLibraryZone;
    constexpr std::time_t week = std::time_t{7} * 86400;
    const std::time_t end = Library::timeOf(2031, 1, 1, 0);
    for (std::time_t time = Library::timeOf(2015, 1, 1, 0); time < end; time += week) {
      if (offset(time) == offset(time + week)) continue;
      const std::time_t change = changeBetween(time, time + week);
      compare(change - 1);
      compare(change);
    }
    for (int month = 0; month < 16 * 12; month += 5) {
      const DateComponents day{2015 + month / 12, month % 12 + 1, month % 28 + 1};
      const auto timeOf = [&](int daysLater, int hour) {
        return Library::timeOf(int(*day.year), int(*day.month), int(*day.day) + daysLater, hour);
      };
      compare(timeOf(0, 0) - 1);
      compare(timeOf(0, 0));
      const Date noon = dateFromSeconds(double(timeOf(0, 12)));
      ASSERT_EQ(dateOf(day), noon) << month;
      ASSERT_EQ(addingDays(noon, 30), dateFromSeconds(double(timeOf(30, 12)))) << month;
    }
  }

 private:
  static std::int64_t offset(std::time_t time) { return ScopedLibraryZone::local(time).tm_gmtoff; }

  // The first second of the new offset.
  static std::time_t changeBetween(std::time_t before, std::time_t after) {
    const std::int64_t former = offset(before);
    while (after - before > 1) {
      const std::time_t middle = before + (after - before) / 2;
      (offset(middle) == former ? before : after) = middle;
    }
    return after;
  }

  void compare(std::time_t time) const {
    const std::tm parts = ScopedLibraryZone::local(time);
    char text[32];
    std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", &parts);
    const Date date = dateFromSeconds(double(time));
    ASSERT_EQ(zone_.secondsFromGMT(date), parts.tm_gmtoff) << time;
    ASSERT_EQ(formatDate(date, "yyyy-MM-dd HH:mm:ss"), text) << time;
  }

  ScopedLibraryZone library_;
  ScopedDeviceSettings settings_;
  TimeZone zone_;
};

TEST(ZoneRulesTest, agreeWithTheMachineInEveryZone) {
  const std::set<std::string> names = zoneNames();
  if (names.empty()) GTEST_SKIP() << "this machine has no zones in " << database();
  for (const std::string& name : names) {
    SCOPED_TRACE(name);
    const bool isKnown = TimeZone::named(name).has_value();
    EXPECT_TRUE(isKnown);
    if (isKnown) ZoneComparison(name).run();
  }
}

using ZoneRulesDeathTest = DeathTest;

// In a process of its own, since rules are read once.
TEST_F(ZoneRulesDeathTest, areICUsWhereTheMachineHasNone) {
  const TemporaryFolder folder;
  const auto offsetOf = [](std::string_view name) {
    const auto zone = TimeZone::named(name);
    return zone ? zone->secondsFromGMT(utc(std::chrono::year(2024) / 7 / 1)) : -1;
  };
  const auto exit = [&](bool isRight) { std::_Exit(isRight ? 0 : 1); };
  const auto zeroExit = testing::ExitedWithCode(0);
  setenv("TZDIR", folder.path().c_str(), 1);
  EXPECT_EXIT(exit(offsetOf("Europe/Zurich") == 7200 && offsetOf("UTC") == 0 &&
                   offsetOf("Europe/Nowhere") == -1),
              zeroExit, "");
  unsetenv("TZDIR");
  if (!fs::exists(database() / "Asia/Tokyo")) GTEST_SKIP() << "this machine has no zones";

  // Another folder, where Berlin keeps Tokyo's time and the names of former days are left out.
  fs::create_directories(folder.path() / "Europe");
  fs::create_directories(folder.path() / "America");
  fs::copy(database() / "Asia/Tokyo", folder.path() / "Europe/Berlin");
  fs::copy(database() / "Asia/Tokyo", folder.path() / "America/Los_Angeles");
  setenv("TZDIR", folder.path().c_str(), 1);
  EXPECT_EXIT(exit(offsetOf("Europe/Berlin") == 32400 && offsetOf("US/Pacific") == 32400 &&
                   offsetOf("Europe/Zurich") == 7200),
              zeroExit, "");
  unsetenv("TZDIR");
}

}  // namespace
}  // namespace orvane
