// SPDX-License-Identifier: Apache-2.0
// The application's entry to the people of the programme.
#pragma once

#include <Orvane/Core/SerializableService.h>
#include <Orvane/Models/User.h>
#include <Orvane/Platform/Enumeration.h>
#include <Orvane/Platform/Export.h>
#include <Orvane/Platform/SetOf.h>

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <utility>

namespace orvane {

/// The new values of a profile; what is absent stays as it is.
struct ORVANE_EXPORT UserUpdate {
  std::optional<std::string> displayName{};  ///< The name that others see.
  std::optional<std::string> postalCode{};   ///< Of the address.
  std::optional<std::string> avatar{};       ///< Where a picture is: a URL, sent as it stands.
  std::optional<User::Gender> gender{};      ///< Sent as its text on the wire.
  /// A day of the device's calendar.
  std::optional<DateComponents> dateOfBirth{};
  std::optional<std::string> firstName{};        ///< Given name.
  std::optional<std::string> lastName{};         ///< Family name.
  std::optional<std::string> email{};            ///< E-mail address.
  std::optional<std::string> phone{};            ///< Phone number.
  std::optional<std::string> selfDescription{};  ///< What the person says of themselves.
  std::optional<bool> shareUserProfile{};        ///< Whether others may see the profile.
  std::optional<User::DriverType> driverType{};  ///< How often, and for what, the user drives.
  std::optional<User::DataCollectionType> dataCollectionType{};  ///< What records the driving.
  std::optional<User::ScoringType> scoringType{};  ///< By whose method trips are scored.
  /// With what equipment the user takes part.
  std::optional<User::EnrollmentModelType> enrollmentModelType{};
};

/// The new values of an address; what is absent stays as it is.
struct ORVANE_EXPORT UserAddressUpdate {
  std::optional<std::string> city{};              ///< Name of the city.
  std::optional<std::string> subdivision{};       ///< Name of the state, province or region.
  std::optional<std::string> subdivisionCode{};   ///< The same as a code.
  std::optional<std::string> postalCode{};        ///< As it is written there.
  std::optional<std::string> country{};           ///< Name of the country.
  std::optional<std::string> countryCode{};       ///< The same as a code.
  std::optional<std::string> formattedAddress{};  ///< The whole address as a text.
};

/// Fetches users, and updates the one who is signed in.
class ORVANE_EXPORT UserService : public SerializableService {
 public:
  /// What the backend is asked to embed in a user.
  enum class Expansion : std::uint8_t {
    associatedUsers,
    sharedInformation,
    associatedAccount,
    customFields,
    role,
  };

  /// A service for the person who is signed in. A missing registration stops the process.
  explicit UserService(Identity identity) : SerializableService(std::move(identity)) {}

  /// Fetches the user with the given id, or the current one when it is absent.
  Operation<User> fetch(std::optional<std::string> id = {}, SetOf<Expansion> expansions = {}) const;
  RequestHandle fetch(std::optional<std::string> id, std::set<Expansion> expansions,
                      Completion<User> then) const;

  /// Updates the current user's profile and answers the updated user. A text that is not UTF-8
  /// fails with `DataError`, a day of birth that the device's calendar can't form with
  /// `NetworkError::malformedRequest`; nothing is sent then.
  Operation<User> update(UserUpdate update) const;
  RequestHandle update(UserUpdate update, Completion<User> then) const;

  /// Updates the current user's address and answers the updated user. A text that is not UTF-8
  /// fails with `DataError`.
  Operation<User> updateAddress(UserAddressUpdate update) const;
  RequestHandle updateAddress(UserAddressUpdate update, Completion<User> then) const;
};

template <>
struct EnumerationTable<UserService::Expansion> {
  using enum UserService::Expansion;
  static constexpr EnumerationCase<UserService::Expansion> cases[] = {
      {associatedUsers, "associatedUsers"},
      {sharedInformation, "sharedInformation"},
      {associatedAccount, "associatedAccount"},
      {customFields, "customFields"},
      {role, "role"},
  };
};

}  // namespace orvane
