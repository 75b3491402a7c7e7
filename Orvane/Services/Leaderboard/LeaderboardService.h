// SPDX-License-Identifier: Apache-2.0
// The application's entry to the ranking of drivers.
#pragma once

#include <Orvane/Core/SerializableService.h>
#include <Orvane/Models/Leaderboard.h>
#include <Orvane/Platform/ClosedRange.h>
#include <Orvane/Platform/DateComponents.h>
#include <Orvane/Platform/Export.h>
#include <Orvane/Platform/OneOf.h>
#include <Orvane/Platform/SetOf.h>

#include <compare>
#include <cstddef>
#include <cstdint>
#include <set>
#include <string>
#include <string_view>
#include <utility>

namespace orvane {

/// Fetches leaderboards, and decides whether the current user appears on them.
class ORVANE_EXPORT LeaderboardService : public SerializableService {
 public:
  /// What `Filter::gender` carries.
  struct GenderFilter {
    User::Gender gender;  ///< Whose drivers are ranked.
  };
  /// What `Filter::age` carries.
  struct AgeFilter {
    ClosedRange<std::int64_t> years;  ///< Both bounds included.
  };
  /// What `Filter::postalCode` carries.
  struct PostalCodeFilter {
    std::string postalCode;  ///< Sent as it is.
  };

  /// Which drivers a leaderboard ranks.
  ///
  /// Filters are equal, ordered and hashed by their kind alone, never by what they carry: any two
  /// `gender` filters are equal. A set thus holds at most one filter of each kind, and inserting a
  /// second one leaves the first in place. To look at what a filter carries, use `as` or `match`.
  class Filter : public OneOf<GenderFilter, AgeFilter, PostalCodeFilter> {
   public:
    using OneOf::OneOf;
    /// Drivers of that gender.
    [[nodiscard]] static Filter gender(User::Gender gender) {
      return GenderFilter{std::move(gender)};
    }
    /// Years, both bounds included.
    [[nodiscard]] static Filter age(ClosedRange<std::int64_t> years) { return AgeFilter{years}; }
    /// Compared by the backend; sent as it is.
    [[nodiscard]] static Filter postalCode(std::string postalCode) {
      return PostalCodeFilter{std::move(postalCode)};
    }

    /// "gender", "age" or "postalCode": all that comparisons look at.
    [[nodiscard]] ORVANE_EXPORT std::string_view kind() const noexcept;

    [[nodiscard]] HashValue hashValue() const { return hashOf(kind()); }
    /// True for two of one kind, whatever they carry.
    friend bool operator==(const Filter& left, const Filter& right) noexcept {
      return left.kind() == right.kind();
    }
    /// By the names of their kinds.
    friend std::strong_ordering operator<=>(const Filter& left, const Filter& right) noexcept {
      return orderOf(left.kind(), right.kind());
    }
  };

  /// A service for the person who is signed in. A missing registration stops the process.
  explicit LeaderboardService(Identity identity) : SerializableService(std::move(identity)) {}

  /// Fetches the leaderboard of a day in the device's calendar, narrowed by the filters. A day that
  /// the calendar can't form sends a request without any query, filters included: what it answers
  /// is up to the backend.
  Operation<Leaderboard> fetch(DateComponents dateComponents, SetOf<Filter> filters = {}) const;
  RequestHandle fetch(DateComponents dateComponents, std::set<Filter> filters,
                      Completion<Leaderboard> then) const;

  /// Lets the current user appear on leaderboards.
  Operation<Unit> optIn() const;
  RequestHandle optIn(Completion<Unit> then) const;

  /// Takes the current user off leaderboards.
  Operation<Unit> optOut() const;
  RequestHandle optOut(Completion<Unit> then) const;
};

}  // namespace orvane
