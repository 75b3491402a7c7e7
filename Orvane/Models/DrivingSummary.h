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
  std::optional<std::int64_t> userId{};
  std::optional<double> maximumDiscountAvailable{};
  std::optional<double> kmOfDeclaredMileage{};  ///< Kilometres.
  std::optional<std::int64_t> id{};
  std::optional<Date> dateAssessmentStarted{};
  std::optional<double> distanceDriven{};  ///< Kilometres.
  std::optional<std::int64_t> numberOfTrips{};
  std::optional<std::int64_t> currentDiscount{};  ///< Never written.
  std::optional<std::int64_t> projectedDiscount{};
  std::optional<double> overallScore{};
  /// There when a request asked for it. Never written.
  std::optional<DriverDetection> driverDetection{};

  ORVANE_EXPORT bool operator==(const DrivingSummary& other) const noexcept;
};

/// The driving of one period. Every member is there.
struct ORVANE_EXPORT DrivingSummaryResult {
  double startDate = 0;  ///< The backend's number.
  double endDate = 0;    ///< The backend's number.
  std::int64_t secondsOfDriving = 0;
  std::int64_t secondsOfIdling = 0;
  double kmOfDriving = 0;
  double litresOfFuel = 0;
  std::int64_t numberOfTrips = 0;
  double avgKmPerHour = 0;
  std::int64_t secondsInMotion = 0;

  ORVANE_EXPORT bool operator==(const DrivingSummaryResult& other) const noexcept;
};

template <>
inline constexpr bool hasCoding<DrivingSummary> = true;
template <>
inline constexpr bool hasCoding<DrivingSummaryResult> = true;

}  // namespace orvane
