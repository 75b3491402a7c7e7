// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Platform/Calendar.h>
#include <Orvane/Platform/DeviceSettings.h>
#include <Orvane/Platform/Fatal.h>
#include <Orvane/Platform/OfThisThread.h>
#include <Orvane/Platform/SystemTimeZone.h>
#include <Orvane/Platform/ZoneRules.h>

#include <unicode/calendar.h>
#include <unicode/smpdtfmt.h>

#include <array>
#include <chrono>
#include <cmath>
#include <limits>
#include <memory>
#include <utility>
#include <vector>

namespace orvane {
namespace {

constexpr std::int32_t noon = 12;

// The first whole year of the Gregorian calendar where the reform was followed at once. Before, ICU
// counts Julian days.
constexpr std::int64_t firstPlainYear = 1583;
constexpr std::int64_t lastPlainYear = 9999;

icu::UnicodeString unicode(std::string_view text) {
  return icu::UnicodeString::fromUTF8({text.data(), static_cast<std::int32_t>(text.size())});
}

icu::Locale localeOf(const DeviceSettings& settings) {
  icu::Locale locale(settings.locale.c_str());
  if (!settings.calendar.empty()) {
    UErrorCode status = U_ZERO_ERROR;
    locale.setKeywordValue("calendar", settings.calendar.c_str(), status);
  }
  return locale;
}

icu::Locale withLatinDigits(icu::Locale locale) {
  UErrorCode status = U_ZERO_ERROR;
  locale.setKeywordValue("numbers", "latn", status);
  return locale;
}

std::unique_ptr<icu::TimeZone> zoneOf(const DeviceSettings& settings) {
  auto zone = zoneRules(settings.timeZone);
  precondition(zone != nullptr, "The settings name a time zone that is none");
  return zone;
}

// Whose digits a text is written in: the device's locale's, or Latin ones whatever the locale.
enum class Digits : std::uint8_t { device, latin };

// ICU's objects for one state of the device's settings. They are dear to make and not safe to
// share, so that each thread keeps its own.
class Formats {
 public:
  explicit Formats(const DeviceSettings& settings)
      : locale_(localeOf(settings)),
        latinLocale_(withLatinDigits(locale_)),
        zone_(zoneOf(settings)),
        calendar_(makeCalendar()) {
    if (!calendar_) return;
    calendar_->setLenient(0);
    isGregorian_ = std::string_view(calendar_->getType()) == "gregorian";
    hasLatinDigits_ = digitsAreLatin();
  }

  // True when a day's text is its numbers: the Gregorian calendar in Latin digits.
  [[nodiscard]] bool isPlain(Digits digits) const noexcept {
    return isGregorian_ && (digits == Digits::latin || hasLatinDigits_);
  }

  [[nodiscard]] bool hasLatinDigits() const noexcept { return hasLatinDigits_; }

  // The calendar with no field set, or null when the system has none for these settings.
  icu::Calendar* cleared() {
    if (calendar_) calendar_->clear();
    return calendar_.get();
  }

  icu::SimpleDateFormat* formatter(std::string_view pattern, Digits digits) {
    for (const Known& known : formatters_) {
      if (known.digits == digits && known.pattern == pattern) return known.formatter.get();
    }
    UErrorCode status = U_ZERO_ERROR;
    const icu::Locale& locale = digits == Digits::latin ? latinLocale_ : locale_;
    auto made = std::make_unique<icu::SimpleDateFormat>(unicode(pattern), locale, status);
    if (U_FAILURE(status) != 0) return nullptr;
    made->setTimeZone(*zone_);
    made->setLenient(0);
    return formatters_.emplace_back(Known{std::string(pattern), digits, std::move(made)})
        .formatter.get();
  }

  std::optional<std::string> format(Date date, std::string_view pattern, Digits digits) {
    const icu::SimpleDateFormat* formatter = this->formatter(pattern, digits);
    // ICU finds a year even for what is not a number.
    if (formatter == nullptr || std::isnan(secondsSince1970(date))) return std::nullopt;
    icu::UnicodeString formatted;
    formatter->format(secondsSince1970(date) * 1000.0, formatted);
    // Nothing is what it writes of a date beyond its calendar.
    if (formatted.isEmpty()) return std::nullopt;
    std::string text;
    return formatted.toUTF8String(text);
  }

 private:
  struct Known {
    std::string pattern;
    Digits digits;
    std::unique_ptr<icu::SimpleDateFormat> formatter;
  };

  std::unique_ptr<icu::Calendar> makeCalendar() const {
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<icu::Calendar> calendar(
        icu::Calendar::createInstance(zone_->clone(), locale_, status));
    return U_FAILURE(status) != 0 ? nullptr : std::move(calendar);
  }

  bool digitsAreLatin() {
    // 2001-12-23 at noon UTC lies on that day, or beside it in the outermost zones; digits only
    // matter.
    const Date date = dateFromSeconds(1009108800);
    for (const char c : format(date, dayPattern, Digits::device).value_or("")) {
      if ((c < '0' || c > '9') && c != '-') return false;
    }
    return true;
  }

  icu::Locale locale_;
  icu::Locale latinLocale_;
  std::unique_ptr<icu::TimeZone> zone_;
  std::unique_ptr<icu::Calendar> calendar_;
  std::vector<Known> formatters_;
  bool isGregorian_ = false;
  bool hasLatinDigits_ = false;
};

struct KeptFormats {
  std::uint64_t version = 0;
  std::unique_ptr<Formats> formats;
};

Formats& formats() {
  auto& [version, formats] = ofThisThread<KeptFormats>();
  if (const std::uint64_t latest = DeviceSettings::version(); version != latest || !formats) {
    formats = std::make_unique<Formats>(*DeviceSettings::current());
    version = latest;
  }
  return *formats;
}

// For what is said of the time of day, which the machine's zone makes: that may be a new one.
Formats& currentFormats() {
  followSystemTimeZone();
  return formats();
}

bool isPlainDay(std::int64_t year, std::int64_t month, std::int64_t day) noexcept {
  if (month < 1 || month > 12 || day < 1 || day > 31) return false;
  return std::chrono::year_month_day(std::chrono::year(static_cast<int>(year)),
                                     std::chrono::month(static_cast<unsigned>(month)),
                                     std::chrono::day(static_cast<unsigned>(day)))
      .ok();
}

bool isPlainYear(std::int64_t year) noexcept {
  return year >= firstPlainYear && year <= lastPlainYear;
}

// "dddd-dd-dd" by its numbers, without asking ICU; absent for any other form or a year ICU must
// see.
std::optional<std::array<std::int64_t, 3>> plainNumbers(std::string_view text) noexcept {
  if (text.size() != 10) return std::nullopt;
  std::array<std::int64_t, 3> numbers{};
  std::size_t field = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (i == 4 || i == 7) {
      if (text[i] != '-') return std::nullopt;
      ++field;
    } else {
      if (text[i] < '0' || text[i] > '9') return std::nullopt;
      numbers[field] = numbers[field] * 10 + (text[i] - '0');
    }
  }
  return isPlainYear(numbers[0]) ? std::optional(numbers) : std::nullopt;
}

void appendDigits(std::string& text, std::int64_t number, int digits) {
  std::int64_t unit = 1;
  for (int i = 1; i < digits; ++i) unit *= 10;
  for (; unit > 0; unit /= 10) text.push_back(static_cast<char>('0' + number / unit % 10));
}

bool fits(std::int64_t number) noexcept {
  return number >= std::numeric_limits<std::int32_t>::min() &&
         number <= std::numeric_limits<std::int32_t>::max();
}

std::optional<Date> timeOf(const icu::Calendar& calendar) {
  UErrorCode status = U_ZERO_ERROR;
  const UDate milliseconds = calendar.getTime(status);
  if (U_FAILURE(status) != 0) return std::nullopt;
  return dateFromSeconds(milliseconds / 1000.0);
}

std::optional<Date> noonOf(Formats& formats, const DateComponents& components) {
  const std::int64_t month = components.month.value_or(1);
  const std::int64_t day = components.day.value_or(1);
  if (!components.year || !fits(*components.year) || !fits(month) || !fits(day))
    return std::nullopt;
  icu::Calendar* calendar = formats.cleared();
  if (calendar == nullptr) return std::nullopt;
  calendar->set(static_cast<std::int32_t>(*components.year), static_cast<std::int32_t>(month - 1),
                static_cast<std::int32_t>(day), noon, 0);
  const std::optional<Date> date = timeOf(*calendar);
  // Even when it is strict ICU forms the days that the Gregorian reform left out.
  UErrorCode status = U_ZERO_ERROR;
  const bool isThatDay = calendar->get(UCAL_DATE, status) == day;
  return isThatDay && U_SUCCESS(status) != 0 ? date : std::nullopt;
}

// All of it in one zone, whatever becomes of the machine's meanwhile.
std::optional<std::string> textOf(const DateComponents& components, Digits digits) {
  Formats& formats = orvane::formats();
  if (components.year && isPlainYear(*components.year) && formats.isPlain(digits)) {
    const std::int64_t month = components.month.value_or(1);
    const std::int64_t day = components.day.value_or(1);
    if (!isPlainDay(*components.year, month, day)) return std::nullopt;
    std::string text;
    appendDigits(text, *components.year, 4);
    appendDigits(text += '-', month, 2);
    appendDigits(text += '-', day, 2);
    return text;
  }
  const std::optional<Date> date = noonOf(formats, components);
  if (!date) return std::nullopt;
  return formats.format(*date, dayPattern, digits);
}

std::optional<DateComponents> parse(Formats& formats, std::string_view text, Digits digits) {
  icu::SimpleDateFormat* formatter = formats.formatter(dayPattern, digits);
  icu::Calendar* calendar = formats.cleared();
  if (formatter == nullptr || calendar == nullptr) return std::nullopt;

  icu::ParsePosition position(0);
  formatter->parse(unicode(text), *calendar, position);
  if (position.getErrorIndex() >= 0 || position.getIndex() == 0) return std::nullopt;
  calendar->set(UCAL_HOUR_OF_DAY, noon);
  const std::optional<Date> date = timeOf(*calendar);
  // ICU takes "20-01-05", leading blanks and trailing text even when it is strict.
  if (!date || formats.format(*date, dayPattern, digits) != text) return std::nullopt;

  UErrorCode status = U_ZERO_ERROR;
  const DateComponents components{calendar->get(UCAL_YEAR, status),
                                  calendar->get(UCAL_MONTH, status) + 1,
                                  calendar->get(UCAL_DATE, status)};
  return U_FAILURE(status) != 0 ? std::nullopt : std::optional(components);
}

}  // namespace

std::optional<std::string> formatDate(Date date, std::string_view pattern) {
  return currentFormats().format(date, pattern, Digits::device);
}

std::optional<std::pair<std::string, std::string>> formatDates(Date first, Date second,
                                                               std::string_view pattern) {
  Formats& formats = currentFormats();
  auto one = formats.format(first, pattern, Digits::device);
  auto other = formats.format(second, pattern, Digits::device);
  if (!one || !other) return std::nullopt;
  return std::pair(*std::move(one), *std::move(other));
}

std::optional<Date> dateOf(const DateComponents& components) {
  return noonOf(currentFormats(), components);
}

std::optional<std::string> dayText(const DateComponents& components) {
  return textOf(components, Digits::latin);
}

std::optional<std::string> localDayText(const DateComponents& components) {
  return textOf(components, Digits::device);
}

std::optional<DateComponents> parseDay(std::string_view text) {
  Formats& formats = orvane::formats();
  if (const auto numbers = plainNumbers(text); numbers && formats.isPlain(Digits::latin)) {
    const auto& [year, month, day] = *numbers;
    if (!isPlainDay(year, month, day)) return std::nullopt;
    return DateComponents{year, month, day};
  }
  if (const auto day = parse(formats, text, Digits::latin)) return day;
  return formats.hasLatinDigits() ? std::nullopt : parse(formats, text, Digits::device);
}

std::optional<Date> addingDays(Date date, std::int64_t days) {
  icu::Calendar* calendar = currentFormats().cleared();
  if (calendar == nullptr || !fits(days) || std::isnan(secondsSince1970(date))) return std::nullopt;
  UErrorCode status = U_ZERO_ERROR;
  calendar->setTime(secondsSince1970(date) * 1000.0, status);
  calendar->add(UCAL_DATE, static_cast<std::int32_t>(days), status);
  if (U_FAILURE(status) != 0) return std::nullopt;
  return timeOf(*calendar);
}

}  // namespace orvane
