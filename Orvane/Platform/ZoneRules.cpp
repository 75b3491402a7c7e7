// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Platform/ZoneRules.h>

#include <absl/time/civil_time.h>
#include <absl/time/clock.h>
#include <absl/time/time.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <optional>
#include <string>

namespace orvane {
namespace {

constexpr std::int64_t millisecondsOfSecond = 1000;

// A zone by the machine's database. The base class keeps its name.
class MachineZone final : public icu::TimeZone {
 public:
  MachineZone(const icu::UnicodeString& name, absl::TimeZone rules)
      : TimeZone(name), rules_(rules) {}

  MachineZone* clone() const override { return new MachineZone(*this); }

  // ICU adds the two parts of an offset wherever it asks for them, and the database does not keep
  // them apart: all of it is the raw one.
  void getOffset(UDate date, UBool local, std::int32_t& rawOffset, std::int32_t& savings,
                 UErrorCode& status) const override {
    rawOffset = savings = 0;
    if (U_FAILURE(status) != 0) return;
    if (std::isnan(date)) {
      status = U_ILLEGAL_ARGUMENT_ERROR;
      return;
    }
    rawOffset = static_cast<std::int32_t>(
        (local != 0 ? offsetOfLocal(secondsOf(date)) : offsetAt(secondsOf(date))) *
        millisecondsOfSecond);
  }

  std::int32_t getOffset(std::uint8_t era, std::int32_t year, std::int32_t month, std::int32_t day,
                         std::uint8_t /*dayOfWeek*/, std::int32_t milliseconds,
                         UErrorCode& status) const override {
    if (U_FAILURE(status) != 0) return 0;
    constexpr std::uint8_t beforeChrist = 0;
    const absl::CivilSecond midnight(era == beforeChrist ? 1 - year : year, month + 1, day);
    const std::int64_t local = midnight - epoch + milliseconds / millisecondsOfSecond;
    return static_cast<std::int32_t>(offsetOfLocal(local) * millisecondsOfSecond);
  }

  std::int32_t getOffset(std::uint8_t era, std::int32_t year, std::int32_t month, std::int32_t day,
                         std::uint8_t dayOfWeek, std::int32_t milliseconds,
                         std::int32_t /*monthLength*/, UErrorCode& status) const override {
    return getOffset(era, year, month, day, dayOfWeek, milliseconds, status);
  }

  std::int32_t getRawOffset() const override {
    return static_cast<std::int32_t>(rules_.At(absl::Now()).offset * millisecondsOfSecond);
  }

  // The rules are the machine's.
  void setRawOffset(std::int32_t /*milliseconds*/) override {}

  UBool inDaylightTime(UDate date, UErrorCode& status) const override {
    if (U_FAILURE(status) != 0 || std::isnan(date)) return 0;
    return static_cast<UBool>(rules_.At(absl::FromUnixSeconds(secondsOf(date))).is_dst);
  }

  UBool useDaylightTime() const override {
    const absl::Time now = absl::Now();
    if (rules_.At(now).is_dst) return 1;
    absl::TimeZone::CivilTransition next;
    return static_cast<UBool>(rules_.NextTransition(now, &next) &&
                              rules_.At(rules_.At(next.to).post).is_dst);
  }

  UClassID getDynamicClassID() const override {
    static char id = 0;
    return &id;
  }

 private:
  static constexpr absl::CivilSecond epoch{};

  // Far beyond every calendar of ICU's.
  static std::int64_t secondsOf(UDate date) {
    constexpr double furthest = 1e15;
    const double seconds = std::floor(date / static_cast<double>(millisecondsOfSecond));
    return static_cast<std::int64_t>(std::clamp(seconds, -furthest, furthest));
  }

  std::int64_t offsetAt(std::int64_t seconds) const {
    return rules_.At(absl::FromUnixSeconds(seconds)).offset;
  }

  // ICU's rule for its own zones: of a time that the clock shows twice the later one counts, and a
  // time that it leaves out is one of before.
  std::int64_t offsetOfLocal(std::int64_t local) const {
    const absl::TimeZone::TimeInfo times = rules_.At(epoch + local);
    const bool isTwice = times.kind == absl::TimeZone::TimeInfo::REPEATED;
    return local - absl::ToUnixSeconds(isTwice ? times.post : times.pre);
  }

  absl::TimeZone rules_;
};

icu::UnicodeString icuText(std::string_view text) {
  return icu::UnicodeString::fromUTF8({text.data(), static_cast<std::int32_t>(text.size())});
}

bool isNameLetter(char c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '/' ||
         c == '_' || c == '-' || c == '+';
}

// A name may become a path in the database's folder: it must not leave it, and what lies there
// beside the zones (the machine's own, and the same zones once more with leap seconds) is none.
bool isZoneName(std::string_view name) {
  if (name.empty() || name.front() == '/' || name.back() == '/') return false;
  if (name == "localtime" || name == "posixrules") return false;
  if (name.starts_with("right/") || name.starts_with("posix/")) return false;
  return std::all_of(name.begin(), name.end(), isNameLetter);
}

std::unique_ptr<icu::TimeZone> machineZone(std::string_view name) {
  absl::TimeZone rules;
  if (!absl::LoadTimeZone(std::string(name), &rules)) return nullptr;
  return std::make_unique<MachineZone>(icuText(name), rules);
}

// The name that ICU's database goes by for this one. It makes zones of "GMT+23:00" and the like,
// too, which no database has.
std::optional<std::string> canonicalName(const icu::UnicodeString& name) {
  icu::UnicodeString canonical;
  UBool isSystemID = 0;
  UErrorCode status = U_ZERO_ERROR;
  icu::TimeZone::getCanonicalID(name, canonical, isSystemID, status);
  if (U_FAILURE(status) != 0 || isSystemID == 0) return std::nullopt;
  std::string text;
  return canonical.toUTF8String(text);
}

}  // namespace

std::unique_ptr<icu::TimeZone> zoneRules(std::string_view name) {
  if (!isZoneName(name)) return nullptr;
  if (auto zone = machineZone(name)) return zone;
  const icu::UnicodeString icuName = icuText(name);
  const auto canonical = canonicalName(icuName);
  if (!canonical) return nullptr;
  // Some machines leave out the names of former days ("US/Pacific").
  if (auto zone = machineZone(*canonical)) return zone;
  return std::unique_ptr<icu::TimeZone>(icu::TimeZone::createTimeZone(icuName));
}

}  // namespace orvane
