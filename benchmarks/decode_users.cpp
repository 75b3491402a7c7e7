// SPDX-License-Identifier: Apache-2.0
// Decoding a page of 1,000 users: into records, beside the bare parse of the same text and the
// usual hand-written way with nlohmann/json.
#include <Orvane/Orvane.h>

#include <benchmark/benchmark.h>
#include <nlohmann/json.hpp>
#include <simdjson.h>

#include <string>

namespace {

using orvane::User;

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

void reportSpeed(benchmark::State& state) {
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(page().size()));
}

void decodeUsers(benchmark::State& state) {
  for (auto _ : state) {
    auto users = orvane::decode<std::vector<User>>(page());
    if (!users || users.value()->size() != usersOnAPage) state.SkipWithError("not decoded");
    benchmark::DoNotOptimize(users);
  }
  reportSpeed(state);
}
BENCHMARK(decodeUsers);

void parseUsersWithSimdjson(benchmark::State& state) {
  const simdjson::padded_string text(page());
  simdjson::dom::parser parser;
  for (auto _ : state) {
    simdjson::dom::element root;
    if (parser.parse(text).get(root) != simdjson::SUCCESS) state.SkipWithError("not parsed");
    benchmark::DoNotOptimize(root);
  }
  reportSpeed(state);
}
BENCHMARK(parseUsersWithSimdjson);

// What an application writes by hand: the parse, and a few lines per member.
void decodeUsersWithNlohmann(benchmark::State& state) {
  using nlohmann::json;
  const auto text = [](const json& object, const char* key) -> std::optional<std::string> {
    const auto member = object.find(key);
    if (member == object.end() || member->is_null()) return std::nullopt;
    return member->get<std::string>();
  };
  for (auto _ : state) {
    std::vector<User> users;
    for (const json& object : json::parse(page())) {
      User& user = users.emplace_back();
      user.id = text(object, "userId");
      user.externalReferenceID = text(object, "externalReferenceId");
      user.userProfileId = text(object, "userProfileId");
      user.firstName = text(object, "firstName");
      user.lastName = text(object, "lastName");
      user.displayName = text(object, "publicDisplayName");
      user.city = text(object, "city");
      user.subdivision = text(object, "subdivision");
      user.subdivisionCode = text(object, "subdivisionCode");
      user.postalCode = text(object, "postalcode");
      user.country = text(object, "country");
      user.countryCode = text(object, "countryCode");
      user.formattedAddress = text(object, "formattedAddress");
      user.email = text(object, "email");
      user.phone = text(object, "phone");
      user.selfDescription = text(object, "selfDescription");
      user.activated = object.at("activated").get<bool>();
      user.acceptedTerms = object.at("acceptedTerms").get<bool>();
      user.acceptedTermsDate =
          orvane::dateFromMilliseconds(object.at("acceptedTermsDate").get<std::int64_t>());
    }
    benchmark::DoNotOptimize(users);
  }
  reportSpeed(state);
}
BENCHMARK(decodeUsersWithNlohmann);

}  // namespace
