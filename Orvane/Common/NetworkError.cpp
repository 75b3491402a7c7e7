// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Common/NetworkError.h>
#include <Orvane/Platform/JSON.h>
#include <Orvane/Platform/Text.h>

#include <algorithm>

namespace orvane {
namespace {

constexpr std::size_t longestReason = 500;
// What a server says in words stands at the beginning, and comes to no more.
constexpr std::size_t longestHead = std::size_t{64} << 10U;

char lowerCase(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

// Where `word`, which is in lower case, begins in `text`, in whatever case it is there.
std::size_t positionOf(std::string_view word, std::string_view text) {
  const auto found =
      std::search(text.begin(), text.end(), word.begin(), word.end(),
                  [](char there, char wanted) { return lowerCase(there) == wanted; });
  return found == text.end() ? std::string_view::npos
                             : static_cast<std::size_t>(found - text.begin());
}

std::string titleOf(std::string_view page) {
  const std::size_t tag = positionOf("<title", page);
  const std::size_t begin = tag == std::string_view::npos ? tag : page.find('>', tag);
  if (begin == std::string_view::npos) return {};
  const std::string_view rest = page.substr(begin + 1);
  return oneLine(rest.substr(0, rest.find('<')), longestReason / 2);
}

std::string textOf(const json::Object& object, std::string_view key) {
  std::string_view text;
  return object[key].get(text) == simdjson::SUCCESS ? oneLine(text, longestReason) : std::string();
}

std::string wordsOf(const json::Object& object) {
  std::string message = textOf(object, "message");
  std::string error = textOf(object, "error");
  if (message.empty()) return error;
  if (error.empty() || error == message) return message;
  return oneLine(concatenated({error, ": ", message}), longestReason);
}

}  // namespace

std::string reasonIn(std::string_view body) {
  if (body.starts_with("\xEF\xBB\xBF")) body.remove_prefix(3);
  const std::size_t begin = body.find_first_not_of(" \t\r\n");
  if (begin == std::string_view::npos) return {};
  body.remove_prefix(begin);
  if (body.front() == '<' &&
      positionOf("<html", body.substr(0, longestHead)) != std::string_view::npos) {
    const std::string title = titleOf(body.substr(0, longestHead));
    return title.empty() ? "an HTML page" : concatenated({"an HTML page, \"", title, "\""});
  }
  if (body.front() == '{' || body.front() == '[') {
    std::string text = json::paddedCopy(body);
    const json::Document document(text);
    json::Object object;
    if (document.isValid()) {
      return document.root().get(object) == simdjson::SUCCESS ? wordsOf(object) : std::string();
    }
  }
  return oneLine(body.substr(0, std::min(body.find_first_of("\r\n"), longestHead)), longestReason);
}

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
