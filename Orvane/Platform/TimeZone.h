// SPDX-License-Identifier: Apache-2.0
// A time zone: a fixed offset from UTC, or a region with daylight saving.
#pragma once

#include <Orvane/Platform/Date.h>
#include <Orvane/Platform/Export.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace orvane {

/// Made from an offset in seconds or from a name of the IANA time zone database.
class ORVANE_EXPORT TimeZone {
 public:
  /// A zone at a fixed offset from UTC, positive east of Greenwich. Absent beyond 18 hours either
  /// way.
  [[nodiscard]] static std::optional<TimeZone> fromSeconds(std::int64_t secondsFromGMT);

  /// A zone of the IANA database, for example "Asia/Kolkata", by the machine's rules or, where it
  /// has none, by those that came with ICU. Absent for an unknown name.
  [[nodiscard]] static std::optional<TimeZone> named(std::string_view name);

  /// The offset from UTC in seconds in force at `date`; 0 for a region at a date that is not a
  /// number.
  [[nodiscard]] std::int64_t secondsFromGMT(Date date) const;

  /// The IANA name, or "GMT", "GMT+5:30" and the like for a fixed offset.
  [[nodiscard]] std::string identifier() const;

  /// True for one name, or one fixed offset.
  friend bool operator==(const TimeZone& left, const TimeZone& right) noexcept {
    return left.offset_ == right.offset_ &&
           (left.name_ == right.name_ ||
            (left.name_ && right.name_ && *left.name_ == *right.name_));
  }

 private:
  TimeZone(std::shared_ptr<const std::string> name, std::int32_t offset)
      : name_(std::move(name)), offset_(offset) {}

  std::shared_ptr<const std::string> name_;  // null for a fixed offset
  std::int32_t offset_;
};

}  // namespace orvane
