// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Common/NetworkError.h>
#include <Orvane/Core/Parameter.h>
#include <Orvane/Platform/Text.h>
#include <Orvane/Platform/UUID.h>

#include <algorithm>
#include <initializer_list>

namespace orvane {
namespace {

constexpr std::string_view lineEnd = "\r\n";

void append(std::string& body, std::initializer_list<std::string_view> texts) {
  for (const std::string_view text : texts) body += text;
}

// Writes one part; false when a text of it is not UTF-8.
class PartWriter {
 public:
  PartWriter(std::string& body, std::string_view boundary) : body_(body), boundary_(boundary) {}

  bool operator()(const parameter::String& field) { return text(field.key, field.value); }
  bool operator()(const parameter::Bool& field) {
    return text(field.key, field.value ? "true" : "false");
  }
  bool operator()(const parameter::StringArray&) { return true; }
  bool operator()(const parameter::File& file) {
    if (!isUTF8(file.key) || !isUTF8(file.filename)) return false;
    beginPart(file.key);
    append(body_, {"; filename=\"", file.filename, "\"", lineEnd, "Content-Type: ",
                   wireText(file.contentType), lineEnd, lineEnd, file.data, lineEnd});
    return true;
  }

 private:
  void beginPart(std::string_view key) {
    append(body_, {"--", boundary_, lineEnd, "Content-Disposition: form-data; name=\"", key, "\""});
  }

  bool text(std::string_view key, std::string_view value) {
    if (!isUTF8(key) || !isUTF8(value)) return false;
    beginPart(key);
    append(body_, {lineEnd, lineEnd, value, lineEnd});
    return true;
  }

  std::string& body_;
  const std::string_view boundary_;
};

std::string randomBoundary() {
  std::string boundary = randomUUID();
  std::erase(boundary, '-');
  return boundary;
}

}  // namespace

Result<MultipartForm> multipartForm(std::span<const Parameter> parameters) {
  MultipartForm form{{}, randomBoundary()};
  PartWriter writer(form.body, form.boundary);
  for (const Parameter& parameter : parameters) {
    if (!std::visit(writer, parameter)) return DataError{};
  }
  append(form.body, {"--", form.boundary, "--"});
  return form;
}

Result<RequestBody> multipartBody(std::span<const Parameter> parameters) {
  Result<MultipartForm> form = multipartForm(parameters);
  if (!form.value()) return *std::move(form).error();
  Headers headers{{"Content-Type", "multipart/form-data; boundary=" + form.value()->boundary},
                  {"Content-Length", std::to_string(form.value()->body.size())}};
  return RequestBody{std::move(form.value()->body), std::move(headers)};
}

}  // namespace orvane
