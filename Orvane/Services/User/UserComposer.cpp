// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Common/NetworkError.h>
#include <Orvane/Core/Parameter.h>
#include <Orvane/Platform/Calendar.h>
#include <Orvane/Platform/Text.h>
#include <Orvane/Services/User/UserComposer.h>

namespace orvane {
namespace {

// Collects the fields of a form; an absent value makes none.
class Form {
 public:
  Form& add(std::string key, std::optional<std::string> value) {
    if (value) fields_.emplace_back(parameter::String{std::move(key), *std::move(value)});
    return *this;
  }
  Form& add(std::string key, const std::optional<bool>& value) {
    if (value) fields_.emplace_back(parameter::Bool{std::move(key), *value});
    return *this;
  }
  template <Enumeration E>
  Form& add(std::string key, const std::optional<E>& value) {
    if (value)
      fields_.emplace_back(parameter::String{std::move(key), std::string(wireText(*value))});
    return *this;
  }

  [[nodiscard]] Result<RequestBody> body() const { return multipartBody(fields_); }

 private:
  std::vector<Parameter> fields_;
};

std::optional<std::string> wireTextOf(const std::optional<User::Gender>& gender) {
  if (!gender) return std::nullopt;
  return std::string(gender->wireText());
}

Result<RequestBody> formOf(const UserUpdate& update) {
  std::optional<std::string> dateOfBirth;
  if (update.dateOfBirth) {
    dateOfBirth = dayText(*update.dateOfBirth);
    // Without it everything else would be changed, as if all had been.
    if (!dateOfBirth) return NetworkError::malformedRequest;
  }
  return Form()
      .add("publicDisplayName", update.displayName)
      .add("postalcode", update.postalCode)
      .add("avatar", update.avatar)
      .add("gender", wireTextOf(update.gender))
      .add("dateOfBirth", std::move(dateOfBirth))
      .add("firstName", update.firstName)
      .add("lastName", update.lastName)
      .add("email", update.email)
      .add("phone", update.phone)
      .add("selfDescription", update.selfDescription)
      .add("shareUserProfile", update.shareUserProfile)
      .add("driverType", update.driverType)
      .add("dataCollectionType", update.dataCollectionType)
      .add("scoringType", update.scoringType)
      .add("enrollmentModelType", update.enrollmentModelType)
      .body();
}

Result<RequestBody> formOf(const UserAddressUpdate& update) {
  return Form()
      .add("city", update.city)
      .add("subdivision", update.subdivision)
      .add("subdivisionCode", update.subdivisionCode)
      .add("postalcode", update.postalCode)
      .add("country", update.country)
      .add("countryCode", update.countryCode)
      .add("formattedAddress", update.formattedAddress)
      .body();
}

std::string userPath(std::string_view userID) { return concatenated({"users/", userID}); }

}  // namespace

std::string UserComposer::path(std::string_view userID) const {
  const auto* other = std::get_if<Other>(&requestType);
  return userPath(other != nullptr ? other->otherID : userID);
}

std::optional<std::string> UserComposer::query() const {
  QueryItems items;
  for (const UserService::Expansion expansion : expansions) {
    items.add("expand", wireText(expansion));
  }
  return std::move(items).joined();
}

std::optional<Result<RequestBody>> UserComposer::body() const {
  const auto* update = std::get_if<Update>(&requestType);
  if (update == nullptr) return std::nullopt;
  return formOf(*update);
}

std::string UserAddressComposer::path(std::string_view userID) const { return userPath(userID); }

std::optional<Result<RequestBody>> UserAddressComposer::body() const { return formOf(requestType); }

}  // namespace orvane
