// SPDX-License-Identifier: Apache-2.0
// What tests ask of every record: how it is read, written and refused.
#pragma once

#include <Orvane/Coding/Coding.h>
#include <Orvane/GoogleTest.h>
#include <Orvane/Platform/Enumeration.h>

#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>

namespace orvane {

/// Why and where a text is no `T`, as "typeMismatch user.driverType"; "none" where it is one.
template <class T>
[[nodiscard]] std::string failure(std::string_view json) {
  constexpr const char* kinds[] = {"malformedText", "typeMismatch", "valueNotFound", "keyNotFound",
                                   "dataCorrupted"};
  const Result<T> result = decode<T>(json);
  if (!result.error()) return "none";
  const auto& error = *result.error()->template as<DecodingError>();
  const std::string kind = kinds[static_cast<std::size_t>(error.kind)];
  return error.location.empty() ? kind : kind + ' ' + error.location;
}

/// Expects the text to be read as the record, and the record to be written as the text.
template <class T>
void expectMirrored(std::string_view json, const T& record) {
  EXPECT_EQ(decode<T>(json), Result<T>(record)) << json;
  EXPECT_EQ(encode(record), Result<std::string>(std::string(json)));
}

/// Expects that a record, whose text this is, can't do without these members, nor with null there.
template <class T>
void expectNeeds(std::string_view json, std::initializer_list<std::string> keys) {
  ASSERT_EQ(failure<T>(json), "none");
  for (const std::string& key : keys) {
    std::string without(json);
    without.replace(without.find('"' + key + '"') + 1, key.size(), "renamed");
    EXPECT_EQ(failure<T>(without), "keyNotFound " + key);
    std::string withNull(json);
    withNull.replace(withNull.rfind('}'), 1, ",\"" + key + "\":null}");
    EXPECT_EQ(failure<T>(withNull), "valueNotFound " + key);
  }
}

/// The texts of an enumeration's cases in the order of their numbers, a blank between them.
template <Enumeration E>
[[nodiscard]] std::string wireTexts() {
  std::string texts;
  for (std::size_t raw = 0; raw < std::size(allCases<E>()); ++raw) {
    const std::optional<E> value = fromRawValue<E>(static_cast<std::int64_t>(raw));
    if (!value) return texts + " (no case " + std::to_string(raw) + ')';
    EXPECT_EQ(fromWireText<E>(wireText(*value)), value) << "two cases have one text";
    texts.append(raw == 0 ? "" : " ").append(wireText(*value));
  }
  return texts;
}

}  // namespace orvane
