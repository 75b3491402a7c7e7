// SPDX-License-Identifier: Apache-2.0
// Driving scores: of one trip, per day of a period, and averaged over a period. All of them are the
// numbers that the backend sends, neither scaled nor clamped, and so are the dates.
#pragma once

#include <Orvane/Coding/CodableTypes.h>
#include <Orvane/Platform/Enumeration.h>
#include <Orvane/Platform/Export.h>
#include <Orvane/Platform/Indirect.h>
#include <Orvane/Platform/OneOf.h>

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace orvane {

/// The scores of one trip.
///
/// They are not written in the form in which they are read: read from the object under "scores",
/// written as such an object alone, without the sub-scores that have no value; as null without
/// `subScores`.
struct ORVANE_EXPORT TripScores {
  /// The components that this version knows.
  enum class KnownSubScore : std::uint8_t {
    acceleration,
    braking,
    cornering,
    speeding,
    postedSpeedLimit,
    abcSubscore,
    usageSubscore,
    speedSubscore,
    distractedDriving,
  };
  /// A component that this version does not know.
  struct OtherSubScore {
    std::string key{};  ///< The backend's name for it.
    [[nodiscard]] HashValue hashValue() const { return hashOf(key); }
    ORVANE_EXPORT bool operator==(const OtherSubScore& other) const noexcept;
    /// By the bytes of the name.
    friend std::strong_ordering operator<=>(const OtherSubScore& left,
                                            const OtherSubScore& right) noexcept {
      return orderOf(left.key, right.key);
    }
  };

  /// What a sub-score rates: one of the known components, or any other that the backend names.
  class SubScore : public OneOf<KnownSubScore, OtherSubScore> {
   public:
    using OneOf::OneOf;
    /// `KnownSubScore::acceleration`.
    [[nodiscard]] static SubScore acceleration() { return KnownSubScore::acceleration; }
    /// `KnownSubScore::braking`.
    [[nodiscard]] static SubScore braking() { return KnownSubScore::braking; }
    /// `KnownSubScore::cornering`.
    [[nodiscard]] static SubScore cornering() { return KnownSubScore::cornering; }
    /// `KnownSubScore::speeding`.
    [[nodiscard]] static SubScore speeding() { return KnownSubScore::speeding; }
    /// `KnownSubScore::postedSpeedLimit`.
    [[nodiscard]] static SubScore postedSpeedLimit() { return KnownSubScore::postedSpeedLimit; }
    /// `KnownSubScore::abcSubscore`.
    [[nodiscard]] static SubScore abcSubscore() { return KnownSubScore::abcSubscore; }
    /// `KnownSubScore::usageSubscore`.
    [[nodiscard]] static SubScore usageSubscore() { return KnownSubScore::usageSubscore; }
    /// `KnownSubScore::speedSubscore`.
    [[nodiscard]] static SubScore speedSubscore() { return KnownSubScore::speedSubscore; }
    /// `KnownSubScore::distractedDriving`.
    [[nodiscard]] static SubScore distractedDriving() { return KnownSubScore::distractedDriving; }
    /// One that is not known, under the backend's name. "distracted.driving", with a dot, is such.
    [[nodiscard]] static SubScore other(std::string key) { return OtherSubScore{std::move(key)}; }

    /// The case that a wire text stands for, compared exactly; any unlisted text is another one.
    [[nodiscard]] ORVANE_EXPORT static SubScore fromWireText(std::string_view text);
    /// The backend's name.
    [[nodiscard]] ORVANE_EXPORT std::string_view wireText() const noexcept;
  };

  /// Scores by what they rate; absent where the backend names one without a value.
  using SubScores = std::map<SubScore, std::optional<double>>;

  /// The score of the trip as a whole.
  std::optional<double> overall{};
  /// The other scores; one that the backend names without a value is there without one.
  std::optional<SubScores> subScores{};

  ORVANE_EXPORT bool operator==(const TripScores& other) const noexcept;
};

template <>
struct EnumerationTable<TripScores::KnownSubScore> {
  using enum TripScores::KnownSubScore;
  static constexpr EnumerationCase<TripScores::KnownSubScore> cases[] = {
      {acceleration, "harsh.acceleration"},
      {braking, "harsh.braking"},
      {cornering, "harsh.cornering"},
      {speeding, "speeding"},
      {postedSpeedLimit, "over.speeding"},
      {abcSubscore, "abc_subscore"},
      {usageSubscore, "usage_subscore"},
      {speedSubscore, "speed_subscore"},
      {distractedDriving, "distracted_driving"},
  };
};

/// One component of a trip's score.
struct ORVANE_EXPORT IndividualComponentScores {
  std::optional<std::string> component{};  ///< Its name, as the backend gives it.
  std::optional<double> componentScore{};  ///< In the backend's scale.

  friend bool operator==(const IndividualComponentScores&,
                         const IndividualComponentScores&) = default;
};

/// The scores of one trip as a named algorithm computed them.
struct ORVANE_EXPORT TripScoring {
  std::optional<std::string> scoreAlgorithmProvider{};  ///< Whose algorithm it is.
  std::optional<std::string> scoreUnit{};  ///< The scale of the scores, in the backend's words.
  std::optional<double> overallScore{};    ///< The score of the trip as a whole.
  /// What it is made of.
  std::optional<std::vector<IndividualComponentScores>> individualComponentScores{};

  ORVANE_EXPORT bool operator==(const TripScoring& other) const noexcept;
};

/// One component of a day's score.
struct ORVANE_EXPORT ScoreComponent {
  std::optional<double> score{};  ///< That of the day.
  std::optional<double>
      averageScore{};  ///< The average that goes with it, as the backend works it out.
  std::optional<std::string> trackingType{};  ///< The kind of tracking, in the backend's words.

  ORVANE_EXPORT bool operator==(const ScoreComponent& other) const noexcept;
};

/// The components of a day's score. The members are named as on the wire.
struct ORVANE_EXPORT ScoringComponents {
  std::optional<ScoreComponent> harshAcceleration{};  ///< Harsh acceleration.
  std::optional<ScoreComponent> harshBraking{};       ///< Harsh braking.
  std::optional<ScoreComponent> harshCornering{};     ///< Harsh cornering.
  std::optional<ScoreComponent> overSpeeding{};       ///< Driving faster than the posted limit.
  std::optional<ScoreComponent> speeding{};           ///< Speeding, as the backend counts it.
  std::optional<ScoreComponent> distractedDriving{};  ///< Distracted driving.
  std::optional<ScoreComponent> mileage{};            ///< The distance driven.
  std::optional<ScoreComponent> payd{};               ///< Pay as you drive.
  std::optional<ScoreComponent> abc_subscore{};       ///< As the backend works it out.
  std::optional<ScoreComponent> speed_subscore{};     ///< As the backend works it out.
  std::optional<ScoreComponent> usage_subscore{};     ///< As the backend works it out.
  /// Distracted driving, under the backend's other name.
  std::optional<ScoreComponent> distracted_driving{};

  ORVANE_EXPORT bool operator==(const ScoringComponents& other) const noexcept;
};

/// The scores of one day.
struct ORVANE_EXPORT DailyAggregate {
  std::optional<double> score{};  ///< That of the day.
  std::optional<double>
      averageScore{};            ///< The average that goes with it, as the backend works it out.
  std::optional<double> date{};  ///< The day, as the backend's number.
  std::optional<std::string> trackingType{};      ///< The kind of tracking, in the backend's words.
  std::optional<double> secondsOfDriving{};       ///< Seconds.
  Indirect<ScoringComponents> componentScores{};  ///< What the score is made of.
  std::optional<std::int64_t> scoreType{};        ///< The backend's number for the kind of score.

  ORVANE_EXPORT bool operator==(const DailyAggregate& other) const noexcept;
};

/// The scores of a period, day by day.
struct ORVANE_EXPORT ScoringAggregate {
  std::optional<double> highestScore{};  ///< The best within the period.
  std::optional<double> averageScore{};  ///< Over all days of the period.
  /// The days, in the backend's order.
  std::optional<std::vector<DailyAggregate>> tripScoringDailyAggregate{};

  ORVANE_EXPORT bool operator==(const ScoringAggregate& other) const noexcept;
};

/// The components of an average score. The members are named as in `ScoringComponents`, but stand
/// under other names on the wire.
struct ORVANE_EXPORT TripScoringComponents {
  std::optional<double> harshAcceleration{};  ///< "harsh.acceleration" on the wire.
  std::optional<double> harshBraking{};       ///< "harsh.braking" on the wire.
  std::optional<double> harshCornering{};     ///< "harsh.cornering" on the wire.
  std::optional<double> overSpeeding{};       ///< "over.speeding" on the wire.
  std::optional<double> speeding{};           ///< Speeding, as the backend counts it.
  std::optional<double> distractedDriving{};  ///< "distracted.driving" on the wire.
  std::optional<double> mileage{};            ///< The distance driven.
  std::optional<double> payd{};               ///< Pay as you drive.
  std::optional<double> abc_subscore{};       ///< As the backend works it out.
  std::optional<double> speed_subscore{};     ///< As the backend works it out.
  std::optional<double> usage_subscore{};     ///< As the backend works it out.
  /// Distracted driving, under the backend's other name.
  std::optional<double> distracted_driving{};

  ORVANE_EXPORT bool operator==(const TripScoringComponents& other) const noexcept;
};

/// The average scores of a period. Every member is there.
struct ORVANE_EXPORT TripScoringAverage {
  double date = 0;                          ///< Of which day it is, as the backend's number.
  std::string trackingType{};               ///< The kind of tracking, in the backend's words.
  TripScoringComponents componentScores{};  ///< What the score is made of.

  ORVANE_EXPORT bool operator==(const TripScoringAverage& other) const noexcept;
};

/// The average scores of a reporting period, and the period.
struct ORVANE_EXPORT ScoringAverage {
  std::optional<double> highestScore{};                    ///< The best within the period.
  std::optional<double> lowestScore{};                     ///< The worst within the period.
  std::optional<double> periodStartDate{};                 ///< Its first day, the backend's number.
  std::optional<double> periodEndDate{};                   ///< Its last day, the backend's number.
  std::optional<double> averageScore{};                    ///< Over the whole period.
  std::optional<TripScoringAverage> tripScoringAverage{};  ///< The averages of the components.

  ORVANE_EXPORT bool operator==(const ScoringAverage& other) const noexcept;
};

template <>
inline constexpr bool hasCoding<TripScores> = true;
template <>
inline constexpr bool hasCoding<IndividualComponentScores> = true;
template <>
inline constexpr bool hasCoding<TripScoring> = true;
template <>
inline constexpr bool hasCoding<ScoreComponent> = true;
template <>
inline constexpr bool hasCoding<ScoringComponents> = true;
template <>
inline constexpr bool hasCoding<DailyAggregate> = true;
template <>
inline constexpr bool hasCoding<ScoringAggregate> = true;
template <>
inline constexpr bool hasCoding<TripScoringComponents> = true;
template <>
inline constexpr bool hasCoding<TripScoringAverage> = true;
template <>
inline constexpr bool hasCoding<ScoringAverage> = true;

}  // namespace orvane
