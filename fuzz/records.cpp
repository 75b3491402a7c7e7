// SPDX-License-Identifier: Apache-2.0
// Any bytes as any record: the first byte names a row of the table, the rest is the text. Decoding
// answers a record or an error. What can be written is the same once more when it is read again.
#include "fuzz/Bytes.h"
#include <Orvane/Coding/Coding.h>
#include <Orvane/Models/Content.h>
#include <Orvane/Models/Device.h>
#include <Orvane/Models/Discount.h>
#include <Orvane/Models/DriverDetection.h>
#include <Orvane/Models/DrivingSummary.h>
#include <Orvane/Models/EULAStatus.h>
#include <Orvane/Models/Event.h>
#include <Orvane/Models/Invitation.h>
#include <Orvane/Models/Leaderboard.h>
#include <Orvane/Models/Location.h>
#include <Orvane/Models/LogbookWrapper.h>
#include <Orvane/Models/NamedDriver.h>
#include <Orvane/Models/RewardToken.h>
#include <Orvane/Models/Scoring.h>
#include <Orvane/Models/Subscription.h>
#include <Orvane/Models/Trip.h>
#include <Orvane/Models/User.h>
#include <Orvane/Models/Vehicle.h>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace {

using namespace orvane;
using JSON = nlohmann::json;

// Conversions of units round, there and back.
bool isSameNumber(double left, double right) {
  const double unit = std::numeric_limits<double>::epsilon() * std::max(1e-290, std::abs(left));
  return left == right || std::abs(left - right) <= 4 * unit;
}

bool isSame(const JSON& left, const JSON& right) {
  if (left.is_number() && right.is_number()) {
    return isSameNumber(left.get<double>(), right.get<double>());
  }
  if (!left.is_structured()) return left == right;
  if (left.type() != right.type() || left.size() != right.size()) return false;
  if (left.is_array()) return std::equal(left.begin(), left.end(), right.begin(), isSame);
  return std::all_of(left.items().begin(), left.items().end(), [&right](const auto& item) {
    return right.contains(item.key()) && isSame(item.value(), right[item.key()]);
  });
}

// What can be written of a record is all that is looked at: some compare by their identifier alone,
// and some members are only read.
template <class T>
void checkWayBack(const T& value) {
  const auto written = encodeChecked(value);
  if (!written) return;
  const auto again = decode<T>(*written);
  require(again);
  const auto writtenAgain = encodeChecked(*again);
  require(writtenAgain);
  require(isSame(JSON::parse(*written), JSON::parse(*writtenAgain)));
}

// All of the record is written, as it is.
template <class T>
void checkEqual(const T& value) {
  const auto written = encode(value);
  require(written);
  const auto again = decode<T>(*written);
  require(again && *again == value);
}

// What is written is not what is read.
template <class T>
void checkWritten(const T& value) {
  const auto written = encode(value);
  require(written && JSON::accept(*written));
}

template <class T>
void readAsIs(std::string_view text) {
  if (const auto value = decode<T>(text)) checkEqual(*value);
}

template <class T>
void readConverted(std::string_view text) {
  if (const auto value = decode<T>(text)) checkWayBack(*value);
}

template <class T>
void readOneWay(std::string_view text) {
  if (const auto value = decode<T>(text)) checkWritten(*value);
}

// One record, or a list of them.
template <class T>
void asIs(std::string_view text) {
  text.starts_with('[') ? readAsIs<std::vector<T>>(text) : readAsIs<T>(text);
}

// The same of records of which not everything is written, or not as it was read.
template <class T>
void converted(std::string_view text) {
  text.starts_with('[') ? readConverted<std::vector<T>>(text) : readConverted<T>(text);
}

// The same of records that have another form when they are written.
template <class T>
void oneWay(std::string_view text) {
  text.starts_with('[') ? readOneWay<std::vector<T>>(text) : readOneWay<T>(text);
}

// In the order of their first bytes, from '0': new ones come last.
constexpr void (*rows[])(std::string_view) = {
    converted<Trip>,
    converted<User>,
    converted<Event>,
    oneWay<Event::EventType>,
    asIs<Event::Severity>,
    asIs<DriverDetection>,
    oneWay<TripScores>,
    asIs<IndividualComponentScores>,
    asIs<TripScoring>,
    asIs<ScoreComponent>,
    asIs<ScoringComponents>,
    asIs<DailyAggregate>,
    asIs<ScoringAggregate>,
    asIs<TripScoringComponents>,
    asIs<TripScoringAverage>,
    asIs<ScoringAverage>,
    asIs<LeaderboardEntry>,
    asIs<Leaderboard>,
    asIs<EULAStatus>,
    converted<Vehicle>,
    asIs<Discount>,
    asIs<DiscountMetadata>,
    asIs<DiscountMetadata::DiscountScore>,
    asIs<DiscountMetadata::DiscountRange>,
    asIs<Location>,
    converted<LogbookWrapper>,
    converted<LogbookWrapper::TripWrapper>,
    asIs<NamedDriver>,
    converted<DrivingSummary>,
    asIs<DrivingSummaryResult>,
    asIs<Content>,
    asIs<Invitation>,
    asIs<Invitation::InvitationUser>,
    asIs<RewardToken>,
    asIs<Subscription>,
    asIs<Device>,
    asIs<Account>,
    asIs<UserRole>,
    asIs<User::SharedInformation>,
    converted<UsersByRole>,
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view input = orvane::textOf(data, size);
  if (input.empty() || input.front() < '0') return 0;
  const auto row = static_cast<std::size_t>(input.front() - '0');
  if (row < std::size(rows)) rows[row](input.substr(1));
  return 0;
}
