// SPDX-License-Identifier: Apache-2.0
// Private header: not installed.
// The writer of JSON texts.
#pragma once

#include <Orvane/Platform/Export.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

namespace orvane::json {

/// Writes one JSON text, members in the order of the calls.
class ORVANE_EXPORT Writer {
 public:
  /// What happens with a value that only a programming fault can have put there.
  enum class Faults : std::uint8_t { stopTheProcess, areFailures };

  explicit Writer(Faults faults = Faults::stopTheProcess) : faults_(faults) {}

  void beginObject() { open('{'); }
  void endObject() { text_ += '}'; }
  void beginArray() { open('['); }
  void endArray() { text_ += ']'; }
  void key(std::string_view name);
  void value(std::string_view text);
  /// Without this one a literal would be taken for a boolean.
  void value(const char* text) { value(std::string_view(text)); }
  void value(double number);
  void value(std::int64_t number);
  void value(bool truth);
  void null();

  /// Says that a value can't be written, and that the program is to blame for it.
  void fault(std::string_view message);

  /// Why the text can't be written (a number that is not finite, a text that is not UTF-8); empty
  /// when it can.
  [[nodiscard]] const std::string& failure() const noexcept { return failure_; }
  [[nodiscard]] std::string take() && { return std::move(text_); }

 private:
  void separate();
  void open(char bracket);
  void quoted(std::string_view text);

  Faults faults_;
  std::string text_;
  std::string failure_;
};

}  // namespace orvane::json
