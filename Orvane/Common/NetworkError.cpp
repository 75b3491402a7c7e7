// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Common/NetworkError.h>

namespace orvane {

std::string NetworkError::message() const {
  switch (kind_) {
    case Case::malformedRequest:
      return "the request can't be formed";
    case Case::invalidStatusCode:
      return "the backend refused the request with status " + std::to_string(statusCode_);
    case Case::invalidResponseData:
      return "the backend's answer is not what was asked for";
    case Case::noData:
      return "the backend's answer is empty";
    case Case::unknown:
      break;
  }
  return "an unknown failure";
}

std::string DataError::message() const { return "a text of the form is not UTF-8"; }

}  // namespace orvane
