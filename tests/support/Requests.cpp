// SPDX-License-Identifier: Apache-2.0
#include "tests/support/Requests.h"

#include <regex>
#include <sstream>

namespace orvane {
namespace {

void replaceAll(std::string& text, std::string_view from, std::string_view to) {
  for (std::size_t at = text.find(from); at != std::string::npos;
       at = text.find(from, at + to.size())) {
    text.replace(at, from.size(), to);
  }
}

}  // namespace

std::string requestText(const RecordedRequest& request) {
  std::ostringstream out;
  out << request;
  std::string text = out.str();

  std::smatch boundary;
  if (std::regex_search(text, boundary, std::regex("boundary=([0-9a-fA-F]{32})\n"))) {
    replaceAll(text, boundary.str(1), "BOUNDARY");
    replaceAll(text, "Content-Length: " + std::to_string(request.body.size()) + "\n",
               "Content-Length: right\n");
  }
  replaceAll(text, "Authorization: Bearer token\n", "");
  replaceAll(text, std::string(apiRoot) + "/", "");
  replaceAll(text, "\r", "\\r");
  return text;
}

}  // namespace orvane
