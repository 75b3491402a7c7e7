// SPDX-License-Identifier: Apache-2.0
// What happened on a trip: harsh driving and speeding, each at a place and time.
#pragma once

#include <Orvane/Coding/CodableTypes.h>
#include <Orvane/Models/Polyline.h>
#include <Orvane/Models/TransportMode.h>
#include <Orvane/Platform/CLLocation.h>
#include <Orvane/Platform/Date.h>
#include <Orvane/Platform/Enumeration.h>
#include <Orvane/Platform/Export.h>
#include <Orvane/Platform/OneOf.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace orvane {

/// One occurrence of harsh driving or speeding. Every member is absent where the backend did not
/// tell it; in an event that the backend sent position, `date` and `transportMode` are there, since
/// it fails without.
struct ORVANE_EXPORT Event {
  /// A kind of event that this version does not know.
  struct OtherEventType {
    std::string key{};  ///< The backend's name for it.
    [[nodiscard]] HashValue hashValue() const { return hashOf(key); }
    ORVANE_EXPORT bool operator==(const OtherEventType& other) const noexcept;
    /// By the bytes of the name.
    friend std::strong_ordering operator<=>(const OtherEventType& left,
                                            const OtherEventType& right) noexcept {
      return orderOf(left.key, right.key);
    }
  };
  /// The kinds of events that this version knows.
  enum class KnownEventType : std::uint8_t {
    acceleration,
    braking,
    cornering,
    speeding,
    postedSpeedLimit,
  };

  /// What kind of an event it is: one of the known kinds, or any other under the backend's name.
  ///
  /// It is not read in the form in which it is written when it stands alone: read from the
  /// backend's name, written as an object with the case as its key.
  class EventType : public OneOf<OtherEventType, KnownEventType> {
   public:
    using OneOf::OneOf;
    /// The kind whose name is empty.
    EventType() : OneOf(OtherEventType{}) {}
    /// A kind that is not known, under the backend's name.
    [[nodiscard]] static EventType other(std::string key) { return OtherEventType{std::move(key)}; }
    /// `KnownEventType::acceleration`.
    [[nodiscard]] static EventType acceleration() { return KnownEventType::acceleration; }
    /// `KnownEventType::braking`.
    [[nodiscard]] static EventType braking() { return KnownEventType::braking; }
    /// `KnownEventType::cornering`.
    [[nodiscard]] static EventType cornering() { return KnownEventType::cornering; }
    /// `KnownEventType::speeding`.
    [[nodiscard]] static EventType speeding() { return KnownEventType::speeding; }
    /// `KnownEventType::postedSpeedLimit`.
    [[nodiscard]] static EventType postedSpeedLimit() { return KnownEventType::postedSpeedLimit; }

    /// The kind that the backend's name stands for, compared exactly; any unlisted one is another.
    [[nodiscard]] ORVANE_EXPORT static EventType fromWireText(std::string_view text);
    /// The backend's name.
    [[nodiscard]] ORVANE_EXPORT std::string_view wireText() const noexcept;
  };

  /// How severe it was; a number on the wire. Another number fails the record.
  enum class Severity : std::uint8_t { veryLow = 1, low = 2, medium = 3, high = 4, veryHigh = 5 };

  std::optional<double> latitude{};   ///< Degrees, north positive.
  std::optional<double> longitude{};  ///< Degrees, east positive.
  /// When it happened. Writing an event without it is a programming fault (see `encodeChecked`).
  std::optional<Date> date{};
  std::optional<Severity> severity{};    ///< How severe it was.
  std::optional<double> speed{};         ///< How fast it was at the time, in metres per second.
  std::optional<double> averageSpeed{};  ///< On the stretch of road, in metres per second.
  /// The stretch of road on which it happened.
  std::optional<Polyline> polyline{};
  std::optional<double> duration{};              ///< How long it lasted, in seconds.
  std::optional<double> speedLimit{};            ///< The posted one, in metres per second.
  std::optional<TransportMode> transportMode{};  ///< How the person travelled at the time.

  /// The coordinates of `polyline`, decoded anew by each call; absent without one. A polyline that
  /// is no list of coordinates stops the process (see `Polyline::decodeChecked`).
  [[nodiscard]] std::optional<std::vector<CLLocationCoordinate2D>> geometry() const;

  ORVANE_EXPORT bool operator==(const Event& other) const noexcept;
};

/// With the backend's names.
template <>
struct EnumerationTable<Event::KnownEventType> {
  using enum Event::KnownEventType;
  static constexpr EnumerationCase<Event::KnownEventType> cases[] = {
      {acceleration, "MultiLevelAccelerationViolation"}, {braking, "MultiLevelBrakingViolation"},
      {cornering, "MultiLevelCorneringViolation"},       {speeding, "MultiLevelSpeedViolation"},
      {postedSpeedLimit, "PostedSpeedLimitViolation"},
  };
};

/// A number on the wire.
template <>
struct EnumerationTable<Event::Severity> {
  using enum Event::Severity;
  static constexpr EnumerationCase<Event::Severity> cases[] = {
      {veryLow, "1"}, {low, "2"}, {medium, "3"}, {high, "4"}, {veryHigh, "5"}};
};

template <>
inline constexpr bool hasCoding<Event> = true;
template <>
inline constexpr bool hasCoding<Event::EventType> = true;
template <>
inline constexpr bool hasCoding<Event::Severity> = true;

}  // namespace orvane
