// SPDX-License-Identifier: Apache-2.0
//
// Writes JSON straight into one text. Answers are put together from columns and from fragments that
// were rendered when the data was laid, so no tree of values is built on the way.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace orvane::sandbox {

class JsonWriter {
 public:
  [[nodiscard]] const std::string& text() const { return out_; }
  [[nodiscard]] std::string take() { return std::move(out_); }

  JsonWriter& beginObject() { return open('{'); }
  JsonWriter& endObject() { return close('}'); }
  JsonWriter& beginArray() { return open('['); }
  JsonWriter& endArray() { return close(']'); }

  JsonWriter& key(std::string_view name);

  JsonWriter& value(std::string_view text);
  JsonWriter& value(const char* text) { return value(std::string_view{text}); }
  template <std::integral Number>
  JsonWriter& value(Number number) {
    return integer(static_cast<std::int64_t>(number));
  }
  JsonWriter& value(double number);  ///< the shortest text that reads back; NaN is written as null
  JsonWriter& value(bool truth) { return raw(truth ? "true" : "false"); }
  JsonWriter& null() { return raw("null"); }
  JsonWriter& raw(std::string_view json);  ///< a value that is JSON already

  template <class T>
  JsonWriter& member(std::string_view name, const T& item) {
    return key(name).value(item);
  }
  /// Writes nothing when the value is absent.
  template <class T>
  JsonWriter& member(std::string_view name, const std::optional<T>& item) {
    return item ? key(name).value(*item) : *this;
  }
  JsonWriter& rawMember(std::string_view name, std::string_view json) {
    return key(name).raw(json);
  }

 private:
  JsonWriter& integer(std::int64_t number);
  JsonWriter& open(char bracket);
  JsonWriter& close(char bracket);
  void separate();
  void quote(std::string_view text);

  std::string out_;
};

}  // namespace orvane::sandbox
