// SPDX-License-Identifier: Apache-2.0
// The insurance contracts under which a user takes part.
#pragma once

#include <Orvane/Coding/CodableTypes.h>
#include <Orvane/Platform/Enumeration.h>
#include <Orvane/Platform/Export.h>

#include <cstdint>
#include <optional>

namespace orvane {

/// A contract of the current user. Every member is absent where the backend did not tell it; times
/// and lengths are kept as the numbers that it sends.
struct ORVANE_EXPORT Subscription {
  /// The kind of contract. Another kind than these fails the record.
  enum class SubscriptionType : std::uint8_t {
    Regular,
    MileageOnly,
    MileagePlus,
    TryAndBuy,
    aFNOL,
  };

  std::optional<double> startTimestamp{};  ///< Milliseconds since 1970-01-01 UTC.
  std::optional<double> endTimestamp{};    ///< Milliseconds since 1970-01-01 UTC.
  /// The enrolment that the contract belongs to.
  std::optional<std::int64_t> telematicSubscriptionEnrollmentId{};
  std::optional<SubscriptionType> telematicSubscriptionType{};  ///< The kind of contract.
  std::optional<double> subscriptionLengthMillis{};             ///< Milliseconds.
  std::optional<double> trialLengthMillis{};  ///< Length of the trial period in milliseconds.
  /// End of the trial period: milliseconds since 1970-01-01 UTC.
  std::optional<double> trialEndTimestamp{};

  ORVANE_EXPORT bool operator==(const Subscription& other) const noexcept;
};

template <>
struct EnumerationTable<Subscription::SubscriptionType> {
  using enum Subscription::SubscriptionType;
  static constexpr EnumerationCase<Subscription::SubscriptionType> cases[] = {
      {Regular, "Regular"},
      {MileageOnly, "MileageOnly"},
      {MileagePlus, "MileagePlus"},
      {TryAndBuy, "TryAndBuy"},
      {aFNOL, "aFNOL"},
  };
  static constexpr bool isJSONText = true;
};

template <>
inline constexpr bool hasCoding<Subscription> = true;

}  // namespace orvane
