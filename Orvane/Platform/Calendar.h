// SPDX-License-Identifier: Apache-2.0
// Private header: not installed.
// Calendar days and formatted dates in the device's calendar, time zone and locale.
#pragma once

#include <Orvane/Platform/Date.h>
#include <Orvane/Platform/DateComponents.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace orvane {

/// The pattern of calendar days (Unicode Technical Standard 35).
inline constexpr std::string_view dayPattern = "yyyy-MM-dd";

/// `date` in a pattern of Unicode Technical Standard 35. Absent for a date that is not finite, or
/// that the calendar does not reach: some five million years either way. Any thread.
[[nodiscard]] std::optional<std::string> formatDate(Date date, std::string_view pattern);

/// Two dates in one pattern and in one zone, whatever becomes of the machine's meanwhile; absent
/// where one of them is. Any thread.
[[nodiscard]] std::optional<std::pair<std::string, std::string>> formatDates(
    Date first, Date second, std::string_view pattern);

/// Noon of the day that the components form. Absent without a year, or where the calendar refuses
/// them. (Noon, since midnight does not exist everywhere on every day.)
[[nodiscard]] std::optional<Date> dateOf(const DateComponents& components);

/// The day's text in `dayPattern` and Latin digits, whatever the locale's: how records and forms
/// carry it. Absent where `dateOf` is. (But a day that the device's time zone left out, such as
/// 2011-12-30 in Samoa, has a text where days are plain numbers: people elsewhere are born on it.)
[[nodiscard]] std::optional<std::string> dayText(const DateComponents& components);

/// The same in the digits of the device's locale: how queries carry it.
[[nodiscard]] std::optional<std::string> localDayText(const DateComponents& components);

/// Reads a day in `dayPattern`, in Latin digits or in the locale's. A text counts only when it is
/// exactly what formatting the day gives.
[[nodiscard]] std::optional<DateComponents> parseDay(std::string_view text);

/// `date` moved by calendar days, the time of day kept. Only days that there were count: in Samoa,
/// which left out 2011-12-30, the day before the 31st is the 29th. Absent where the calendar can't
/// do it.
[[nodiscard]] std::optional<Date> addingDays(Date date, std::int64_t days);

}  // namespace orvane
