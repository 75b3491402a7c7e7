// SPDX-License-Identifier: Apache-2.0
// The error of options that can't work.
#pragma once

#include <Orvane/Runtime/Export.h>

#include <string>
#include <utility>

namespace orvane {

/// An option given to the Runtime can't work: a base URL that is none, a file that can't be read.
class ORVANE_RUNTIME_EXPORT ConfigurationError {
 public:
  /// With that message.
  explicit ConfigurationError(std::string message) : message_(std::move(message)) {}

  /// Which option it is, and what is wrong with it.
  [[nodiscard]] const std::string& message() const noexcept { return message_; }
  friend bool operator==(const ConfigurationError&, const ConfigurationError&) = default;

 private:
  std::string message_;
};

}  // namespace orvane
