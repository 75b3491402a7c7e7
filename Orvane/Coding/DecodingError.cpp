// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Coding/DecodingError.h>

namespace orvane {

std::string DecodingError::message() const {
  return location.empty() ? description : location + ": " + description;
}

}  // namespace orvane
