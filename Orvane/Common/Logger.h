// SPDX-License-Identifier: Apache-2.0
// Where the library's few log lines go.
#pragma once

#include <Orvane/Platform/Export.h>
#include <Orvane/Platform/SourceLocation.h>

#include <cstdint>
#include <memory>
#include <string_view>

namespace orvane {

/// Receives log lines; supplied by the host. Called from any thread.
class ORVANE_EXPORT Logger {
 public:
  enum class Level : std::uint8_t { error, information, warning };

  /// One line with the place in the code that it comes from.
  struct Entry {
    Level level;
    std::string_view message;
    std::string_view file;
    std::string_view function;
    std::uint_least32_t line;
  };

  Logger() = default;
  Logger(const Logger&) = delete;
  Logger& operator=(const Logger&) = delete;
  virtual ~Logger();

  virtual void write(const Entry& entry) = 0;

  /// Replaces the logger behind `log` and answers the former one, so that it can be put back; null
  /// stands for the one that the process starts with, which writes errors and warnings to standard
  /// error. Any thread.
  static std::shared_ptr<Logger> setShared(std::shared_ptr<Logger> logger);
};

/// The type of `log`.
class ORVANE_EXPORT SharedLog {
 public:
  /// An error, an information and a warning line. The place is that of the call unless it is given.
  void e(std::string_view message, const SourceLocation& place = SourceLocation::current()) const;
  void i(std::string_view message, const SourceLocation& place = SourceLocation::current()) const;
  void w(std::string_view message, const SourceLocation& place = SourceLocation::current()) const;

  void e(std::string_view message, std::string_view file, std::string_view function,
         std::uint_least32_t line) const;
  void i(std::string_view message, std::string_view file, std::string_view function,
         std::uint_least32_t line) const;
  void w(std::string_view message, std::string_view file, std::string_view function,
         std::uint_least32_t line) const;
};

/// The shared logger. Any thread.
inline constexpr SharedLog log;

}  // namespace orvane
