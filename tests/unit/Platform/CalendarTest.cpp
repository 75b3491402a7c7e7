// SPDX-License-Identifier: Apache-2.0
#include "tests/support/Values.h"
#include <Orvane/GoogleTest.h>
#include <Orvane/Platform/Calendar.h>
#include <Orvane/Testing/Device.h>

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <thread>

namespace orvane {
namespace {

// What the calendar itself writes, without the short cut for plain years.
std::optional<std::string> writtenByTheCalendar(const DateComponents& day) {
  const auto date = dateOf(day);
  if (!date) return std::nullopt;
  return formatDate(*date, dayPattern);
}

TEST(CalendarTest, theShortCutAgreesWithTheCalendarOnEveryDay) {
  // On some days of some of these zones there is no midnight.
  for (const char* zone : {"UTC", "Europe/Zurich", "America/Sao_Paulo", "Asia/Beirut",
                           "Pacific/Kiritimati", "America/Los_Angeles"}) {
    const ScopedDeviceSettings settings({.locale = "en_US", .timeZone = zone});
    using std::chrono::sys_days, std::chrono::days, std::chrono::year;
    for (const int start : {1583, 1899, 1970, 2011, 2016, 2024, 9998}) {
      for (auto day = sys_days(year(start) / 1 / 1); day < sys_days(year(start + 2) / 1 / 1);
           day += days(1)) {
        const std::chrono::year_month_day plain(day);
        const DateComponents components{int(plain.year()), unsigned(plain.month()),
                                        unsigned(plain.day())};
        const auto text = dayText(components);
        ASSERT_TRUE(text);
        ASSERT_EQ(text, writtenByTheCalendar(components)) << zone;
        ASSERT_EQ(parseDay(*text), components) << zone << ' ' << *text;
      }
    }
  }
}

TEST(CalendarTest, theShortCutRefusesTheDaysThatTheCalendarRefuses) {
  const ScopedDeviceSettings settings({.locale = "en_US", .timeZone = "Europe/Zurich"});
  for (const std::int64_t year : {1900, 2000, 2023, 2024}) {
    for (std::int64_t month = -1; month <= 14; ++month) {
      for (std::int64_t day = -1; day <= 33; ++day) {
        const DateComponents components{year, month, day};
        EXPECT_EQ(dayText(components), writtenByTheCalendar(components))
            << year << '-' << month << '-' << day;
      }
    }
  }
}

TEST(CalendarTest, formsADayOfItsComponents) {
  const ScopedDeviceSettings settings({.locale = "de_DE", .timeZone = "America/Sao_Paulo"});
  const std::pair<DateComponents, std::optional<std::string>> rows[] = {
      {{2024, 2, 29}, "2024-02-29"},   {{2023, 2, 29}, std::nullopt},
      {{2024, 13, 1}, std::nullopt},   {{2024, {}, {}}, "2024-01-01"},
      {{2024, 7, {}}, "2024-07-01"},   {{2024, {}, 5}, "2024-01-05"},
      {{{}, 7, 5}, std::nullopt},      {{}, std::nullopt},
      {{2017, 10, 15}, "2017-10-15"},  {{1500, 2, 29}, "1500-02-29"},
      {{12345, 1, 2}, "12345-01-02"},  {{most, 1, 1}, std::nullopt},
      {{2024, most, 1}, std::nullopt}, {{2024, 1, -most}, std::nullopt},
      {{1582, 10, 4}, "1582-10-04"},   {{1582, 10, 10}, std::nullopt},
  };
  for (const auto& [components, text] : rows) {
    EXPECT_EQ(dayText(components), text) << text.value_or("-");
  }
}

TEST(CalendarTest, readsOnlyTextsThatAreExactlyADay) {
  const ScopedDeviceSettings settings({.locale = "en_US", .timeZone = "America/Sao_Paulo"});
  for (const std::string_view refused :
       {"", "20-01-05", " 2024-01-05", "2024-01-05 ", "2024-01-05T00:00:00Z", "05/01/2024",
        "05-01-2024", "2024-1-5", "2023-02-29", "2024-13-01", "2024-00-10", "2024-01-00",
        "2024/01/05", "+024-01-05", "-024-01-05", "2024-01-0a", "2024--1-05", "0000-01-01",
        "\xFF\xFF\xFF\xFF-01-05"}) {
    EXPECT_EQ(parseDay(refused), std::nullopt) << refused;
  }
  const DateComponents day{2017, 10, 15};  // has no midnight there
  EXPECT_EQ(parseDay("2017-10-15"), day);
  EXPECT_EQ(parseDay("1500-02-29"), (DateComponents{1500, 2, 29}));
}

TEST(CalendarTest, followsTheDevicesCalendarAndDigits) {
  const Date noon = dateFromSeconds(1'704'456'000);  // 2024-01-05T12:00:00Z
  struct Row {
    DeviceSettings settings;
    DateComponents day;
    std::string_view text, latin = text;
  };
  const Row rows[] = {
      {{.locale = "en_US", .timeZone = "UTC"}, {2024, 1, 5}, "2024-01-05"},
      {{.locale = "th_TH", .timeZone = "UTC"}, {2567, 1, 5}, "2567-01-05"},
      {{.locale = "th_TH", .timeZone = "UTC", .calendar = "gregorian"}, {2024, 1, 5}, "2024-01-05"},
      {{.locale = "en_US", .timeZone = "UTC", .calendar = "buddhist"}, {2567, 1, 5}, "2567-01-05"},
      {{.locale = "ar_EG", .timeZone = "UTC"}, {2024, 1, 5}, "٢٠٢٤-٠١-٠٥", "2024-01-05"},
      {{.locale = "ar_EG", .timeZone = "UTC", .calendar = "buddhist"},
       {2567, 1, 5},
       "٢٥٦٧-٠١-٠٥",
       "2567-01-05"},
      {{.locale = "fa_IR", .timeZone = "UTC"}, {1402, 10, 15}, "۱۴۰۲-۱۰-۱۵", "1402-10-15"},
      // Digits of two UTF-16 units each, and some that are words.
      {{.locale = "ff_Adlm_GN", .timeZone = "UTC"},
       {2024, 1, 5},
       "𞥒𞥐𞥒𞥔-𞥐𞥑-𞥐𞥕",
       "2024-01-05"},
      {{.locale = "zh_CN@numbers=hanidec", .timeZone = "UTC"},
       {2024, 1, 5},
       "二〇二四-〇一-〇五",
       "2024-01-05"},
  };
  for (const Row& row : rows) {
    const ScopedDeviceSettings settings(row.settings);
    EXPECT_EQ(formatDate(noon, dayPattern), row.text);
    EXPECT_EQ(localDayText(row.day), row.text);
    // Records have Latin digits whatever the device shows.
    EXPECT_EQ(dayText(row.day), row.latin);
    EXPECT_EQ(parseDay(row.text), row.day) << row.text;
    EXPECT_EQ(parseDay(row.latin), row.day) << row.text;
  }
  const ScopedDeviceSettings egypt({.locale = "ar_EG", .timeZone = "UTC"});
  for (const std::string_view refused : {"20-01-05", "٢٠-٠١-٠٥", "2024-٠١-05", "2023-02-29"}) {
    EXPECT_EQ(parseDay(refused), std::nullopt) << refused;
  }
}

TEST(CalendarTest, writesPatternsAsTheLocaleCountsWeeks) {
  const Date date = dateFromSeconds(1'735'473'900);  // 2024-12-29T12:05:00Z, a Sunday
  struct Row {
    std::string_view locale, zone, pattern, text;
  };
  const Row rows[] = {{"en_US", "UTC", "YYYY-MM-dd", "2025-12-29"},
                      {"de_DE", "UTC", "YYYY-MM-dd", "2024-12-29"},
                      {"en_US", "UTC", "yyyy-MM-dd", "2024-12-29"},
                      {"en_US", "UTC", "Hmm", "1205"},
                      {"en_US", "America/Los_Angeles", "Hmm", "405"},
                      {"en_US", "Pacific/Auckland", "Hmm", "105"},
                      {"en_US", "Pacific/Auckland", "yyyy-MM-dd", "2024-12-30"}};
  for (const Row& row : rows) {
    const ScopedDeviceSettings settings(
        {.locale = std::string(row.locale), .timeZone = std::string(row.zone)});
    EXPECT_EQ(formatDate(date, row.pattern), row.text) << row.locale << ' ' << row.zone;
  }
}

TEST(CalendarTest, movesByCalendarDaysAcrossDaylightSaving) {
  const ScopedDeviceSettings settings({.locale = "en_US", .timeZone = "Europe/Zurich"});
  constexpr double hour = 3600;
  struct Row {
    double from;
    std::int64_t days;
    double hours;
  };
  const Row rows[] = {{1'711'792'800, 1, 23},  // 2024-03-30, ten in the morning
                      {1'711'875'600, -1, -23},
                      {1'729'929'600, 1, 25},  // 2024-10-26, ten in the morning
                      {1'729'929'600, 0, 0},
                      {1'704'456'000.25, 366, 366 * 24},
                      {1'704'456'000, -36500, -36500 * 24}};
  for (const Row& row : rows) {
    EXPECT_EQ(addingDays(dateFromSeconds(row.from), row.days),
              dateFromSeconds(row.from + row.hours * hour))
        << row.from;
  }
  EXPECT_EQ(addingDays(dateFromSeconds(0), std::int64_t{1} << 31), std::nullopt);
  EXPECT_EQ(addingDays(dateFromSeconds(0), least), std::nullopt);
}

// Samoa left out 2011-12-30 when it crossed the date line. A day that was not does not count.
TEST(CalendarTest, movesByTheDaysThatThereWere) {
  struct Row {
    std::string_view zone, from;
    std::int64_t days;
    std::string_view to;
  };
  const Row rows[] = {{"Pacific/Apia", "2011-12-31 10:00", -1, "2011-12-29 10:00"},
                      {"Pacific/Apia", "2011-12-29 10:00", 1, "2011-12-31 10:00"},
                      {"Pacific/Apia", "2012-01-03 10:00", -7, "2011-12-26 10:00"},
                      {"Pacific/Apia", "2011-12-29 23:59", 0, "2011-12-29 23:59"},
                      {"Pacific/Apia", "2011-12-31 00:00", -1, "2011-12-29 00:00"},
                      {"Pacific/Apia", "2012-12-31 10:00", -366, "2011-12-31 10:00"},
                      {"Pacific/Pago_Pago", "2012-01-03 10:00", -7, "2011-12-27 10:00"}};
  for (const Row& row : rows) {
    const ScopedDeviceSettings settings({.locale = "en_US", .timeZone = std::string(row.zone)});
    const std::string day(row.from.substr(0, 10));
    const auto noon = dateOf(*parseDay(day));
    ASSERT_TRUE(noon) << row.from;
    const int hour = std::stoi(std::string(row.from.substr(11, 2)));
    const int minute = std::stoi(std::string(row.from.substr(14, 2)));
    const Date from = *noon + std::chrono::minutes((hour - 12) * 60 + minute);
    const auto to = addingDays(from, row.days);
    ASSERT_TRUE(to) << row.from;
    EXPECT_EQ(formatDate(from, "yyyy-MM-dd HH:mm"), row.from);
    EXPECT_EQ(formatDate(*to, "yyyy-MM-dd HH:mm"), row.to) << row.from << ' ' << row.days;
  }
  // No point in time lies on it, but people elsewhere were born on it.
  const ScopedDeviceSettings settings({.locale = "en_US", .timeZone = "Pacific/Apia"});
  constexpr DateComponents leftOut{2011, 12, 30};
  EXPECT_EQ(dateOf(leftOut), std::nullopt);
  EXPECT_EQ(dayText(leftOut), "2011-12-30");
  EXPECT_EQ(parseDay("2011-12-30"), leftOut);
}

TEST(CalendarTest, hasNoTextAndNoNeighbourForWhatLiesBeyondIt) {
  const ScopedDeviceSettings settings({.locale = "en_US", .timeZone = "UTC"});
  for (const double seconds : {infinity, -infinity, notANumber, 1e300, -1e300, 1.9e14, -1.9e14}) {
    for (const std::string_view pattern : {"yyyy-MM-dd", "YYYY-MM-dd", "Hmm"}) {
      EXPECT_EQ(formatDate(dateFromSeconds(seconds), pattern), std::nullopt) << seconds;
    }
    EXPECT_EQ(addingDays(dateFromSeconds(seconds), -7), std::nullopt) << seconds;
  }
  EXPECT_EQ(formatDate(dateFromSeconds(253'402'300'800), dayPattern), "10000-01-01");
  EXPECT_EQ(formatDate(dateFromSeconds(1.8e14), dayPattern), "5705942-12-07");
}

TEST(CalendarTest, everyThreadFollowsANewSetting) {
  const Date date = dateFromSeconds(1'704'456'000);
  const ScopedDeviceSettings first({.locale = "en_US", .timeZone = "UTC"});
  EXPECT_EQ(formatDate(date, "H"), "12");
  std::thread([&] {
    EXPECT_EQ(formatDate(date, "H"), "12");
    const ScopedDeviceSettings second({.locale = "en_US", .timeZone = "Asia/Tokyo"});
    EXPECT_EQ(formatDate(date, "H"), "21");
  }).join();
  EXPECT_EQ(formatDate(date, "H"), "12");
}

}  // namespace
}  // namespace orvane
