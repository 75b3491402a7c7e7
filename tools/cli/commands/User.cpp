// SPDX-License-Identifier: Apache-2.0
// orvane user: the people of the programme.
#include "Commands.h"
#include <Orvane/Services/User/UserService.h>

namespace orvane::cli {
namespace {

Block profileOf(const User& user) {
  return Block()
      .row("id", user.id)
      .row("display name", user.displayName)
      .row("first name", user.firstName)
      .row("last name", user.lastName)
      .row("e-mail", user.email)
      .row("phone", user.phone)
      .row("gender", user.gender)
      .row("date of birth", user.dateOfBirth)
      .row("self-description", user.selfDescription)
      .row("avatar", user.avatar)
      .row("activated", user.activated)
      .row("terms accepted", user.acceptedTerms)
      .row("terms accepted on", user.acceptedTermsDate)
      .row("profile shared", user.shareUserProfile)
      .row("driver type", user.driverType)
      .row("data collection", user.dataCollectionType)
      .row("scoring", user.scoringType)
      .row("enrolment model", user.enrollmentModelType)
      .row("account role", user.accountRole)
      .row("external reference", user.externalReferenceID)
      .row("profile id", user.userProfileId);
}

Block addressOf(const User& user) {
  return Block()
      .row("city", user.city)
      .row("subdivision", user.subdivision)
      .row("subdivision code", user.subdivisionCode)
      .row("postal code", user.postalCode)
      .row("country", user.country)
      .row("country code", user.countryCode)
      .row("formatted", user.formattedAddress);
}

Block accountOf(const Account& account) {
  return Block().row("id", account.accountId).row("identifier", account.identifier);
}

Block roleOf(const UserRole& role) {
  // The backend sends "true" and "false" as texts.
  const auto answer = [](const std::string& text) {
    const auto granted = Argument<bool>::parse(text);
    return granted ? toText(*granted) : text;
  };
  return Block()
      .row("names", role.roleNames)
      .row("support access", role.supportAccessGranted, answer);
}

Block sharedOf(const User::SharedInformation& shared) {
  return Block()
      .row("facebook", shared.facebookInfo)
      .row("self-description", shared.selfDescription)
      .row("distance driven", shared.totalDistanceDriven)
      .row("city", shared.city)
      .row("subdivision", shared.subdivision)
      .row("age", shared.age)
      .row("gender", shared.gender)
      .row("activated on", shared.utcActivationDateInMillis, dateOfMilliseconds)
      .row("average speed", shared.averageDrivingSpeedPerHour)
      .row("overall score", shared.overallScore)
      .row("driver type", shared.driverType);
}

Table tableOf(const std::vector<User>& users) {
  return {"users",
          users,
          {{"id", &User::id},
           {"display name", &User::displayName},
           {"first name", &User::firstName, 2},
           {"last name", &User::lastName, 2},
           {"e-mail", &User::email, 3},
           {"role", &User::accountRole, 1}}};
}

struct AnswersUser {
  static void print(const User& user, Output& output) {
    output.block(profileOf(user));
    output.section("address", addressOf(user));
    if (user.account) output.section("account", accountOf(*user.account));
    if (user.userRole) output.section("role", roleOf(*user.userRole));
    if (user.sharedInformation) output.section("shared", sharedOf(*user.sharedInformation));
    if (user.associatedUsers) output.section("associated users", tableOf(*user.associatedUsers));
  }
};

struct ShowUser : AnswersUser {
  static constexpr std::string_view name = "show";
  static constexpr std::string_view summary = "Show a user";
  static constexpr Example examples[] = {
      {"user show", "the person who is signed in"},
      {"user show 1001 --expand role,associatedAccount", "someone else, with role and account"},
      {"user show --json | jq .publicDisplayName", "one member of the record"},
  };

  std::optional<UserID> id;
  std::set<UserService::Expansion> expansions;

  void declare(Options& options) {
    options.positional("ID", id, "The user; left out, the person who is signed in");
    options.option("--expand", expansions,
                   "What to embed in the user: customFields are in --json alone, the library does "
                   "not read them");
  }

  Operation<User> ask(Session& session) const {
    const auto user = id ? std::optional(id->text) : std::nullopt;
    return UserService(session.identity()).fetch(user, expansions);
  }
};

struct UpdateUser : AnswersUser {
  static constexpr std::string_view name = "update";
  static constexpr std::string_view summary = "Change the profile of the person who is signed in";
  static constexpr Example examples[] = {
      {"user update --display-name Ann --share-user-profile yes", "two fields, the rest stays"},
      {"user update --self-description ''", "an empty text clears a field"},
  };

  UserUpdate update;

  void declare(Options& options) {
    options.option("--display-name", update.displayName, "What others see");
    options.option("--first-name", update.firstName, "First name");
    options.option("--last-name", update.lastName, "Last name");
    options.option("--email", update.email, "E-mail address");
    options.option("--phone", update.phone, "Phone number");
    options.option("--gender", update.gender, "Gender, any text");
    options.option("--date-of-birth", update.dateOfBirth, "Date of birth");
    options.option("--postal-code", update.postalCode, "Postal code");
    options.option("--avatar", update.avatar, "Address of a picture");
    options.option("--self-description", update.selfDescription, "A few words");
    options.option("--share-user-profile", update.shareUserProfile, "Whether others see it");
    options.option("--driver-type", update.driverType, "How the person drives");
    options.option("--data-collection-type", update.dataCollectionType, "What records trips");
    options.option("--scoring-type", update.scoringType, "How trips are scored");
    options.option("--enrollment-model-type", update.enrollmentModelType, "The equipment");
    options.atLeastOne();
  }

  Operation<User> ask(const UserService& service) const { return service.update(update); }
};

struct UpdateAddress : AnswersUser {
  static constexpr std::string_view name = "address";
  static constexpr std::string_view summary = "Change the address of the person who is signed in";
  static constexpr Example examples[] = {
      {"user address --city Bern --postal-code 3011 --country-code CH", "the rest stays"},
  };

  UserAddressUpdate update;

  void declare(Options& options) {
    options.option("--city", update.city, "City");
    options.option("--subdivision", update.subdivision, "State, province or region");
    options.option("--subdivision-code", update.subdivisionCode, "Its code");
    options.option("--postal-code", update.postalCode, "Postal code");
    options.option("--country", update.country, "Country");
    options.option("--country-code", update.countryCode, "Its code of two letters");
    options.option("--formatted-address", update.formattedAddress, "The address in one text");
    options.atLeastOne();
  }

  Operation<User> ask(const UserService& service) const { return service.updateAddress(update); }
};

}  // namespace

Resource userCommands() {
  return Resource("user", "The people of the programme")
      .add<ShowUser>()
      .add<UpdateUser>()
      .add<UpdateAddress>();
}

}  // namespace orvane::cli
