// SPDX-License-Identifier: Apache-2.0
// The same operations without handlers: awaited in a coroutine, which a program starts and waits
// for, and as a future.
//
//   orvane-example-rename_user https://telematics.example TOKEN "New Name"
#include <Orvane/Orvane.h>
#include <Orvane/Runtime.h>

#include <exception>
#include <future>
#include <iostream>

namespace {

// A coroutine that starts at once and that nobody waits for: any library of coroutines has better.
struct Detached {
  struct promise_type {  // NOLINT(readability-identifier-naming): the language looks for it
    Detached get_return_object() { return {}; }
    std::suspend_never initial_suspend() noexcept { return {}; }
    std::suspend_never final_suspend() noexcept { return {}; }
    void return_void() {}
    void unhandled_exception() { std::terminate(); }
  };
};

Detached rename(const orvane::UserService& users, std::string name, std::promise<bool>& done) {
  const orvane::Result<orvane::User> before = co_await orvane::awaiting<orvane::User>(
      [&](auto then) { return users.fetch(std::nullopt, {}, std::move(then)); });
  if (!before) {
    std::cerr << before.errorOr(orvane::NetworkError::unknown).message() << '\n';
    done.set_value(false);
    co_return;
  }
  const orvane::Result<orvane::User> after = co_await orvane::awaiting<orvane::User>(
      [&](auto then) { return users.update({.displayName = std::move(name)}, std::move(then)); });
  if (after) {
    std::cout << before.value()->displayName.value_or("nobody") << " is "
              << after.value()->displayName.value_or("nobody") << " now\n";
  }
  done.set_value(static_cast<bool>(after));
}

}  // namespace

int main(int argumentCount, char** arguments) {
  if (argumentCount != 4) {
    std::cerr << "usage: " << arguments[0] << " BASE-URL TOKEN NAME\n";
    return 64;
  }
  // A program without a loop lets the Runtime drain the main queue.
  const auto runtime = orvane::Runtime::install(
      {.baseURL = arguments[1], .tokens = arguments[2], .drainsMainQueue = true});
  if (!runtime) return 1;

  const orvane::UserService users(orvane::Identity{"my-api-key"});
  std::promise<bool> done;
  rename(users, arguments[3], done);
  if (!done.get_future().get()) return 1;

  // A future is enough where a thread may wait.
  auto user = orvane::future<orvane::User>(
      [&](auto then) { return users.fetch(std::nullopt, {}, std::move(then)); });
  const orvane::Result<orvane::User> answer = user.get();
  runtime.value()->shutdown();
  return answer && answer.value()->displayName == arguments[3] ? 0 : 1;
}
