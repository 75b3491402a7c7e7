// SPDX-License-Identifier: Apache-2.0
#include "http/Multipart.h"

#include "http/Message.h"

#include <optional>

namespace orvane::sandbox {

namespace {

constexpr std::string_view lineBreak = "\r\n";
constexpr std::size_t longestBoundary = 70;  // RFC 2046, 5.1.1

Problem malformed(const std::string& what) { return badRequest("malformed form: " + what); }

std::string_view trim(std::string_view text) {
  while (!text.empty() && (text.front() == ' ' || text.front() == '\t')) text.remove_prefix(1);
  while (!text.empty() && (text.back() == ' ' || text.back() == '\t')) text.remove_suffix(1);
  return text;
}

/// The value of name="…" or name=… in a header's parameters.
std::optional<std::string> parameter(std::string_view header, std::string_view wanted) {
  auto position = header.find(';');
  while (position != std::string_view::npos) {
    header = trim(header.substr(position + 1));
    const auto equals = header.find('=');
    if (equals == std::string_view::npos) return std::nullopt;
    const std::string_view name = trim(header.substr(0, equals));
    header.remove_prefix(equals + 1);
    std::string_view value;
    if (header.starts_with('"')) {
      const auto end = header.find('"', 1);
      if (end == std::string_view::npos) return std::nullopt;
      value = header.substr(1, end - 1);
      header.remove_prefix(end + 1);
      position = header.find(';');
    } else {
      position = header.find(';');
      value = trim(header.substr(0, position));
    }
    if (equalIgnoringCase(name, wanted)) return std::string{value};
  }
  return std::nullopt;
}

/// Takes the text before the mark off the front, the mark with it.
std::string_view takeUntil(std::string_view& text, std::string_view mark, const char* missing) {
  const auto end = text.find(mark);
  if (end == std::string_view::npos) throw malformed(missing);
  const std::string_view taken = text.substr(0, end);
  text.remove_prefix(end + mark.size());
  return taken;
}

FormPart readHeaders(std::string_view& body) {
  FormPart part;
  for (;;) {
    const std::string_view line = takeUntil(body, lineBreak, "a part's headers do not end");
    if (line.empty()) break;
    const auto colon = line.find(':');
    if (colon == std::string_view::npos) throw malformed("a part's header has no colon");
    const std::string_view name = line.substr(0, colon);
    const std::string_view value = trim(line.substr(colon + 1));
    if (equalIgnoringCase(name, "Content-Disposition")) {
      if (!value.starts_with("form-data")) throw malformed("a part is not form data");
      part.name = parameter(value, "name").value_or("");
      part.filename = parameter(value, "filename").value_or("");
    } else if (equalIgnoringCase(name, "Content-Type")) {
      part.contentType = value;
    }
  }
  if (part.name.empty()) throw malformed("a part has no name");
  return part;
}

}  // namespace

std::vector<FormPart> parseMultipart(std::string_view contentType, std::string_view body) {
  const auto boundary = parameter(contentType, "boundary");
  if (!boundary || boundary->empty() || boundary->size() > longestBoundary) {
    throw malformed("the content type names no boundary");
  }
  const std::string opening = "--" + *boundary;
  const std::string delimiter = std::string{lineBreak} + opening;
  if (!body.starts_with(opening)) throw malformed("it does not open with the boundary");
  body.remove_prefix(opening.size());

  std::vector<FormPart> parts;
  while (!body.starts_with("--")) {
    if (!body.starts_with(lineBreak)) throw malformed("a boundary is not followed by a line break");
    body.remove_prefix(lineBreak.size());
    FormPart part = readHeaders(body);
    part.value = takeUntil(body, delimiter, "the closing boundary is missing");
    if (part.filename.empty() && !isUtf8(part.value)) throw malformed("a text is not UTF-8");
    parts.push_back(std::move(part));
  }
  const std::string_view rest = body.substr(2);
  if (!rest.empty() && !rest.starts_with(lineBreak)) throw malformed("text follows the end");
  return parts;
}

}  // namespace orvane::sandbox
