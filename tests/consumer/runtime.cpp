// SPDX-License-Identifier: Apache-2.0
// An application that takes the Runtime along, and the doubles for its own tests: a call must reach
// its handler through them.
#include <Orvane/Orvane.h>
#include <Orvane/Runtime.h>
#include <Orvane/Testing.h>

#include <cstdio>
#include <string>

namespace {

bool installsRuntime() {
  const auto installed = orvane::Runtime::install(
      {.baseURL = "https://telematics.example", .tokens = std::string("token")});
  return installed && installed.value()->shutdown();
}

bool answersThroughDoubles() {
  const orvane::ScopedFoundation foundation;
  foundation.requestManager->answer(R"({"userId": "42"})");
  bool answered = false;
  orvane::UserService(orvane::Identity{"key"})
      .fetch(std::nullopt, {},
             [&](orvane::Result<orvane::User> result) { answered = result.value().has_value(); });
  return answered;
}

}  // namespace

int main() {
  if (!installsRuntime()) {
    std::puts("the Runtime was not installed");
    return 1;
  }
  if (!answersThroughDoubles()) {
    std::puts("a call was not answered");
    return 1;
  }
  return 0;
}
