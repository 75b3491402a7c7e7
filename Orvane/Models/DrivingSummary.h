// SPDX-License-Identifier: Apache-2.0
// How much and how well a user has driven.
#pragma once

#include <Orvane/Coding/CodableTypes.h>
#include <Orvane/Models/DriverDetection.h>
#include <Orvane/Platform/Date.h>
#include <Orvane/Platform/Export.h>

#include <cstdint>
#include <optional>

namespace orvane {

/// The running account of a user's assessment.
///
/// What is read is not all written: `currentDiscount` and `driverDetection` are lost.
struct ORVANE_EXPORT DrivingSummary {
  std::optional<std::int64_t> userId{};  ///< Whose account it is.
  /// The most that can be earned, in the backend's scale.
  std::optional<double> maximumDiscountAvailable{};
  std::optional<double> kmOfDeclaredMileage{};  ///< Kilometres.
  std::optional<std::int64_t> id{};             ///< The identifier of the account.
  /// Always there in an answer of the backend's, which fails without it.
  std::optional<Date> dateAssessmentStarted{};
  std::optional<double> distanceDriven{};         ///< Kilometres.
  std::optional<std::int64_t> numberOfTrips{};    ///< Trips since the assessment started.
  std::optional<std::int64_t> currentDiscount{};  ///< Never written.
  /// What will have been earned in the end, in the backend's scale.
  std::optional<std::int64_t> projectedDiscount{};
  std::optional<double> overallScore{};  ///< The score of the assessment, in the backend's scale.
  /// There when a request asked for it. Never written.
  std::optional<DriverDetection> driverDetection{};

  ORVANE_EXPORT bool operator==(const DrivingSummary& other) const noexcept;
};

/// The driving of one period. Every member is there.
struct ORVANE_EXPORT DrivingSummaryResult {
  double startDate = 0;               ///< Where the period begins, as the backend's number.
  double endDate = 0;                 ///< Where it ends, as the backend's number.
  std::int64_t secondsOfDriving = 0;  ///< Seconds.
  std::int64_t secondsOfIdling = 0;   ///< Seconds with the engine running at a standstill.
  double kmOfDriving = 0;             ///< Kilometres.
  double litresOfFuel = 0;            ///< Litres.
  std::int64_t numberOfTrips = 0;     ///< Trips within the period.
  double avgKmPerHour = 0;            ///< Kilometres per hour.
  std::int64_t secondsInMotion = 0;   ///< Seconds in which the vehicle moved.

  ORVANE_EXPORT bool operator==(const DrivingSummaryResult& other) const noexcept;
};

template <>
inline constexpr bool hasCoding<DrivingSummary> = true;
template <>
inline constexpr bool hasCoding<DrivingSummaryResult> = true;

}  // namespace orvane
