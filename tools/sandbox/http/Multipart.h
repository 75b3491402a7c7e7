// SPDX-License-Identifier: Apache-2.0
//
// Reads multipart/form-data bodies (RFC 7578) to the letter.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace orvane::sandbox {

struct FormPart {
  std::string name;
  std::string filename;     // empty for a plain field
  std::string contentType;  // empty when the part doesn't say
  std::string value;
};

/// The parts in their order; none for a body that is the closing boundary alone. Throws a 400 for a
/// content type without a usable boundary and for any departure from the format.
[[nodiscard]] std::vector<FormPart> parseMultipart(std::string_view contentType,
                                                   std::string_view body);

}  // namespace orvane::sandbox
