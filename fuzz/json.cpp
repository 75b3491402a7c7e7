// SPDX-License-Identifier: Apache-2.0
// Any bytes as a JSON text: what is one and what is none, and which doubles its numbers are, is
// what nlohmann/json says.
#include <Orvane/Platform/JSON.h>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

namespace {

// Counts brackets in texts, too: a text that may nest too deep is left out.
bool mayNestTooDeep(const std::string& text) {
  const auto brackets =
      std::count_if(text.begin(), text.end(), [](char c) { return c == '[' || c == '{'; });
  return static_cast<std::size_t>(brackets) > orvane::json::deepestNesting;
}

void compareNumbers(orvane::json::Element element, const nlohmann::json& expected) {
  double number = 0;
  if (element.get(number) != simdjson::SUCCESS) return;
  if (!expected.is_number() || expected.get<double>() != number) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string text(reinterpret_cast<const char*>(data), size);
  // A NUL ends a text there.
  if (text.find('\0') != std::string::npos || mayNestTooDeep(text)) return 0;
  const auto expected = nlohmann::json::parse(text, nullptr, /*allow_exceptions=*/false);

  const orvane::json::Document document(text);
  if (document.isValid() == expected.is_discarded()) std::abort();
  if (!document.isValid()) return 0;

  compareNumbers(document.root(), expected);
  orvane::json::Array array;
  if (document.root().get(array) != simdjson::SUCCESS) return 0;
  std::size_t index = 0;
  for (const orvane::json::Element entry : array) compareNumbers(entry, expected[index++]);
  return 0;
}
