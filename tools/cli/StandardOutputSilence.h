// SPDX-License-Identifier: Apache-2.0
// Keeps what others print away from standard output, which is for answers.
#pragma once

namespace orvane::cli {

/// As long as it lives, standard output leads nowhere. For one thread, and not for long.
class StandardOutputSilence {
 public:
  StandardOutputSilence();
  ~StandardOutputSilence();
  StandardOutputSilence(const StandardOutputSilence&) = delete;
  StandardOutputSilence& operator=(const StandardOutputSilence&) = delete;

 private:
  int kept_ = -1;  // what standard output is otherwise; -1 where it is left alone
};

}  // namespace orvane::cli
