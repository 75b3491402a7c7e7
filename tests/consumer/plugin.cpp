// SPDX-License-Identifier: Apache-2.0
// A library of somebody's own that uses Orvane inside: what it offers is its own one function.
#include <Orvane/Orvane.h>
#include <Orvane/Runtime.h>

#include <string>

extern "C" [[gnu::visibility("default")]] bool pluginStarts(const char* baseURL) {
  const auto installed =
      orvane::Runtime::install({.baseURL = std::string(baseURL), .tokens = std::string("token")});
  const auto account = orvane::decode<orvane::Account>(R"({"accountId": "a-1"})");
  return installed.error() != orvane::NetworkError::noData && account == orvane::Account{"a-1"};
}
