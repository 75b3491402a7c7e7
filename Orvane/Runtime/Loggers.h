// SPDX-License-Identifier: Apache-2.0
// Where log lines can go.
#pragma once

#include <Orvane/Common/Logger.h>
#include <Orvane/Platform/UniqueFunction.h>
#include <Orvane/Runtime/Export.h>

namespace orvane {

/// Writes lines to standard error with time, level and place. Any thread.
class ORVANE_RUNTIME_EXPORT StandardErrorLogger final : public Logger {
 public:
  /// Lines less severe than `least` are dropped: an information is less severe than a warning, and
  /// a warning than an error.
  explicit StandardErrorLogger(Level least = Level::information) : least_(least) {}

  /// Writes a line, unless it is less severe than wanted.
  void write(const Entry& entry) override;

 private:
  const Level least_;
};

/// Hands lines to a function of the application's, which any thread may call, several at once too.
class ORVANE_RUNTIME_EXPORT FunctionLogger final : public Logger {
 public:
  /// Receives each line; its texts are valid during the call only.
  using Function = UniqueFunction<void(const Entry&)>;

  /// Hands lines to `function`; an empty one drops them.
  explicit FunctionLogger(Function function) : function_(std::move(function)) {}

  /// Calls the function.
  void write(const Entry& entry) override { function_(entry); }

 private:
  Function function_;
};

}  // namespace orvane
