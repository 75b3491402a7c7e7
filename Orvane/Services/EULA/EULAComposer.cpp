// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Core/Parameter.h>
#include <Orvane/Platform/Text.h>
#include <Orvane/Services/EULA/EULAComposer.h>

namespace orvane {

std::string EULAComposer::path(std::string_view userID) const {
  return concatenated({"users/", userID, "/eula"});
}

std::optional<Result<RequestBody>> EULAComposer::body() const {
  const Parameter fields[] = {parameter::String{"acceptedTerms", "accept"}};
  return multipartBody(fields);
}

}  // namespace orvane
