// SPDX-License-Identifier: Apache-2.0
// Why the program ended: one exit code per kind of error, and the error itself on its way to main.
#pragma once

#include <Orvane/Platform/Error.h>

#include <exception>
#include <span>
#include <string>
#include <string_view>

namespace orvane::cli {

/// The codes of refused requests follow the HTTP status; usage, output and configuration have the
/// numbers of BSD's sysexits.
enum class ExitCode : int {
  success = 0,
  nameLookup = 10,
  connection = 11,
  tls = 12,
  timeOut = 13,
  cutOff = 14,
  tooLarge = 15,
  protocol = 16,
  malformedRequest = 20,
  invalidData = 21,
  noData = 22,
  refused = 40,
  unauthorized = 41,
  forbidden = 43,
  notFound = 44,
  serverError = 50,
  usage = 64,
  internal = 70,
  output = 74,
  configuration = 78,
  cancelled = 130,
};

struct ExitCodeRow {
  ExitCode code;
  std::string_view meaning;
};

/// Every code with what it means, in ascending order.
[[nodiscard]] std::span<const ExitCodeRow> exitCodes() noexcept;

/// What ends a command early. The message is one line without the program's name; nothing is said
/// where it is empty.
class Failure final : public std::exception {
 public:
  Failure(ExitCode code, std::string message) : code_(code), message_(std::move(message)) {}

  [[nodiscard]] ExitCode code() const noexcept { return code_; }
  [[nodiscard]] const char* what() const noexcept override { return message_.c_str(); }

 private:
  ExitCode code_;
  std::string message_;
};

/// What an operation's error means for the user, with what the backend said, the place that can't
/// be read, and the request: `request`, or else what the error knows of it.
[[nodiscard]] Failure failureOf(const Error& error, const std::string& request = {});

}  // namespace orvane::cli
