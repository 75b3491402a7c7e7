// SPDX-License-Identifier: Apache-2.0
// Private header: not installed.
// The guard of a call against a host that answers more than once.
#pragma once

#include <atomic>
#include <concepts>
#include <type_traits>
#include <utility>

namespace orvane {

/// A handler that runs for the first answer and drops every later one, also those that come at the
/// same time from several threads. It lets go of what it holds once it has run, however long the
/// host keeps it. Made by `once`.
template <class Handler>
class Once {
 public:
  explicit Once(Handler handler) : handler_(std::move(handler)) {}
  // Nobody answers while it is handed over.
  Once(Once&& other) noexcept(std::is_nothrow_move_constructible_v<Handler>)
      : handler_(std::move(other.handler_)), hasRun_(other.hasRun_.load()) {}
  Once& operator=(Once&&) = delete;
  Once(const Once&) = delete;
  Once& operator=(const Once&) = delete;
  ~Once() = default;

  template <class... Arguments>
    requires(std::invocable<Handler&, Arguments...>)
  void operator()(Arguments&&... arguments) {
    if (hasRun_.exchange(true)) return;
    Handler handler = std::move(handler_);
    handler(std::forward<Arguments>(arguments)...);
  }

 private:
  Handler handler_;
  std::atomic<bool> hasRun_{false};
};

/// What to give to a host's interface in the place of `handler`.
template <class Handler>
[[nodiscard]] Once<Handler> once(Handler handler) {
  return Once<Handler>(std::move(handler));
}

}  // namespace orvane
