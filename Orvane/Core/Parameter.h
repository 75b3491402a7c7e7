// SPDX-License-Identifier: Apache-2.0
// Private header: not installed.
// Form fields, and the multipart body (RFC 7578) that they make.
#pragma once

#include <Orvane/Core/URLComposer.h>
#include <Orvane/Platform/Enumeration.h>
#include <Orvane/Platform/OneOf.h>

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace orvane {

/// The MIME type of a file.
enum class ContentType : std::uint8_t { jpeg };

template <>
struct EnumerationTable<ContentType> {
  static constexpr EnumerationCase<ContentType> cases[] = {{ContentType::jpeg, "image/jpeg"}};
};

namespace parameter {
struct String {
  std::string key;
  std::string value;
};
struct File {
  std::string key;
  std::string filename;
  ContentType contentType;
  std::string data;
};
struct StringArray {
  std::string key;
  std::vector<std::string> value;
};
struct Bool {
  std::string key;
  bool value;
};
}  // namespace parameter

/// One field of a form.
using Parameter =
    std::variant<parameter::String, parameter::File, parameter::StringArray, parameter::Bool>;

/// A multipart body, and the text that separates its parts.
struct MultipartForm {
  std::string body;
  std::string boundary;
};

/// Writes the parameters, in their order, as a multipart body under a fresh random boundary. A list
/// of texts contributes no part. A key, file name or value that is not UTF-8 fails with
/// `DataError`; a file's bytes are taken as they are.
[[nodiscard]] Result<MultipartForm> multipartForm(std::span<const Parameter> parameters);

/// The same as the body of a request, with its "Content-Type" and "Content-Length".
[[nodiscard]] Result<RequestBody> multipartBody(std::span<const Parameter> parameters);

}  // namespace orvane
