// SPDX-License-Identifier: Apache-2.0
// The device's settings, and the machine's time zone behind them.
#include "tests/support/RequestRows.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/unit/DeathTest.h"
#include <Orvane/GoogleTest.h>
#include <Orvane/Platform/Calendar.h>
#include <Orvane/Platform/DeviceSettings.h>
#include <Orvane/Platform/SystemTimeZone.h>
#include <Orvane/Services/User/UserService.h>
#include <Orvane/Testing/Device.h>
#include <Orvane/Testing/RecordingLogger.h>

#include <cstdlib>
#include <filesystem>
#include <string>

namespace orvane {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

constexpr const char* variable = "ORVANE_TEST_TIME_ZONE";

// A machine whose zone is a link in a folder of the test's, and whose clock the test moves.
class SystemTimeZoneTest : public testing::Test {
 protected:
  SystemTimeZoneTest() {
    link("/usr/share/zoneinfo/Asia/Tokyo");
    start();
  }
  ~SystemTimeZoneTest() override {
    unsetenv(variable);
    setSystemTimeZoneSource(former_);
  }

  void link(const std::string& target) const {
    fs::remove(file());
    fs::create_symlink(target, file());
  }
  void start() const { setSystemTimeZoneSource(source()); }
  [[nodiscard]] std::string file() const { return folder_ / "localtime"; }
  [[nodiscard]] SystemTimeZoneSource source() const {
    return {variable, file(), [] { return now; }};
  }
  // Half past midnight in UTC.
  static std::string hour() { return formatDate(dateFromSeconds(1'704'414'600), "H").value_or(""); }

  static inline std::chrono::steady_clock::time_point now{};

 private:
  const TemporaryFolder folder_;
  const ScopedDeviceSettings settings_{{.locale = "en_US"}};
  const SystemTimeZoneSource former_ = setSystemTimeZoneSource({});
};

TEST_F(SystemTimeZoneTest, isReadWhereTheMachineSaysIt) {
  struct Row {
    const char* variable;
    std::string link, name;
    bool isKnown = true;
  };
  const Row rows[] = {
      {nullptr, "/usr/share/zoneinfo/Asia/Tokyo", "Asia/Tokyo"},
      {nullptr, "../usr/share/zoneinfo/posix/America/Argentina/Ushuaia",
       "America/Argentina/Ushuaia"},
      {nullptr, "/var/db/timezone/zoneinfo.default/UTC", "UTC"},
      {nullptr, "/usr/share/zoneinfo/Mars/Base", "UTC", false},
      {"Europe/Zurich", "", "Europe/Zurich"},
      {":Europe/Zurich", "", "Europe/Zurich"},
      {":/usr/share/zoneinfo/right/Europe/Zurich", "", "Europe/Zurich"},
      {"", "/usr/share/zoneinfo/Asia/Tokyo", "UTC"},
      {"Mars/Base", "/usr/share/zoneinfo/Asia/Tokyo", "UTC", false},
      {"../zoneinfo/Asia/Tokyo", "/usr/share/zoneinfo/Asia/Tokyo", "UTC", false},
      {"CET-1CEST,M3.5.0,M10.5.0/3", "/usr/share/zoneinfo/Asia/Tokyo", "UTC", false},
  };
  for (const Row& row : rows) {
    row.variable != nullptr ? setenv(variable, row.variable, 1) : unsetenv(variable);
    link(row.link.empty() ? "/nowhere" : row.link);
    const SystemTimeZone zone = systemTimeZone(source());
    EXPECT_EQ(zone.name, row.name) << row.link;
    EXPECT_EQ(zone.isKnown, row.isKnown) << row.link;
    EXPECT_EQ(zone.canChange, row.variable == nullptr);
  }
  link("/usr/share/zoneinfo/Europe/Berlin");
  for (const std::string& itself : {":" + file(), std::string("localtime")}) {
    setenv(variable, itself.c_str(), 1);
    EXPECT_EQ(systemTimeZone(source()).name, "Europe/Berlin") << itself;
  }
}

TEST_F(SystemTimeZoneTest, isLookedAtOnceASecond) {
  EXPECT_EQ(hour(), "9");
  const auto version = DeviceSettings::version();
  now += 5s;
  EXPECT_EQ(hour(), "9");
  EXPECT_EQ(DeviceSettings::version(), version);  // nothing is made anew

  link("/usr/share/zoneinfo/Europe/Zurich");
  now += 999ms;
  EXPECT_EQ(hour(), "9");
  now += 1ms;
  EXPECT_EQ(hour(), "1");
  EXPECT_EQ(DeviceSettings::current()->timeZone, "Europe/Zurich");
  EXPECT_EQ(DeviceSettings::current()->locale, "en_US");
  EXPECT_EQ(DeviceSettings::chosen().timeZone, "");

  link("/usr/share/zoneinfo/Asia/Kolkata");
  now += 1s;
  EXPECT_EQ(DeviceSettings::current()->timeZone, "Asia/Kolkata");

  // Behind a link that stays, as where /etc can't be written.
  const std::string other = file() + "-elsewhere";
  link(other);
  for (const std::string zone : {"Asia/Tokyo", "Europe/Zurich"}) {
    const std::string target = "/usr/share/zoneinfo/" + zone;
    if (!fs::exists(target)) GTEST_SKIP() << "this machine has no zones";
    fs::remove(other);
    fs::create_symlink(target, other);
    now += 1s;
    EXPECT_EQ(DeviceSettings::current()->timeZone, zone);
  }
}

TEST_F(SystemTimeZoneTest, isNotAskedForWhereOneWasChosen) {
  {
    const ScopedDeviceSettings settings({.locale = "en_US", .timeZone = "Europe/Zurich"});
    link("/usr/share/zoneinfo/Asia/Kolkata");
    now += 10s;
    EXPECT_EQ(hour(), "1");
  }
  // Put back, the machine's counts again.
  EXPECT_EQ(hour(), "6");
  setenv(variable, "America/New_York", 1);
  start();
  link("/usr/share/zoneinfo/Asia/Tokyo");
  now += 10s;
  EXPECT_EQ(hour(), "19");
}

TEST_F(SystemTimeZoneTest, thatIsNotKnownIsToldOnce) {
  const RecordingLogger logger;
  const auto fetch = [](const Identity& identity) { UserService(identity).fetch({}, {}, nullptr); };
  expectRequest("GET users/42", fetch);
  EXPECT_TRUE(logger.lines().empty());
  link("/usr/share/zoneinfo/Mars/Base");
  now += 1s;
  EXPECT_EQ(hour(), "0");
  for (const char* other : {"/usr/share/zoneinfo/Mars/Base", "/usr/share/zoneinfo/Venus/Base"}) {
    expectRequest("GET users/42", fetch);
    link(other);
    now += 1s;
    EXPECT_EQ(hour(), "0");
  }
  expectRequest("GET users/42", fetch);
  const auto lines = logger.lines();
  ASSERT_EQ(lines.size(), 1U);
  EXPECT_EQ(lines[0].level, Logger::Level::warning);
  EXPECT_EQ(lines[0].message,
            "Days are those of UTC because the machine's time zone is not known.");
}

TEST_F(SystemTimeZoneTest, thatNoLongerCountsIsNotTold) {
  const RecordingLogger logger;
  link("/usr/share/zoneinfo/Mars/Base");
  now += 1s;
  EXPECT_EQ(hour(), "0");
  const ScopedDeviceSettings settings({.locale = "en_US", .timeZone = "Europe/Zurich"});
  expectRequest("GET users/42",
                [](const Identity& identity) { UserService(identity).fetch({}, {}, nullptr); });
  EXPECT_TRUE(logger.lines().empty());
}

TEST(DeviceSettingsTest, anUnknownZoneChangesNothing) {
  const ScopedDeviceSettings settings({.locale = "en_US", .timeZone = "Asia/Tokyo"});
  const auto before = *DeviceSettings::current();
  const auto version = DeviceSettings::version();
  for (const std::string name : {"Europe/Nowhere", "GMT+5:30", "localtime", "../Asia/Tokyo", " "}) {
    EXPECT_EQ(DeviceSettings::set({.locale = "de_DE", .timeZone = name}), UnknownTimeZone{name});
    EXPECT_EQ(*DeviceSettings::current(), before);
    EXPECT_EQ(DeviceSettings::version(), version);
  }
  EXPECT_EQ(UnknownTimeZone{"x"}.message(), "there is no time zone \"x\"");
  EXPECT_EQ(DeviceSettings::set(before), Unit{});
}

using DeviceSettingsDeathTest = DeathTest;

TEST_F(DeviceSettingsDeathTest, aTestInNoZoneStops) {
  EXPECT_DEATH(ScopedDeviceSettings({.timeZone = "Europe/Nowhere"}),
               "Fatal error: there is no time zone \"Europe/Nowhere\"");
}

}  // namespace
}  // namespace orvane
