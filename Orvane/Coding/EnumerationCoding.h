// SPDX-License-Identifier: Apache-2.0
// The coding of enumerations that are a text on the wire, made from their tables.
#pragma once

#include <Orvane/Coding/CodableTypes.h>
#include <Orvane/Platform/Export.h>
#include <Orvane/Platform/Result.h>

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace orvane {

/// The coding of an enumeration or of a list of them; call `decode`, `encode` and `encodeChecked`.
template <class T>
struct EnumerationCoding;

namespace detail {

/// Where the texts of an enumeration go, without its type.
struct TextReader {
  void* target;
  /// False where the text stands for no case.
  bool (*take)(void* target, std::string_view text);
  std::string_view reportedName;
};

/// Reads the one text of a JSON text, or the texts of an array. Answers why it could not.
[[nodiscard]] ORVANE_EXPORT std::optional<Error> readText(std::string_view json,
                                                          const TextReader& reader);
[[nodiscard]] ORVANE_EXPORT std::optional<Error> readTexts(std::string_view json,
                                                           const TextReader& reader);

[[nodiscard]] ORVANE_EXPORT Result<std::string> writeText(std::string_view text);
[[nodiscard]] ORVANE_EXPORT Result<std::string> writeTexts(std::span<const std::string_view> texts);

}  // namespace detail

/// An enumeration is one JSON text.
template <TextEnumeration E>
struct EnumerationCoding<E> {
  /// See `orvane::decode`.
  [[nodiscard]] static Result<E> decode(std::string_view json) {
    std::optional<E> value;
    const auto take = [](void* target, std::string_view text) {
      auto& read = *static_cast<std::optional<E>*>(target);
      read = readWireText<E>(text);
      return read.has_value();
    };
    if (auto error = detail::readText(json, {&value, take, reportedName<E>()})) return *error;
    return *std::move(value);
  }
  /// See `orvane::encode`.
  [[nodiscard]] static Result<std::string> encode(const E& value) {
    return detail::writeText(textOnTheWire(value));
  }
  /// No value of an enumeration is a programming fault to write.
  [[nodiscard]] static Result<std::string> encodeChecked(const E& value) { return encode(value); }
};

/// A list is a JSON array of texts.
template <TextEnumeration E>
struct EnumerationCoding<std::vector<E>> {
  /// See `orvane::decode`.
  [[nodiscard]] static Result<std::vector<E>> decode(std::string_view json) {
    std::vector<E> values;
    const auto take = [](void* target, std::string_view text) {
      auto value = readWireText<E>(text);
      if (!value) return false;
      static_cast<std::vector<E>*>(target)->push_back(*std::move(value));
      return true;
    };
    if (auto error = detail::readTexts(json, {&values, take, reportedName<E>()})) return *error;
    return values;
  }
  /// See `orvane::encode`.
  [[nodiscard]] static Result<std::string> encode(const std::vector<E>& values) {
    std::vector<std::string_view> texts;
    texts.reserve(values.size());
    for (const E& value : values) texts.push_back(textOnTheWire(value));
    return detail::writeTexts(texts);
  }
  /// No value of an enumeration is a programming fault to write.
  [[nodiscard]] static Result<std::string> encodeChecked(const std::vector<E>& values) {
    return encode(values);
  }
};

}  // namespace orvane
