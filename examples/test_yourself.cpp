// SPDX-License-Identifier: Apache-2.0
// An application's own test: its code runs as in earnest, against doubles instead of a backend.
#include <Orvane/Orvane.h>
#include <Orvane/Testing.h>

#include <iostream>

namespace {

// The application's code: greets whoever is signed in, and says so when that is not known.
std::string greeting(const orvane::UserService& users) {
  const auto user = users.fetch().wait();
  if (user) return "Hello " + user->firstName.value_or("stranger");
  const auto* refusal = user.error() ? user.error()->as<orvane::NetworkError>() : nullptr;
  return refusal != nullptr && refusal->statusCode() == 401 ? "Please sign in" : "Try again later";
}

bool check(bool condition, const char* what) {
  if (!condition) std::cerr << "failed: " << what << '\n';
  return condition;
}

}  // namespace

int main() {
  const orvane::ScopedFoundation foundation;
  const orvane::UserService users(orvane::Identity{"key"});
  bool isRight = true;

  foundation.requestManager->answer(R"({"userId": "42", "firstName": "Ann"})");
  isRight &= check(greeting(users) == "Hello Ann", "someone is greeted by name");
  isRight &=
      check(foundation.requestManager->questions().front().url.path() == "/kavra/api/sdk/users/42",
            "the person who is signed in is asked for");

  foundation.requestManager->answer(orvane::NetworkError::invalidStatusCode(401));
  isRight &= check(greeting(users) == "Please sign in", "a stranger is asked to sign in");

  foundation.requestManager->answer(orvane::NetworkError::noData);
  isRight &= check(greeting(users) == "Try again later", "an error is no reason to sign in again");
  return isRight ? 0 : 1;
}
