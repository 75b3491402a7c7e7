// SPDX-License-Identifier: Apache-2.0
// Encoding 1,000 users: from records, beside the writers of RapidJSON and nlohmann/json, which
// find the same text in documents that are ready for them.
#include "benchmarks/UsersPage.h"
#include <Orvane/Orvane.h>

#include <benchmark/benchmark.h>
#include <nlohmann/json.hpp>
#include <rapidjson/document.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <string>
#include <vector>

namespace {

using orvane::User;

const std::vector<User>& users() {
  static const auto users = *orvane::decode<std::vector<User>>(page()).value();
  return users;
}

// A record does not write all that it reads.
const std::string& text() {
  static const auto text = *orvane::encode(users()).value();
  return text;
}

void reportSpeed(benchmark::State& state) {
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text().size()));
}

void encodeUsers(benchmark::State& state) {
  for (auto _ : state) {
    auto encoded = orvane::encode(users());
    if (!encoded) state.SkipWithError("not encoded");
    benchmark::DoNotOptimize(encoded);
  }
  reportSpeed(state);
}
BENCHMARK(encodeUsers);

void writeUsersWithRapidJSON(benchmark::State& state) {
  rapidjson::Document document;
  document.Parse(text().c_str(), text().size());
  for (auto _ : state) {
    rapidjson::StringBuffer buffer;
    rapidjson::Writer writer(buffer);
    document.Accept(writer);
    benchmark::DoNotOptimize(buffer.GetString());
  }
  reportSpeed(state);
}
BENCHMARK(writeUsersWithRapidJSON);

void writeUsersWithNlohmann(benchmark::State& state) {
  const auto document = nlohmann::ordered_json::parse(text());
  for (auto _ : state) {
    auto written = document.dump();
    benchmark::DoNotOptimize(written);
  }
  reportSpeed(state);
}
BENCHMARK(writeUsersWithNlohmann);

}  // namespace
