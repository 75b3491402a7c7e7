// SPDX-License-Identifier: Apache-2.0
// The one way in which a programming fault stops the process.
#pragma once

#include <Orvane/Platform/Export.h>
#include <Orvane/Platform/SourceLocation.h>

#include <cstdint>
#include <string_view>

namespace orvane {

/// Writes "Fatal error: <message>: file <source>, line <line>" to standard error and aborts the
/// process. For faults of the program, never for bad input, a broken network or a misbehaving
/// server.
[[noreturn]] ORVANE_EXPORT void fatal(std::string_view message, std::string_view source,
                                      std::uint_least32_t line) noexcept;

/// The same, reported against the place of the call.
[[noreturn]] inline void fatal(std::string_view message,
                               const SourceLocation& place = SourceLocation::current()) noexcept {
  fatal(message, place.fileName(), place.line());
}

/// Stops the process with `message` unless `condition` holds.
inline void precondition(bool condition, std::string_view message,
                         const SourceLocation& place = SourceLocation::current()) noexcept {
  if (!condition) fatal(message, place);
}

}  // namespace orvane
