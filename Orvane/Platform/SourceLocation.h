// SPDX-License-Identifier: Apache-2.0
// A place in the code. Stands in for std::source_location, which Clang has only from version 16 on.
#pragma once

#include <cstdint>

namespace orvane {

/// A place in the code, captured by a default argument.
class SourceLocation {
 public:
  constexpr SourceLocation() noexcept = default;

  /// The place of the call; as a default argument, that of the call which leaves the argument out.
  [[nodiscard]] static constexpr SourceLocation current(
      const char* file = __builtin_FILE(), const char* function = __builtin_FUNCTION(),
      std::uint_least32_t line = static_cast<std::uint_least32_t>(__builtin_LINE())) noexcept {
    SourceLocation place;
    place.file_ = file;
    place.function_ = function;
    place.line_ = line;
    return place;
  }

  /// The file, relative to the project for the library's own.
  [[nodiscard]] constexpr const char* fileName() const noexcept { return file_; }

  /// The function's name without its signature.
  [[nodiscard]] constexpr const char* functionName() const noexcept { return function_; }

  /// Counted from 1.
  [[nodiscard]] constexpr std::uint_least32_t line() const noexcept { return line_; }

 private:
  const char* file_ = "";
  const char* function_ = "";
  std::uint_least32_t line_ = 0;
};

}  // namespace orvane
