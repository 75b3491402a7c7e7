// SPDX-License-Identifier: Apache-2.0
// The people of the programme: users, their accounts and roles.
#pragma once

#include <Orvane/Coding/CodableTypes.h>
#include <Orvane/Platform/Date.h>
#include <Orvane/Platform/DateComponents.h>
#include <Orvane/Platform/Enumeration.h>
#include <Orvane/Platform/Export.h>
#include <Orvane/Platform/Indirect.h>
#include <Orvane/Platform/OneOf.h>
#include <Orvane/Platform/URL.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orvane {

/// The account that users share.
struct ORVANE_EXPORT Account {
  std::optional<std::string> accountId{};  ///< The backend's identifier of the account.
  /// What the account is called elsewhere, as the backend tells it.
  std::optional<std::string> identifier{};

  ORVANE_EXPORT bool operator==(const Account& other) const noexcept;
};

/// What a user is allowed to do.
struct ORVANE_EXPORT UserRole {
  /// What a role is called. Another text on the wire fails the record.
  enum class RoleName : std::uint8_t {
    primaryDriver,
    secondaryDriver,
    roleAdmin,
    roleBusinessAdmin,
    roleBusinessUser,
    roleShipper,
    roleTier1Support,
    roleBusinessUserInternal,
    roleFleetDriver,
    roleFleetOperator,
    roleFleetAdmin,
  };

  std::optional<std::vector<RoleName>> roleNames{};  ///< The roles that are granted.
  /// Whether support staff may act for the user, as the backend words it.
  std::optional<std::string> supportAccessGranted{};

  ORVANE_EXPORT bool operator==(const UserRole& other) const noexcept;
};

/// A person taking part in the programme. Every member is absent where the backend did not tell it.
struct ORVANE_EXPORT User {
  /// The case of `Gender` that is "male" on the wire.
  struct Male {
    auto operator<=>(const Male&) const = default;
  };
  /// The case of `Gender` that is "female" on the wire.
  struct Female {
    auto operator<=>(const Female&) const = default;
  };
  /// The case of `Gender` that is any other text.
  struct CustomGender {
    std::string gender;  ///< The text, as it stands on the wire.
    [[nodiscard]] HashValue hashValue() const { return hashOf(gender); }
    ORVANE_EXPORT bool operator==(const CustomGender& other) const noexcept;
    /// By the bytes of the text.
    friend std::strong_ordering operator<=>(const CustomGender& left,
                                            const CustomGender& right) noexcept {
      return orderOf(left.gender, right.gender);
    }
  };

  /// Any text can be a gender: "male" and "female" are cases of their own.
  class Gender : public OneOf<Male, Female, CustomGender> {
   public:
    using OneOf::OneOf;
    /// "male" on the wire.
    [[nodiscard]] static Gender male() { return Male{}; }
    /// "female" on the wire.
    [[nodiscard]] static Gender female() { return Female{}; }
    /// Any text. One of the two above is read back as that case.
    [[nodiscard]] static Gender custom(std::string gender) {
      return CustomGender{std::move(gender)};
    }

    /// The case that a wire text stands for, compared exactly; any unlisted text is a custom one.
    [[nodiscard]] ORVANE_EXPORT static Gender fromWireText(std::string_view text);
    /// The text on the wire.
    [[nodiscard]] ORVANE_EXPORT std::string_view wireText() const noexcept;
  };

  /// How often, and for what, the user drives.
  enum class DriverType : std::uint8_t {
    weekend_driver,
    occasional_driver,
    frequent_driver,
    commuter,
    professional_driver,
  };

  /// What records the driving.
  enum class DataCollectionType : std::uint8_t { obd, mobile };

  /// By whose method trips are scored, as the backend names it.
  enum class ScoringType : std::uint8_t { ims, wtw };

  /// With what equipment the user takes part.
  enum class EnrollmentModelType : std::uint8_t { phone_only, wedge, obd };

  /// What the user is to the account.
  enum class AccountRole : std::uint8_t {
    primaryDriver,
    secondaryDriver,
    accountFleetManager,
    accountFleetDriver,
    unknown,
  };

  /// What a user shares with others. Distance, speed and score stand as the backend sends them,
  /// without a conversion.
  struct ORVANE_EXPORT SharedInformation {
    std::optional<std::string> facebookInfo{};     ///< What the person tells of an account there.
    std::optional<std::string> selfDescription{};  ///< What the person says of themselves.
    std::optional<double> totalDistanceDriven{};   ///< In the backend's unit.
    std::optional<std::string> city{};             ///< Name of the city.
    std::optional<std::string> subdivision{};      ///< Name of the state, province or region.
    std::optional<std::int64_t> age{};             ///< Years.
    std::optional<Gender> gender{};                ///< As in `User`.
    std::optional<double> utcActivationDateInMillis{};   ///< Milliseconds since 1970-01-01 UTC.
    std::optional<double> averageDrivingSpeedPerHour{};  ///< In the backend's unit.
    std::optional<double> overallScore{};                ///< In the backend's scale.
    std::optional<DriverType> driverType{};              ///< As in `User`.

    ORVANE_EXPORT bool operator==(const SharedInformation& other) const noexcept;
  };

  std::optional<std::string> id{};  ///< The backend's identifier of the user; "userId" on the wire.
  /// The identifier in the host's own system; "externalReferenceId" on the wire.
  std::optional<std::string> externalReferenceID{};
  std::optional<std::string> userProfileId{};  ///< The identifier of the profile.
  std::optional<bool> activated{};             ///< Whether the enrolment has been activated.
  /// Where a picture is. Absent, too, when the backend sent a text that is no URL.
  std::optional<URL> avatar{};
  std::optional<std::string> firstName{};  ///< Given name.
  std::optional<std::string> lastName{};   ///< Family name.
  /// Other users of the account; there when a request asked for them.
  std::optional<std::vector<User>> associatedUsers{};
  std::optional<Gender> gender{};  ///< Any text can be one.
  /// The name that others see; "publicDisplayName" on the wire.
  std::optional<std::string> displayName{};
  std::optional<std::string> city{};             ///< Name of the city.
  std::optional<std::string> subdivision{};      ///< Name of the state, province or region.
  std::optional<std::string> subdivisionCode{};  ///< The same as a code, as the backend has it.
  std::optional<std::string> postalCode{};       ///< "postalcode" on the wire.
  std::optional<std::string> country{};          ///< Name of the country.
  std::optional<std::string> countryCode{};      ///< The same as a code, as the backend has it.
  /// The whole address as a text, as the backend words it.
  std::optional<std::string> formattedAddress{};
  /// In the device's calendar. Present with nothing set when the backend sent a text that is no
  /// day.
  std::optional<DateComponents> dateOfBirth{};
  std::optional<std::string> email{};   ///< E-mail address.
  std::optional<std::string> phone{};   ///< Phone number.
  std::optional<bool> acceptedTerms{};  ///< Whether the user accepted the programme's terms.
  /// When they were accepted. Absent, too, when the backend sent no integer.
  std::optional<Date> acceptedTermsDate{};
  std::optional<std::string> selfDescription{};  ///< What the person says of themselves.
  std::optional<bool> shareUserProfile{};        ///< Whether others may see the profile.
  std::optional<DriverType> driverType{};        ///< How often, and for what, the user drives.
  std::optional<DataCollectionType> dataCollectionType{};  ///< What records the driving.
  std::optional<ScoringType> scoringType{};                ///< By whose method trips are scored.
  /// With what equipment the user takes part.
  std::optional<EnrollmentModelType> enrollmentModelType{};
  std::optional<AccountRole> accountRole{};  ///< What the user is to the account.
  /// There when a request asked for the role.
  Indirect<UserRole> userRole{};
  /// There when a request asked for it.
  Indirect<SharedInformation> sharedInformation{};
  /// There when a request asked for the associated account.
  Indirect<Account> account{};

  ORVANE_EXPORT bool operator==(const User& other) const noexcept;
};

/// The users of an account or vehicle by what they are to it. The members are named as on the wire.
struct ORVANE_EXPORT UsersByRole {
  std::optional<std::vector<User>> OPERATOR{};  ///< Those who drive.
  std::optional<std::vector<User>> OWNER{};     ///< Those whom it belongs to.

  ORVANE_EXPORT bool operator==(const UsersByRole& other) const noexcept;
};

template <>
struct EnumerationTable<UserRole::RoleName> {
  using enum UserRole::RoleName;
  static constexpr EnumerationCase<UserRole::RoleName> cases[] = {
      {primaryDriver, "ROLE_OWNER"},
      {secondaryDriver, "ROLE_OPERATOR"},
      {roleAdmin, "ROLE_ADMIN"},
      {roleBusinessAdmin, "ROLE_BUSINESS_ADMIN"},
      {roleBusinessUser, "ROLE_BUSINESS_USER"},
      {roleShipper, "ROLE_SHIPPER"},
      {roleTier1Support, "ROLE_TIER1_SUPPORT"},
      {roleBusinessUserInternal, "ROLE_BUSINESS_USER_INTERNAL"},
      {roleFleetDriver, "ROLE_FLEET_DRIVER"},
      {roleFleetOperator, "ROLE_FLEET_OPERATOR"},
      {roleFleetAdmin, "ROLE_FLEET_ADMIN"},
  };
  // The record's name, not the enumeration's: so the error has always read.
  static constexpr std::string_view reportedName = "UserRole";
  static constexpr bool isJSONText = true;
};

template <>
struct EnumerationTable<User::DriverType> {
  using enum User::DriverType;
  static constexpr EnumerationCase<User::DriverType> cases[] = {
      {weekend_driver, "WEEKEND_DRIVER"},           {occasional_driver, "OCCASIONAL_DRIVER"},
      {frequent_driver, "FREQUENT_DRIVER"},         {commuter, "COMMUTER"},
      {professional_driver, "PROFESSIONAL_DRIVER"},
  };
  static constexpr std::string_view reportedName = "DriverType";
  static constexpr bool isJSONText = true;
};

template <>
struct EnumerationTable<User::DataCollectionType> {
  using enum User::DataCollectionType;
  static constexpr EnumerationCase<User::DataCollectionType> cases[] = {{obd, "OBD"},
                                                                        {mobile, "MOBILE"}};
  static constexpr std::string_view reportedName = "DataCollectionType";
  static constexpr bool isJSONText = true;
};

template <>
struct EnumerationTable<User::ScoringType> {
  using enum User::ScoringType;
  static constexpr EnumerationCase<User::ScoringType> cases[] = {{ims, "IMS"}, {wtw, "WTW"}};
  static constexpr std::string_view reportedName = "ScoringType";
  static constexpr bool isJSONText = true;
};

template <>
struct EnumerationTable<User::EnrollmentModelType> {
  using enum User::EnrollmentModelType;
  static constexpr EnumerationCase<User::EnrollmentModelType> cases[] = {
      {phone_only, "MOBILE_FLEXIBLE"}, {wedge, "MOBILE_WITH_VEHICLE_IDENTIFIER"}, {obd, "OBD"}};
  static constexpr std::string_view reportedName = "EnrollmentModelType";
  static constexpr bool isJSONText = true;
};

template <>
struct EnumerationTable<User::AccountRole> {
  using enum User::AccountRole;
  static constexpr EnumerationCase<User::AccountRole> cases[] = {
      {primaryDriver, "OWNER"},
      {secondaryDriver, "OPERATOR"},
      {accountFleetManager, "FLEET_MANAGER"},
      {accountFleetDriver, "FLEET_DRIVER"},
      {unknown, "UNKNOWN"},
  };
  static constexpr std::string_view reportedName = "AccountRole";
  static constexpr bool isJSONText = true;
};

template <>
inline constexpr bool hasCoding<Account> = true;
template <>
inline constexpr bool hasCoding<UserRole> = true;
template <>
inline constexpr bool hasCoding<User::SharedInformation> = true;
template <>
inline constexpr bool hasCoding<User> = true;
template <>
inline constexpr bool hasCoding<UsersByRole> = true;

}  // namespace orvane
