// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Platform/TimeZone.h>
#include <Orvane/Platform/ZoneRules.h>

#include <cmath>
#include <cstdlib>

namespace orvane {
namespace {

// The widest offset that a zone may have, in seconds.
constexpr std::int64_t widestOffset = 18L * 60 * 60;

void appendTwoDigits(std::string& text, std::int64_t number) {
  text.push_back(static_cast<char>('0' + number / 10));
  text.push_back(static_cast<char>('0' + number % 10));
}

}  // namespace

std::optional<TimeZone> TimeZone::fromSeconds(std::int64_t secondsFromGMT) {
  if (secondsFromGMT < -widestOffset || secondsFromGMT > widestOffset) return std::nullopt;
  return TimeZone(nullptr, static_cast<std::int32_t>(secondsFromGMT));
}

std::optional<TimeZone> TimeZone::named(std::string_view name) {
  if (!zoneRules(name)) return std::nullopt;
  return TimeZone(std::make_shared<const std::string>(name), 0);
}

std::int64_t TimeZone::secondsFromGMT(Date date) const {
  // ICU finds an offset even for what is not a number, and not always the same.
  if (!name_ || std::isnan(secondsSince1970(date))) return offset_;
  std::int32_t raw = 0;
  std::int32_t daylightSaving = 0;
  UErrorCode status = U_ZERO_ERROR;
  zoneRules(*name_)->getOffset(secondsSince1970(date) * 1000.0, 0, raw, daylightSaving, status);
  return U_FAILURE(status) != 0 ? 0 : (raw + daylightSaving) / 1000;
}

std::string TimeZone::identifier() const {
  if (name_) return *name_;
  std::string text = "GMT";
  if (offset_ == 0) return text;
  const std::int64_t seconds = std::abs(offset_);
  text += offset_ < 0 ? '-' : '+';
  text += std::to_string(seconds / 3600);
  appendTwoDigits(text += ':', seconds / 60 % 60);
  if (seconds % 60 != 0) appendTwoDigits(text += ':', seconds % 60);
  return text;
}

}  // namespace orvane
