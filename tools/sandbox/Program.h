// SPDX-License-Identifier: Apache-2.0
//
// The life of the program: start, what it tells, the command that it runs, signals, end.
#pragma once

#include "Sandbox.h"

#include <filesystem>
#include <string>
#include <vector>

namespace orvane::sandbox {

struct ProgramOptions {
  SandboxOptions sandbox;
  std::string readyFile;  // besides the one in the data folder; empty: none
  std::vector<std::string>
      command;                      // to be run in its environment; empty: serve until asked to end
  bool keepsData = true;            // false: in a folder that is removed in the end
  std::filesystem::path recording;  // where the requests and answers go in the end; empty: nowhere
};

/// Thrown when a signal asks to end before the sandbox is ready.
class Interrupted {
 public:
  explicit Interrupted(int signal) : signal_(signal) {}
  /// As shells have it.
  [[nodiscard]] int exitCode() const { return 128 + signal_; }

 private:
  int signal_;
};

/// Serves until SIGINT or SIGTERM, or until the command ends. Answers the exit code: that of the
/// command where there is one, 127 where it is not found, 126 where it can't be run.
int run(ProgramOptions options);

}  // namespace orvane::sandbox
