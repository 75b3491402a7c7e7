// SPDX-License-Identifier: Apache-2.0
// Installs a complete default for what a host supplies.
#pragma once

#include <Orvane/Common/Identity.h>
#include <Orvane/Common/Logger.h>
#include <Orvane/Common/Retrying.h>
#include <Orvane/Platform/Result.h>
#include <Orvane/Runtime/CurlRequestManager.h>
#include <Orvane/Runtime/EndpointResolvers.h>
#include <Orvane/Runtime/Export.h>
#include <Orvane/Runtime/TokenResolvers.h>

#include <chrono>
#include <memory>
#include <optional>
#include <string>

namespace orvane {

/// What the Runtime is made of. Only `baseURL` and `tokens` are needed.
struct ORVANE_RUNTIME_EXPORT RuntimeOptions {
  /// Where the backend is: a URL, a map from API keys to URLs, or a function.
  EndpointSource baseURL{};
  /// Where bearer tokens come from: a token, a function, or a resolver.
  TokenSource tokens{};
  /// How requests and downloads travel.
  TransportOptions transport{};
  /// Tries failed requests again, of all services: none unless it is set. Requests that pause are
  /// not under way: `Runtime::finish` does not wait for them.
  std::optional<RetryPolicy> retry{};
  /// Where firmware is published: scheme and host, for example "https://firmware.example". Empty
  /// leaves what is registered.
  std::string firmwareHost{};
  /// How long the user's identifier is kept before the backend is asked again.
  std::chrono::milliseconds userIDLifetime{std::chrono::hours(1)};
  /// The file that keeps the device's identifier. Empty: "orvane/device-id" in the folder in which
  /// programs keep their state ($XDG_STATE_HOME or ~/.local/state; on macOS ~/Library/Application
  /// Support), unless the documents folder of `DeviceSettings` holds an "orvane-device-id". Without
  /// any of these the identifier lasts as long as the process, and a warning says so.
  std::string deviceIdentifierFile{};
  /// Replaces the logger behind `log`; null leaves it.
  std::shared_ptr<Logger> logger{};
  /// Drains the main queue on a thread of the Runtime's: for processes without a loop of their own.
  /// Nothing else may drain it until the shutdown, another installation included.
  bool drainsMainQueue{false};
};

/// The installed Runtime. A handle: copies stand for the same one, and letting go of them changes
/// nothing. In a process that was forked after the first request every call fails at once with a
/// reason, and `shutdown` returns at once: a child that is to make requests installs its own.
class ORVANE_RUNTIME_EXPORT Runtime {
 public:
  /// Registers transport, downloader, resolvers, stores and the device identifier in
  /// `Container::common()`, so that services can be made; replaces what was registered before.
  /// Options that can't work are answered with a `ConfigurationError`, which is logged too; nothing
  /// is registered then. To be called before the first service is made. Any thread.
  ///
  /// Installing again is for another backend, or for the same one anew: identifiers of users and
  /// offsets of the clock are the installation's own, so that a service made afterwards uses none
  /// of those found out before. One made before stays with the former installation, calls under way
  /// included. No service should be made while this runs.
  static Result<Runtime> install(RuntimeOptions options);

  /// Forgets the user's identifier, the clock's offset and the token kept for `identity`, so that
  /// whoever signs in next does not inherit them. Requests under way in that name should be
  /// cancelled before: one that is just looking up the identifier would store it again. Any thread.
  void signOut(const Identity& identity) const;

  /// Ends the threads, answering requests and downloads under way with
  /// `TransportError::Kind::cancelled`, and waits for them up to `timeout`. False when one was
  /// still busy by then, or is the calling one: it ends by itself. To be called before the process
  /// ends, if threads are to have ended by then. Any thread, more than once.
  bool shutdown(std::chrono::milliseconds timeout = std::chrono::seconds(5)) const;

  /// Lets what is under way come to its end first, and what that starts, for up to `patience`; then
  /// as `shutdown`. False also when something had to be cut short. A token or an address that the
  /// application's own function still owes is not waited for. On the thread that drains the main
  /// queue it drains it meanwhile; whoever else drains it is waited for. On the thread of a loop
  /// that the queue was handed to, which can't run what it holds meanwhile, that is cut short, and
  /// the answer is false. Any thread but those of the handlers.
  bool finish(std::chrono::milliseconds patience,
              std::chrono::milliseconds timeout = std::chrono::seconds(5)) const;

 private:
  struct State;

  explicit Runtime(std::shared_ptr<State> state);

  std::shared_ptr<State> state_;
};

}  // namespace orvane
