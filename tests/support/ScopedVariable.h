// SPDX-License-Identifier: Apache-2.0
// The environment of a test.
#pragma once

#include <cstdlib>
#include <optional>
#include <string>
#include <utility>

namespace orvane {

/// Gives a variable of the environment another value while it lives, or none. No other thread may
/// read the environment meanwhile.
class ScopedVariable {
 public:
  ScopedVariable(std::string name, const std::optional<std::string>& value)
      : name_(std::move(name)) {
    if (const char* former = std::getenv(name_.c_str())) former_ = former;
    set(value);
  }
  ~ScopedVariable() { set(former_); }
  ScopedVariable(const ScopedVariable&) = delete;
  ScopedVariable& operator=(const ScopedVariable&) = delete;

 private:
  void set(const std::optional<std::string>& value) const {
    if (value) {
      ::setenv(name_.c_str(), value->c_str(), 1);
    } else {
      ::unsetenv(name_.c_str());
    }
  }

  const std::string name_;
  std::optional<std::string> former_;
};

}  // namespace orvane
