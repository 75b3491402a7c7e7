// SPDX-License-Identifier: Apache-2.0
// The smallest program: installs the Runtime, asks for the person who is signed in, and waits for
// the answer.
//
//   orvane-sandbox --exec -- orvane-example-fetch_user   # with the local backend
//   ORVANE_BASE_URL=https://telematics.example ORVANE_TOKEN=… orvane-example-fetch_user
#include "Settings.h"
#include <Orvane/Orvane.h>
#include <Orvane/Runtime.h>

#include <iostream>

int main() {
  const auto runtime = orvane::Runtime::install(settings());
  if (!runtime) return 1;  // What is wrong with the options has been logged.

  const orvane::UserService users(identity());
  const auto user = users.fetch().wait();
  if (!user) {
    std::cerr << user.errorOr(orvane::NetworkError::unknown).description() << '\n';
    return 1;
  }
  std::cout << "Hello " << user->displayName.value_or("stranger") << '\n';
  return 0;
}
