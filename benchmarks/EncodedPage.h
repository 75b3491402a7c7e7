// SPDX-License-Identifier: Apache-2.0
// Encoding a page of records, beside the writers of RapidJSON and nlohmann/json, which find the
// same text in documents that are ready for them.
#pragma once

#include <Orvane/Orvane.h>

#include <benchmark/benchmark.h>
#include <nlohmann/json.hpp>
#include <rapidjson/document.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <cstdint>
#include <string>
#include <vector>

/// The records of a page, and the text that is written of them: a record does not write all that it
/// reads.
template <class Record>
struct EncodedPage {
  explicit EncodedPage(const std::string& page)
      : records(*orvane::decode<std::vector<Record>>(page).value()),
        text(*orvane::encode(records).value()) {}

  const std::vector<Record> records;
  const std::string text;
};

template <class Page>
void reportSpeed(benchmark::State& state, const Page& page) {
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(page.text.size()));
}

template <class Page>
void encodeRecords(benchmark::State& state, const Page& page) {
  for (auto _ : state) {
    auto encoded = orvane::encode(page.records);
    if (!encoded) state.SkipWithError("not encoded");
    benchmark::DoNotOptimize(encoded);
  }
  reportSpeed(state, page);
}

template <class Page>
void writeWithRapidJSON(benchmark::State& state, const Page& page) {
  rapidjson::Document document;
  document.Parse(page.text.c_str(), page.text.size());
  for (auto _ : state) {
    rapidjson::StringBuffer buffer;
    rapidjson::Writer writer(buffer);
    document.Accept(writer);
    benchmark::DoNotOptimize(buffer.GetString());
  }
  reportSpeed(state, page);
}

template <class Page>
void writeWithNlohmann(benchmark::State& state, const Page& page) {
  const auto document = nlohmann::ordered_json::parse(page.text);
  for (auto _ : state) {
    auto written = document.dump();
    benchmark::DoNotOptimize(written);
  }
  reportSpeed(state, page);
}
