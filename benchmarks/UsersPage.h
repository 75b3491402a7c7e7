// SPDX-License-Identifier: Apache-2.0
// A page of 1,000 users, as text.
#pragma once

#include <nlohmann/json.hpp>

#include <string>

namespace {

constexpr int usersOnAPage = 1000;

std::string pageOfUsers() {
  nlohmann::ordered_json page = nlohmann::ordered_json::array();
  for (int i = 0; i < usersOnAPage; ++i) {
    const std::string number = std::to_string(i);
    page.push_back({
        {"userId", "1000" + number},
        {"externalReferenceId", "policy-2024-" + number},
        {"userProfileId", "profile-" + number},
        {"activated", i % 7 != 0},
        {"avatar", "https://images.example/avatars/" + number + ".jpg"},
        {"firstName", "Ann-Sophie"},
        {"lastName", "Müller"},
        {"gender", i % 2 == 0 ? "female" : "male"},
        {"publicDisplayName", "ann" + number},
        {"city", "Zürich"},
        {"subdivision", "Zürich"},
        {"subdivisionCode", "ZH"},
        {"postalcode", "8001"},
        {"country", "Switzerland"},
        {"countryCode", "CH"},
        {"formattedAddress", "Bahnhofstrasse 1, 8001 Zürich, Switzerland"},
        {"dateOfBirth", "1987-0" + std::to_string(1 + i % 9) + "-15"},
        {"email", "ann" + number + "@mail.example"},
        {"phone", "+41 44 000 00 00"},
        {"acceptedTerms", true},
        {"acceptedTermsDate", 1700000000000 + i},
        {"selfDescription", "I drive to work and, at weekends, into the mountains."},
        {"shareUserProfile", true},
        {"driverType", "COMMUTER"},
        {"dataCollectionType", "MOBILE"},
        {"scoringType", "IMS"},
        {"enrollmentModelType", "MOBILE_FLEXIBLE"},
        {"accountRole", "OWNER"},
        {"userRole", {{"roleNames", {"ROLE_OWNER"}}, {"supportAccessGranted", "false"}}},
        {"account", {{"accountId", "A" + number}, {"identifier", "household"}}},
    });
  }
  return page.dump();
}

const std::string& page() {
  static const std::string text = pageOfUsers();
  return text;
}

}  // namespace
