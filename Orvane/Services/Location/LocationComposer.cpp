// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Platform/Text.h>
#include <Orvane/Services/Location/LocationComposer.h>

namespace orvane {

std::string LocationComposer::path(std::string_view userID) const {
  return concatenated({"users/", userID, "/lastKnownLocation"});
}

}  // namespace orvane
