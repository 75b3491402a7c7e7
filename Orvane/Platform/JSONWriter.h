// SPDX-License-Identifier: Apache-2.0
// Private header: not installed.
// The writer of JSON texts.
#pragma once

#include <Orvane/Platform/Export.h>

#include <cstddef>
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

  void beginObject() { put('{'); }
  void endObject() { close('}'); }
  void beginArray() { put('['); }
  void endArray() { close(']'); }
  void key(std::string_view name);
  /// The same for a key that needs no escape (`isPlain`), as those of key tables.
  void plainKey(std::string_view name) {
    char* const at = room(name.size() + 3);
    at[0] = '"';
    name.copy(at + 1, name.size());
    at[name.size() + 1] = '"';
    at[name.size() + 2] = ':';
    used_ += name.size() + 3;
  }
  void value(std::string_view text);
  /// Without this one a literal would be taken for a boolean.
  void value(const char* text) { value(std::string_view(text)); }
  void value(double number);
  void value(std::int64_t number);
  void value(bool truth) { literal(truth ? "true," : "false,"); }
  void null() { literal("null,"); }

  /// Says that a value can't be written, and that the program is to blame for it.
  void fault(std::string_view message);

  /// Why the text can't be written (a number that is not finite, a text that is not UTF-8); empty
  /// when it can.
  [[nodiscard]] const std::string& failure() const noexcept { return failure_; }
  [[nodiscard]] std::string take() &&;

 private:
  /// The place behind what has been written, with room for so many bytes.
  char* room(std::size_t bytes) {
    if (text_.size() - used_ < bytes) makeRoom(bytes);
    return text_.data() + used_;
  }
  void makeRoom(std::size_t bytes);
  void put(char c) {
    *room(1) = c;
    ++used_;
  }
  void literal(std::string_view text);
  void close(char bracket);
  void quoted(std::string_view text);

  // Each value has a comma behind it, which the end of what it stands in takes away.
  std::string text_;  // as long as there is room
  std::size_t used_ = 0;
  Faults faults_;
  std::string failure_;
};

/// Whether a text stands in quotes as it is, being ASCII without quote, backslash or control
/// character.
[[nodiscard]] constexpr bool isPlain(std::string_view text) noexcept {
  for (const char c : text) {
    if (c < ' ' || c > '~' || c == '"' || c == '\\') return false;
  }
  return true;
}

}  // namespace orvane::json
