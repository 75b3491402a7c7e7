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
  /// How serious a line is. Their order says nothing: see `StandardErrorLogger`.
  enum class Level : std::uint8_t {
    error,        ///< Something failed that somebody asked for.
    information,  ///< Something worth knowing.
    warning,      ///< Something went on otherwise than it was asked for.
  };

  /// One line with the place in the code that it comes from.
  struct Entry {
    Level level;  ///< How serious it is.
    /// One line, without a token, an e-mail address, a position, a body or the value of a query.
    std::string_view message;
    std::string_view file;      ///< The file, relative to the project.
    std::string_view function;  ///< The function's name without its signature.
    std::uint_least32_t line;   ///< Counted from 1.
  };

  Logger() = default;
  Logger(const Logger&) = delete;
  Logger& operator=(const Logger&) = delete;
  virtual ~Logger();

  /// Takes a line; the texts are valid during the call only. Called from any thread, several at
  /// once too. Must not throw.
  virtual void write(const Entry& entry) = 0;

  /// Replaces the logger behind `log` and answers the former one, so that it can be put back; null
  /// stands for the one that the process starts with, which writes errors and warnings to standard
  /// error. Any thread.
  static std::shared_ptr<Logger> setShared(std::shared_ptr<Logger> logger);
};

/// The type of `log`.
class ORVANE_EXPORT SharedLog {
 public:
  /// @name A line
  /// The place is that of the call unless it is given. Any thread.
  /// @{
  /// An error.
  void e(std::string_view message, const SourceLocation& place = SourceLocation::current()) const;
  /// An information.
  void i(std::string_view message, const SourceLocation& place = SourceLocation::current()) const;
  /// A warning.
  void w(std::string_view message, const SourceLocation& place = SourceLocation::current()) const;
  /// An error from another place.
  void e(std::string_view message, std::string_view file, std::string_view function,
         std::uint_least32_t line) const;
  /// An information from another place.
  void i(std::string_view message, std::string_view file, std::string_view function,
         std::uint_least32_t line) const;
  /// A warning from another place.
  void w(std::string_view message, std::string_view file, std::string_view function,
         std::uint_least32_t line) const;
  /// @}
};

/// The shared logger. Any thread.
inline constexpr SharedLog log;

}  // namespace orvane
