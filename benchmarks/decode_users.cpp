// SPDX-License-Identifier: Apache-2.0
// Decoding a page of 1,000 users: into records, beside the bare parse of the same text and the
// usual hand-written way with nlohmann/json.
#include "benchmarks/UsersPage.h"
#include <Orvane/Orvane.h>

#include <benchmark/benchmark.h>
#include <nlohmann/json.hpp>
#include <simdjson.h>

#include <string>

namespace {

using orvane::User;

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
