// SPDX-License-Identifier: Apache-2.0
// How far the backend has learnt to tell a user's driving from being driven.
#pragma once

#include <Orvane/Coding/CodableTypes.h>
#include <Orvane/Platform/Enumeration.h>
#include <Orvane/Platform/Export.h>

#include <cstdint>
#include <optional>

// X11 has a macro of this name.
#pragma push_macro("Status")
#undef Status

namespace orvane {

/// The training of the model that tells whether a user drove or was a passenger.
struct ORVANE_EXPORT DriverDetection {
  /// How far the training has come. Another text on the wire fails the record.
  enum class Status : std::uint8_t {
    inTraining,  ///< The model is being trained.
    trained,     ///< The backend detects who drove.
  };

  std::optional<Status> status{};  ///< How far the training has come.
  /// Of the user's own trips as a driver, so far.
  std::optional<std::int64_t> numberOfDriverTrips{};
  std::optional<std::int64_t> minimumNumberOfDriverTrips{};  ///< How many the training needs.

  ORVANE_EXPORT bool operator==(const DriverDetection& other) const noexcept;
};

template <>
struct EnumerationTable<DriverDetection::Status> {
  using enum DriverDetection::Status;
  // The backend names what it does once the training is complete.
  static constexpr EnumerationCase<DriverDetection::Status> cases[] = {{inTraining, "TRAINING"},
                                                                       {trained, "DETECTION"}};
  static constexpr bool isJSONText = true;
};

template <>
inline constexpr bool hasCoding<DriverDetection> = true;

}  // namespace orvane

#pragma pop_macro("Status")
