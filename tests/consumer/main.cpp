// SPDX-License-Identifier: Apache-2.0
// An application as a stranger writes it: one include, and what it reaches must compile, link and
// run.
#include <Orvane/Orvane.h>

#include <cstdio>
#include <string>

int main() {
  const auto account = orvane::decode<orvane::Account>(R"({"accountId": "a-1"})");
  if (!account || account.value()->accountId != "a-1") {
    std::puts("a record was not decoded");
    return 1;
  }

  const auto type = orvane::decode<orvane::User::DriverType>(R"("COMMUTER")");
  if (!type || orvane::encode(*type.value()).value() != R"("COMMUTER")") {
    std::puts("an enumeration was not decoded and encoded");
    return 1;
  }

  // An error's type must be the same one on both sides of a shared library.
  const auto broken = orvane::decode<orvane::Account>("{");
  if (!broken.error() || broken.error()->as<orvane::DecodingError>() == nullptr) {
    std::puts("an error lost its type");
    return 1;
  }
  return 0;
}
