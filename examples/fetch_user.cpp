// SPDX-License-Identifier: Apache-2.0
// The smallest program: installs the Runtime, asks for the person who is signed in, and prints a
// line when the answer comes.
//
//   orvane-example-fetch_user https://telematics.example TOKEN
#include <Orvane/Orvane.h>
#include <Orvane/Runtime.h>

#include <iostream>

int main(int argumentCount, char** arguments) {
  if (argumentCount != 3) {
    std::cerr << "usage: " << arguments[0] << " BASE-URL TOKEN\n";
    return 64;
  }
  const auto runtime = orvane::Runtime::install({.baseURL = arguments[1], .tokens = arguments[2]});
  if (!runtime) return 1;  // What is wrong with the options has been logged.

  const orvane::UserService users(orvane::Identity{"my-api-key"});
  bool isThere = false;
  const auto request = users.fetch(
      std::nullopt, {orvane::UserService::Expansion::role},
      [&](const orvane::Result<orvane::User>& result) {
        if (!result) {
          std::cerr << result.errorOr(orvane::NetworkError::unknown).message() << '\n';
          return;
        }
        std::cout << "Hello " << result.value()->displayName.value_or("stranger") << '\n';
        isThere = true;
      });

  // A program with a loop of its own hands the queue to it (`forward`) instead of waiting here.
  orvane::MainQueue::main().runUntil(request);
  return isThere ? 0 : 1;
}
