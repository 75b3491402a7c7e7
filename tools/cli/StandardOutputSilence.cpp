// SPDX-License-Identifier: Apache-2.0
#include "StandardOutputSilence.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>

namespace orvane::cli {

StandardOutputSilence::StandardOutputSilence() {
  const int nowhere = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
  if (nowhere < 0) return;
  std::fflush(stdout);
  kept_ = ::fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 0);
  if (kept_ >= 0) ::dup2(nowhere, STDOUT_FILENO);
  ::close(nowhere);
}

StandardOutputSilence::~StandardOutputSilence() {
  if (kept_ < 0) return;
  std::fflush(stdout);
  ::dup2(kept_, STDOUT_FILENO);
  ::close(kept_);
}

}  // namespace orvane::cli
