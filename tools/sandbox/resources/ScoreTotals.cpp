// SPDX-License-Identifier: Apache-2.0
#include "resources/ScoreTotals.h"

#include <algorithm>
#include <cmath>

namespace orvane::sandbox {

namespace {

const std::string sums =
    "count(*), total(kilometers), total(seconds), max(overall), min(overall),"
    " total(overall * kilometers), total(acceleration * kilometers), total(braking * kilometers),"
    " total(cornering * kilometers), total(speeding * kilometers),"
    " total(over_speeding * kilometers), total(distraction * kilometers),"
    " total(usage * kilometers)";

std::string source(const ScoreSubject& subject) {
  const bool isUser = subject.kind == ScoreSubject::Kind::user;
  return std::string{" FROM trips WHERE "} + (isUser ? "user_id" : "vehicle_id") +
         " = ? AND day BETWEEN ? AND ? AND overall IS NOT NULL AND transport_mode = 'DRIVER'";
}

ScoreTotals read(const Rows& row) {
  ScoreTotals totals{row.integer(0),      row.real(1),         row.real(2),
                     row.optionalReal(3), row.optionalReal(4), {}};
  for (std::size_t kind = 0; kind < scoreKinds; ++kind) {
    totals.weighted[kind] = row.real(5 + static_cast<int>(kind));
  }
  return totals;
}

}  // namespace

void ScoreTotals::add(const ScoreTotals& other) {
  trips += other.trips;
  kilometres += other.kilometres;
  seconds += other.seconds;
  if (other.highest) highest = std::max(highest.value_or(*other.highest), *other.highest);
  if (other.lowest) lowest = std::min(lowest.value_or(*other.lowest), *other.lowest);
  for (std::size_t kind = 0; kind < scoreKinds; ++kind) weighted[kind] += other.weighted[kind];
}

std::optional<double> ScoreTotals::average(ScoreKind kind) const {
  if (kilometres <= 0) return std::nullopt;
  return roundedTo(weighted[static_cast<std::size_t>(kind)] / kilometres, 2);
}

ScoreTotals totalsOf(DatabaseConnection& database, const ScoreSubject& subject,
                     const Period& period) {
  Rows row = database.query("SELECT " + sums + source(subject), subject.id, firstDayOf(period),
                            lastDayOf(period));
  return row.next() ? read(row) : ScoreTotals{};
}

std::vector<DayTotals> dailyTotalsOf(DatabaseConnection& database, const ScoreSubject& subject,
                                     const Period& period) {
  std::vector<DayTotals> days;
  Rows rows =
      database.query("SELECT " + sums + ", day" + source(subject) + " GROUP BY day ORDER BY day",
                     subject.id, firstDayOf(period), lastDayOf(period));
  constexpr int dayColumn = 5 + static_cast<int>(scoreKinds);
  while (rows.next()) {
    if (const auto day = parseDay(rows.text(dayColumn))) days.push_back({*day, read(rows)});
  }
  return days;
}

std::string firstDayOf(const Period& period) {
  return period.first ? formatDay(*period.first) : "0000-00-00";
}

std::string lastDayOf(const Period& period) {
  return period.last ? formatDay(*period.last) : "9999-99-99";
}

double roundedTo(double value, int decimals) {
  const double scale = std::pow(10.0, decimals);
  return std::round(value * scale) / scale;
}

}  // namespace orvane::sandbox
