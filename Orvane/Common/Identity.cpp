// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Common/Identity.h>

#include <tuple>

namespace orvane {

bool operator<(const Identity& left, const Identity& right) noexcept {
  return std::tie(left.apiKey, left.externalReferenceID) <
         std::tie(right.apiKey, right.externalReferenceID);
}

}  // namespace orvane
