// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Coding/Codable.h>
#include <Orvane/Models/Coders.h>
#include <Orvane/Models/User.h>
#include <Orvane/Platform/Calendar.h>

namespace orvane {
namespace {

constexpr std::string_view male = "male";
constexpr std::string_view female = "female";

// A text that is no URL leaves the member absent.
struct URLText {
  using Wire = std::string_view;
  static std::optional<URL> fromWire(Wire text) { return URL::parse(text); }
  static std::string_view toWire(const URL& url) { return url.absoluteString(); }
};

// A text that is no day leaves the components empty; anything but a text leaves the member absent.
struct DayText {
  using Wire = std::string_view;
  static constexpr bool isLenient = true;
  static DateComponents fromWire(Wire text) { return parseDay(text).value_or(DateComponents{}); }
  static std::optional<std::string> toWire(const DateComponents& day) { return dayText(day); }
};

struct GenderText {
  using Wire = std::string_view;
  static User::Gender fromWire(Wire text) { return User::Gender::fromWireText(text); }
  static std::string_view toWire(const User::Gender& gender) { return gender.wireText(); }
};

// Anything but an integer leaves the member absent.
struct LenientMilliseconds : Milliseconds {
  static constexpr bool isLenient = true;
};

constexpr KeyRow accountKeys[] = {
    key<&Account::accountId>("accountId"),
    key<&Account::identifier>("identifier"),
};

constexpr KeyRow roleKeys[] = {
    key<&UserRole::roleNames>("roleNames"),
    key<&UserRole::supportAccessGranted>("supportAccessGranted"),
};

using SharedInformation = User::SharedInformation;
constexpr KeyRow sharedInformationKeys[] = {
    key<&SharedInformation::facebookInfo>("facebookInfo"),
    key<&SharedInformation::selfDescription>("selfDescription"),
    key<&SharedInformation::totalDistanceDriven>("totalDistanceDriven"),
    key<&SharedInformation::city>("city"),
    key<&SharedInformation::subdivision>("subdivision"),
    key<&SharedInformation::age>("age"),
    key<&SharedInformation::gender, GenderText>("gender"),
    key<&SharedInformation::utcActivationDateInMillis>("utcActivationDateInMillis"),
    key<&SharedInformation::averageDrivingSpeedPerHour>("averageDrivingSpeedPerHour"),
    key<&SharedInformation::overallScore>("overallScore"),
    key<&SharedInformation::driverType>("driverType"),
};

constexpr KeyRow userKeys[] = {
    key<&User::id>("userId"),
    key<&User::externalReferenceID>("externalReferenceId"),
    key<&User::userProfileId>("userProfileId"),
    key<&User::activated>("activated"),
    key<&User::avatar, URLText>("avatar"),
    key<&User::firstName>("firstName"),
    key<&User::lastName>("lastName"),
    key<&User::associatedUsers>("associatedUsers"),
    key<&User::gender, GenderText>("gender"),
    key<&User::displayName>("publicDisplayName"),
    key<&User::city>("city"),
    key<&User::subdivision>("subdivision"),
    key<&User::subdivisionCode>("subdivisionCode"),
    key<&User::postalCode>("postalcode"),
    key<&User::country>("country"),
    key<&User::countryCode>("countryCode"),
    key<&User::formattedAddress>("formattedAddress"),
    key<&User::dateOfBirth, DayText>("dateOfBirth"),
    key<&User::email>("email"),
    key<&User::phone>("phone"),
    key<&User::acceptedTerms>("acceptedTerms"),
    key<&User::acceptedTermsDate, LenientMilliseconds>("acceptedTermsDate"),
    key<&User::selfDescription>("selfDescription"),
    key<&User::shareUserProfile>("shareUserProfile"),
    key<&User::driverType>("driverType"),
    key<&User::dataCollectionType>("dataCollectionType"),
    key<&User::scoringType>("scoringType"),
    key<&User::enrollmentModelType>("enrollmentModelType"),
    key<&User::accountRole>("accountRole"),
    key<&User::userRole>("userRole"),
    key<&User::sharedInformation>("sharedInformation"),
    key<&User::account>("account"),
};

constexpr KeyRow usersByRoleKeys[] = {
    key<&UsersByRole::OPERATOR>("OPERATOR"),
    key<&UsersByRole::OWNER>("OWNER"),
};

}  // namespace

User::Gender User::Gender::fromWireText(std::string_view text) {
  if (text == orvane::male) return Male{};
  if (text == orvane::female) return Female{};
  return CustomGender{std::string(text)};
}

std::string_view User::Gender::wireText() const noexcept {
  if (is<Male>()) return orvane::male;
  if (is<Female>()) return orvane::female;
  return as<CustomGender>()->gender;
}

KeyTables keysOf(RecordTag<Account>) { return accountKeys; }
KeyTables keysOf(RecordTag<UserRole>) { return roleKeys; }
KeyTables keysOf(RecordTag<User::SharedInformation>) { return sharedInformationKeys; }
KeyTables keysOf(RecordTag<User>) { return userKeys; }
KeyTables keysOf(RecordTag<UsersByRole>) { return usersByRoleKeys; }

template struct RecordCoding<Account>;
template struct RecordCoding<std::vector<Account>>;
template struct RecordCoding<UserRole>;
template struct RecordCoding<std::vector<UserRole>>;
template struct RecordCoding<User::SharedInformation>;
template struct RecordCoding<std::vector<User::SharedInformation>>;
template struct RecordCoding<User>;
template struct RecordCoding<std::vector<User>>;
template struct RecordCoding<UsersByRole>;
template struct RecordCoding<std::vector<UsersByRole>>;

bool Account::operator==(const Account&) const noexcept = default;
bool UserRole::operator==(const UserRole&) const noexcept = default;
bool User::CustomGender::operator==(const User::CustomGender&) const noexcept = default;
bool User::SharedInformation::operator==(const User::SharedInformation&) const noexcept = default;
bool User::operator==(const User&) const noexcept = default;
bool UsersByRole::operator==(const UsersByRole&) const noexcept = default;

}  // namespace orvane
