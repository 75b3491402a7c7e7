// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Common/Future.h>

namespace orvane::detail {

Error timedOut(std::chrono::milliseconds limit) {
  return Error(TimedOut{})
      .with({.finding = "there was no answer within " + std::to_string(limit.count()) + " ms"});
}

}  // namespace orvane::detail
