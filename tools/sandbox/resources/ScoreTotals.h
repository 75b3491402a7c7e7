// SPDX-License-Identifier: Apache-2.0
//
// Scores of many trips put together. Whatever shows a score of a period gets it here, so that lists
// and scores agree: an average is the mean of the scored trips, weighted by their kilometres.
#pragma once

#include "Time.h"
#include "http/Query.h"
#include "store/Database.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace orvane::sandbox {

enum class ScoreKind : std::size_t {
  overall,
  acceleration,
  braking,
  cornering,
  speeding,
  overSpeeding,
  distraction,
  usage
};
inline constexpr std::size_t scoreKinds = 8;

/// The sum over scored trips: drives by car that have been processed.
struct ScoreTotals {
  std::int64_t trips = 0;
  double kilometres = 0;
  double seconds = 0;
  std::optional<double> highest;
  std::optional<double> lowest;
  std::array<double, scoreKinds> weighted{};  // score times kilometres

  void add(const ScoreTotals& other);
  /// Rounded to two decimal places; absent without trips.
  [[nodiscard]] std::optional<double> average(ScoreKind kind) const;
};

/// Whose trips are meant.
struct ScoreSubject {
  enum class Kind { user, vehicle } kind;
  std::string id;
};

[[nodiscard]] ScoreTotals totalsOf(DatabaseConnection& database, const ScoreSubject& subject,
                                   const Period& period);

struct DayTotals {
  Day day;
  ScoreTotals totals;
};

/// The days on which there were scored trips, in their order.
[[nodiscard]] std::vector<DayTotals> dailyTotalsOf(DatabaseConnection& database,
                                                   const ScoreSubject& subject,
                                                   const Period& period);

/// The bounds of a period as texts that every day lies between when a bound is open.
[[nodiscard]] std::string firstDayOf(const Period& period);
[[nodiscard]] std::string lastDayOf(const Period& period);

[[nodiscard]] double roundedTo(double value, int decimals);

}  // namespace orvane::sandbox
